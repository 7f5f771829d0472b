# What a build can be told, and the flags that hold for every target of it.

option(TOLVAN_DEVELOPER_BUILD "Take the server addresses from the environment when it names them" ON)
option(TOLVAN_TESTS "Build the tests" ON)
option(TOLVAN_BENCHMARKS "Build the benchmarks" OFF)
option(TOLVAN_FUZZ "Build the fuzz targets (clang)" OFF)
set(TOLVAN_SANITIZE "" CACHE STRING "Sanitizers for every target, for instance address,undefined")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(WIN32)
  set(TOLVAN_ADAPTER win32)
else()
  set(TOLVAN_ADAPTER host)
endif()

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Paths below the source tree are cached as relative ones, so that two checkouts share objects.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                    -Woverloaded-virtual -Wconversion -Wsign-conversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wduplicated-cond -Wlogical-op -Wno-psabi)
  # GCC 12 sees overlaps and overruns in its own inlined std::string and std::vector.
  add_compile_options(-Wno-restrict -Wno-array-bounds -Wno-stringop-overflow
                      -Wno-stringop-overread)
endif()
if(WIN32)
  add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  # Casts of the system's own macros (INVALID_HANDLE_VALUE, MAKEINTRESOURCE) are C style.
  add_compile_options(-Wno-old-style-cast -Wno-cast-function-type)
endif()
if(TOLVAN_SANITIZE)
  add_compile_options(-fsanitize=${TOLVAN_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TOLVAN_SANITIZE})
endif()
if(TOLVAN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
  # Clang minds that its assembler has no use for them.
  add_compile_options($<$<COMPILE_LANGUAGE:ASM>:-Wno-unused-command-line-argument>)
endif()
