# aicam_add_test(NAME SOURCES... LIBS...): one GoogleTest program per component,
# each test case registered with CTest and run in its own scratch directory.
include(GoogleTest)
find_package(GTest REQUIRED)

function(aicam_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/${name}.work)
  file(MAKE_DIRECTORY ${work})
  gtest_discover_tests(${name} WORKING_DIRECTORY ${work} DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT 300)
endfunction()
