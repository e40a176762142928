# How everything in this project is compiled.

# All programs and libraries of a build go into one directory: a Windows program finds its libraries
# only beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

find_package(Threads REQUIRED)

add_library(zuOptions INTERFACE)
target_compile_features(zuOptions INTERFACE cxx_std_20)
target_compile_options(
  zuOptions
  INTERFACE
    # No contraction to fused operations: times and random numbers are the same on every platform
    # and at every optimisation level.
    -ffp-contract=off
    # No path of the build machine in the products.
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/="
    -Wall
    -Wextra
    -Wpedantic
    -Wconversion
    -Wshadow
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    # g++ 12 warns at -O3 of copies in std::string that can't happen (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    # Warnings that g++ does not give in tests: signs in indices, and intended self-assignments.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-self-assign-overloaded>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-potentially-evaluated-expression>
    $<$<BOOL:${ZU_WARNINGS_AS_ERRORS}>:-Werror>)

# Additional warnings for the libraries' own sources. They apply to headers, too: some clients
# enable them.
add_library(zuSourceOptions INTERFACE)
target_compile_options(zuSourceOptions INTERFACE -Wsign-conversion -Wold-style-cast)

if(ZU_SANITIZE)
  target_compile_options(
    zuOptions INTERFACE "-fsanitize=${ZU_SANITIZE}" -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
  target_link_options(zuOptions INTERFACE "-fsanitize=${ZU_SANITIZE}")
endif()

# A shared library exports what its sources mark, and no instantiations of the standard library's
# templates.
function(zu_show_own_names target)
  if(NOT WIN32)
    set(map "${PROJECT_SOURCE_DIR}/src/base/exports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} PROPERTY LINK_DEPENDS "${map}")
  endif()
endfunction()

# The parts of the static form of a library: the objects of its shared form, so that nothing is
# compiled twice. On Windows the objects of the shared form contain export marks, so they are
# compiled once more.
function(zu_parts_of_archive shared parts)
  if(NOT WIN32)
    set(${parts} $<TARGET_OBJECTS:${shared}> PARENT_SCOPE)
  endif()
endfunction()

if(WIN32)
  set(zuPlatform Windows)
else()
  set(zuPlatform Linux)
endif()

# For this platform the compiler assumes that an inline function of the same source preserves
# certain registers, even where the linker chooses another source's copy, which was compiled
# differently.
if(MINGW)
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-ipa-ra>)
endif()

# The runtime libraries of the Windows toolchain, beside the programs that need them.
if(MINGW)
  file(MAKE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
      COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${dll}"
      OUTPUT_VARIABLE path
      OUTPUT_STRIP_TRAILING_WHITESPACE)
    file(COPY_FILE "${path}" "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll}" ONLY_IF_DIFFERENT)
    if(ZU_INSTALL)
      install(FILES "${path}" DESTINATION bin COMPONENT runtime)
    endif()
  endforeach()
endif()
