# aicam_add_test(NAME SOURCES... LIBS... [LABEL L]): one GoogleTest program per
# component, each test case registered with CTest (labelled L, by default NAME)
# and run in a fresh scratch directory.
include(GoogleTest)
find_package(GTest REQUIRED)

if(NOT TARGET aicam_test_main)
  add_library(aicam_test_main STATIC ${PROJECT_SOURCE_DIR}/tests/ScratchMain.cpp)
  target_link_libraries(aicam_test_main PUBLIC GTest::gtest)
endif()

function(aicam_add_test name)
  cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LIBS" ${ARGN})
  if(NOT ARG_LABEL)
    set(ARG_LABEL ${name})
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} aicam_test_main GTest::gtest Threads::Threads)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/${name}.work)
  file(MAKE_DIRECTORY ${work})
  gtest_discover_tests(${name} WORKING_DIRECTORY ${work} DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT 300 LABELS ${ARG_LABEL})
endfunction()
