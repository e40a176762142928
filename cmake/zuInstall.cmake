# What is installed, and the files by which other projects find it.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# A library and its headers, below the directory that includes name. What a program needs at run
# time is one component, what building it needs in addition is another.
function(zu_install target directory)
  if(NOT ZU_INSTALL)
    return()
  endif()
  zu_install_as(ZUbaseTargets "" ${target} ${directory} ${ARGN})
endfunction()

# The same for a library that need not be built. Its package file is read by those who ask for the
# component of the CMake package that is called like its directory.
function(zu_install_optional target directory)
  if(NOT ZU_INSTALL)
    return()
  endif()
  zu_install_as(ZU${directory}Targets OPTIONAL ${target} ${directory} ${ARGN})
  install(
    EXPORT ZU${directory}Targets
    NAMESPACE ZU::
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/ZUbase"
    COMPONENT development)
endfunction()

function(zu_install_as export optional target directory)
  install(
    TARGETS ${target}
    EXPORT ${export}
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime ${optional}
    LIBRARY
      DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT runtime
      NAMELINK_COMPONENT development
      ${optional}
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development ${optional})
  install(
    FILES ${ARGN}
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ZU/${directory}"
    COMPONENT development)
endfunction()

# An enclosing project decides itself what to install.
if(NOT ZU_INSTALL)
  return()
endif()

set(packageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/ZUbase")
install(
  EXPORT ZUbaseTargets
  NAMESPACE ZU::
  DESTINATION "${packageDirectory}"
  COMPONENT development)
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/ZUbaseConfig.cmake.in" "${PROJECT_BINARY_DIR}/ZUbaseConfig.cmake"
  INSTALL_DESTINATION "${packageDirectory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZUbaseConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ZUbaseConfig.cmake"
              "${PROJECT_BINARY_DIR}/ZUbaseConfigVersion.cmake"
        DESTINATION "${packageDirectory}"
        COMPONENT development)

# The prefix is derived from the place of the files, so that the tree may be moved.
file(RELATIVE_PATH fromPkgConfig "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" fromPkgConfig "${fromPkgConfig}")
if(MINGW)
  # See zuBuild.cmake.
  set(platformFlags " -fno-ipa-ra")
endif()
foreach(package zubase zuapp)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in"
                 "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${package}.pc"
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT development)
endforeach()

# The pages, with the links between them.
set(readingDirectory "${CMAKE_INSTALL_DATAROOTDIR}/doc/zubase")
install(
  FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
        "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
  DESTINATION "${readingDirectory}"
  COMPONENT development)
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/docs"
  DESTINATION "${readingDirectory}"
  COMPONENT development
  FILES_MATCHING
  PATTERN "*.md")
