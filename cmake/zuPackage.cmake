# Packages: for Debian one for running programs and one for building them, for Windows one archive
# with everything.
if(NOT ZU_INSTALL)
  return()
endif()

set(ZU_PACKAGE_CONTACT "The libZUbase maintainers <maintainers@localhost>"
    CACHE STRING "Who is to be asked about a package")

set(CPACK_PACKAGE_NAME zubase)
set(CPACK_PACKAGE_VENDOR "libZUbase")
set(CPACK_PACKAGE_CONTACT "${ZU_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME windows-x86_64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

  # Packages with incompatible interfaces can be installed side by side.
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libzubase${ZU_INTERFACE_VERSION}")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
      "The foundation of a family of C++ libraries and applications: the shared libraries")

  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzubase-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
  set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
      "The foundation of a family of C++ libraries and applications: headers and package files")
endif()

include(CPack)
