# bda_add_test(NAME name SOURCES file... [LIBS target...] [EXHAUSTIVE])
#
# One test program of GoogleTest, GoogleMock and RapidCheck; each TEST in it is a test of CTest named name.Suite.Test.
# EXHAUSTIVE marks sweeps over whole ranges: their label keeps them out of all builds but the release one. A test that
# has a cheap sample of its sweep uses #ifdef BDA_SAMPLED instead.
include(GoogleTest)

function(bda_add_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "EXHAUSTIVE" "NAME" "SOURCES;LIBS")
  if(NOT arg_NAME OR NOT arg_SOURCES OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "bda_add_test(NAME name SOURCES file... [LIBS target...] [EXHAUSTIVE])")
  endif()
  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE bda-warnings ${arg_LIBS} rapidcheck_gtest rapidcheck GTest::gmock_main)
  target_include_directories(${arg_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${arg_NAME} PRIVATE $<$<BOOL:${BDA_SAMPLED}>:BDA_SAMPLED>
                                                 BDA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  # Test code is mostly templates of the test libraries; at -O1 it compiles in two thirds of the time. What it tests stays at -O2.
  target_compile_options(${arg_NAME} PRIVATE $<$<CONFIG:Release>:-O1>)
  set(properties TIMEOUT 120)
  if(arg_EXHAUSTIVE)
    set(properties TIMEOUT 600 LABELS exhaustive)
  endif()
  gtest_discover_tests(${arg_NAME} TEST_PREFIX ${arg_NAME}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES ${properties})
endfunction()
