# How everything in this project is compiled.

# All programs and libraries of a build stand in one directory: a Windows program finds its
# libraries only beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

find_package(Threads REQUIRED)

add_library(zuOptions INTERFACE)
target_compile_features(zuOptions INTERFACE cxx_std_20)
target_compile_options(
  zuOptions
  INTERFACE
    # Results on time and random numbers are the same on every platform and at every level of
    # optimisation: no contraction to fused operations.
    -ffp-contract=off
    # No path of the building machine in the products.
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/="
    -Wall
    -Wextra
    -Wpedantic
    -Wconversion
    -Wshadow
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    # What g++ does not warn of in tests: signs in indices, and what is assigned to itself on purpose.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-self-assign-overloaded>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-potentially-evaluated-expression>
    $<$<BOOL:${ZU_WARNINGS_AS_ERRORS}>:-Werror>)

# What the libraries' own sources are told of beside that. Their headers are, too: some clients ask.
add_library(zuSourceOptions INTERFACE)
target_compile_options(zuSourceOptions INTERFACE -Wsign-conversion -Wold-style-cast)

if(ZU_SANITIZE)
  target_compile_options(
    zuOptions INTERFACE "-fsanitize=${ZU_SANITIZE}" -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
  target_link_options(zuOptions INTERFACE "-fsanitize=${ZU_SANITIZE}")
endif()

# A shared library shows what its sources say, and nothing that the standard library's templates
# happened to leave in it.
function(zu_show_own_names target)
  if(NOT WIN32)
    set(map "${PROJECT_SOURCE_DIR}/src/base/exports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} PROPERTY LINK_DEPENDS "${map}")
  endif()
endfunction()

# What the static form of a library is made of: the objects of its shared form, so that nothing is
# compiled twice. On Windows objects say that they are exported, and are compiled once more.
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

# For this platform the compiler takes for granted which registers an inline function of the same
# source leaves alone, even where the linker takes another source's copy, which was compiled in
# another way.
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
