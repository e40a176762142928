# What is installed, and the files by which others find it.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# A library and its headers, below a directory of the name that their includes have. What a program
# needs when it runs is one component, what building takes besides it another one.
function(zu_install target directory)
  if(NOT ZU_INSTALL)
    return()
  endif()
  install(
    TARGETS ${target}
    EXPORT ZUbaseTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
    LIBRARY
      DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT runtime
      NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
  install(
    FILES ${ARGN}
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ZU/${directory}"
    COMPONENT development)
endfunction()

# A project around this one installs what it will.
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

# The prefix is found from where the files stand, so that the tree may be moved.
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

# What there is to read, with the links between its pages.
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
