# SPDX-License-Identifier: Apache-2.0
# orv_test(<program> SOURCES <file>... LINK <target>... [LABELS <label>...] [SECONDS <for each test>])
#
# A GoogleTest program whose tests CTest runs one process each (the engine has process-wide state). tests/support has
# its main(): a console application object, no display, a throw-away HOME.
find_package(GTest REQUIRED)
include(GoogleTest)

function(orv_test program)
  cmake_parse_arguments(test "" "SECONDS" "SOURCES;LINK;LABELS" ${ARGN})
  if(NOT test_SECONDS)
    set(test_SECONDS 180)
  endif()
  add_executable(${program} ${test_SOURCES})
  target_link_libraries(${program} PRIVATE orv_test_support ${test_LINK})
  set_target_properties(${program} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_precompile_headers(${program} REUSE_FROM orv_test_support)
  gtest_discover_tests(${program} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT ${test_SECONDS} LABELS "${test_LABELS}")
endfunction()
