# What is installed, and the files by which others find it.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# A library and its headers, below a directory of the name that their includes have.
function(zu_install target directory)
  if(NOT ZU_INSTALL)
    return()
  endif()
  install(
    TARGETS ${target}
    EXPORT ZUbaseTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(FILES ${ARGN} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ZU/${directory}")
endfunction()

# A project around this one installs what it will.
if(NOT ZU_INSTALL)
  return()
endif()

set(packageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/ZUbase")
install(
  EXPORT ZUbaseTargets
  NAMESPACE ZU::
  DESTINATION "${packageDirectory}")
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/ZUbaseConfig.cmake.in" "${PROJECT_BINARY_DIR}/ZUbaseConfig.cmake"
  INSTALL_DESTINATION "${packageDirectory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZUbaseConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ZUbaseConfig.cmake"
              "${PROJECT_BINARY_DIR}/ZUbaseConfigVersion.cmake"
        DESTINATION "${packageDirectory}")

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
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
