# The shapes of this project's targets.

# tolvan_library(NAME [DEPENDS lib...])
# The static library of one folder: every source in it. Includes are written from src/ on
# ("patch/crc32.h"), and only what DEPENDS names can be included or linked.
function(tolvan_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  if(NOT sources AND NOT ARG_SOURCES)
    # A room whose first source is still to come.
    set(ARG_SOURCES ${CMAKE_CURRENT_BINARY_DIR}/empty.cpp)
    file(TOUCH ${ARG_SOURCES})
  endif()
  add_library(${name} STATIC ${sources} ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  if(ARG_DEPENDS)
    target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
  endif()
endfunction()

# tolvan_program(TARGET OUTPUT name [SOURCES file...] [DEPENDS lib...])
# A program that starts in ProgramMain (platform/entry.h). It is called OUTPUT.exe on both platforms.
function(tolvan_program target)
  cmake_parse_arguments(ARG "" "OUTPUT" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${target} WIN32 ${ARG_SOURCES}
                 ${PROJECT_SOURCE_DIR}/src/platform/${TOLVAN_ADAPTER}/entry/main.cpp)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME "${ARG_OUTPUT}" SUFFIX ".exe")
  target_link_libraries(${target} PRIVATE tolvan_platform ${ARG_DEPENDS})
  if(WIN32)
    target_link_options(${target} PRIVATE -municode)
  endif()
endfunction()
