# tolvan_test(NAME name DEPENDS lib... [SOURCES file...] [LABELS label...] [TIMEOUT seconds] [SERVER]
#             [DISPLAY])
# One GoogleTest binary from the folder's *_test.cpp (or SOURCES), registered as one CTest entry: a
# cold start under Wine is dear. It runs in a machine of its own: on the host adapter a fresh folder,
# for the Windows build a Wine prefix. With SERVER a tolvan-server runs beside it; the test finds
# it in TOLVAN_TEST_HTTP and TOLVAN_TEST_HTTPS (base addresses ending in a slash).
# With DISPLAY it has a screen of its own, with a window manager, in DISPLAY.
# Labels: "slow" keeps a test out of the quick suite.
if(WIN32)
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)  # it takes these two as they are
  set(gtest_disable_pthreads ON)
  set(INSTALL_GTEST OFF)
  if(NOT TARGET gtest_main)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    foreach(target gtest gtest_main gmock gmock_main)
      target_compile_options(${target} PRIVATE -w)
      get_target_property(includes ${target} INTERFACE_INCLUDE_DIRECTORIES)
      set_target_properties(${target} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
    endforeach()
  endif()
  set(TOLVAN_GTEST gtest_main gmock)
  set(TOLVAN_MACHINE_WRAPPER ${PROJECT_SOURCE_DIR}/tests/support/with_wine.sh)
else()
  find_package(GTest REQUIRED)
  set(TOLVAN_GTEST GTest::gtest_main GTest::gmock)
  set(TOLVAN_MACHINE_WRAPPER ${PROJECT_SOURCE_DIR}/tests/support/with_machine.sh)
endif()

function(tolvan_test)
  cmake_parse_arguments(ARG "SERVER;DISPLAY" "NAME;TIMEOUT" "DEPENDS;SOURCES;LABELS" ${ARGN})
  if(NOT ARG_SOURCES)
    file(GLOB ARG_SOURCES CONFIGURE_DEPENDS *_test.cpp)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_DEPENDS} ${TOLVAN_GTEST})
  # GoogleTest's macros do not keep to these.
  target_compile_options(${ARG_NAME} PRIVATE -Wno-conversion -Wno-sign-conversion)
  # The code under test is optimised; its tests would only take twice as long to build.
  target_compile_options(${ARG_NAME} PRIVATE $<$<CONFIG:Release>:-O1>)
  set(command ${TOLVAN_MACHINE_WRAPPER} $<TARGET_FILE:${ARG_NAME}>)
  if(WIN32)
    # Wine's own processes would outlive a wrapper that CTest kills, so the wrapper keeps the limit.
    set(command ${TOLVAN_MACHINE_WRAPPER} --time-limit ${ARG_TIMEOUT} $<TARGET_FILE:${ARG_NAME}>)
    math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} + 30")
  endif()
  if(ARG_DISPLAY)
    set(command ${PROJECT_SOURCE_DIR}/tests/support/with_display.sh ${command})
  endif()
  if(ARG_SERVER)
    set(command ${PROJECT_SOURCE_DIR}/tests/support/with_server.sh ${command})
    if(NOT WIN32)
      # A Windows test has the server of build/host beside it.
      set(command ${CMAKE_COMMAND} -E env TOLVAN_HOST_BIN=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
                  ${command})
      add_dependencies(${ARG_NAME} tolvan-server)
    endif()
  endif()
  add_test(NAME ${ARG_NAME} COMMAND ${command})
  set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}"
                       SKIP_REGULAR_EXPRESSION "TOLVAN-SKIPPED")
  tolvan_sanitizer_options(${ARG_NAME})
endfunction()

# tolvan_sanitizer_options(TEST)
# Tells a sanitizer the findings that are not ours, and the test that there is one.
function(tolvan_sanitizer_options test)
  if(TOLVAN_SANITIZE)
    set(findings ${PROJECT_SOURCE_DIR}/tests/support)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT TOLVAN_SANITIZED=${TOLVAN_SANITIZE}
                 LSAN_OPTIONS=suppressions=${findings}/leaks.txt
                 TSAN_OPTIONS=suppressions=${findings}/races.txt)
  endif()
endfunction()
