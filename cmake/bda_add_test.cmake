# bda_add_test(NAME name SOURCES file... [LIBS target...] [EXHAUSTIVE] [UNITY] [PIECES n])
#
# One test program of GoogleTest, GoogleMock and RapidCheck; each TEST in it is a test of CTest named name.Suite.Test.
# EXHAUSTIVE marks sweeps over whole ranges: builds with BDA_SAMPLED leave them out. A test that has a cheap sample of
# its sweep uses #ifdef BDA_SAMPLED instead. UNITY compiles the sources as one, for those that share most of what they
# include: a fraction of the time. PIECES is in how many tests of CTest BDA_ONE_PIECE_TESTS leaves a long one, begun
# first, so that no processor waits for another at the end.
include(GoogleTest)

# The headers of the test libraries are half of what a test compiles: once for all of them, unless
# CMAKE_DISABLE_PRECOMPILE_HEADERS is on, as in the clang preset, which proves that each test includes what it needs.
# Test code is not optimised, except for exhaustive sweeps and where an emulated processor runs it: it
# takes half the time to compile.
set(bda_everyday_optimisation -O0)
set(bda_patience 1)
if(CMAKE_CROSSCOMPILING_EMULATOR)
  set(bda_patience 5)
endif()
if(CMAKE_CROSSCOMPILING_EMULATOR MATCHES qemu)
  # g++ 12 inlines one half of a pair of replaced operators new and delete, and then misses the other.
  set(bda_everyday_optimisation -O1 $<$<CXX_COMPILER_ID:GNU>:-Wno-mismatched-new-delete>)
endif()

function(bda_compile_test_code target optimisation)
  target_link_libraries(${target} PRIVATE bda-warnings rapidcheck_gtest rapidcheck GTest::gmock_main)
  target_compile_options(${target} PRIVATE ${optimisation})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)  # one set of flags for all kinds of targets
endfunction()

add_library(bda-test-headers OBJECT ${CMAKE_CURRENT_LIST_DIR}/bda-test-headers.cpp)
bda_compile_test_code(bda-test-headers "${bda_everyday_optimisation}")
target_precompile_headers(bda-test-headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <rapidcheck/gtest.h>)

function(bda_add_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "EXHAUSTIVE;UNITY" "NAME;PIECES" "SOURCES;LIBS")
  if(NOT arg_NAME OR NOT arg_SOURCES OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "bda_add_test(NAME name SOURCES file... [LIBS target...] [EXHAUSTIVE] [UNITY] [PIECES n])")
  endif()
  if(arg_EXHAUSTIVE AND BDA_SAMPLED)
    return()
  endif()
  bda_left_out(${arg_NAME} left_out)
  if(left_out)
    return()
  endif()
  add_executable(${arg_NAME} ${arg_SOURCES})
  set_target_properties(${arg_NAME} PROPERTIES UNITY_BUILD ${arg_UNITY} UNITY_BUILD_BATCH_SIZE 0)
  target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBS})
  if(arg_EXHAUSTIVE)
    set(timeout 600)
    bda_compile_test_code(${arg_NAME} -O1)
  else()
    set(timeout 120)
    bda_compile_test_code(${arg_NAME} "${bda_everyday_optimisation}")
    target_precompile_headers(${arg_NAME} REUSE_FROM bda-test-headers)
  endif()
  if(arg_UNITY)  # a fixture in an unnamed namespace is nothing odd in a file that is included
    target_compile_options(${arg_NAME} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
  target_include_directories(${arg_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${arg_NAME} PRIVATE $<$<BOOL:${BDA_SAMPLED}>:BDA_SAMPLED>
                                                 BDA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(BDA_ONE_PIECE_TESTS)
    math(EXPR timeout "600 * ${bda_patience}")
    if(NOT arg_PIECES)
      set(arg_PIECES 1)
    endif()
    math(EXPR last "${arg_PIECES} - 1")
    foreach(piece RANGE ${last})
      add_test(NAME ${arg_NAME}.${piece} COMMAND ${arg_NAME} --gtest_brief=1 --gtest_filter=*${left_out_TESTS})
      set_tests_properties(${arg_NAME}.${piece} PROPERTIES
                           TIMEOUT ${timeout} COST ${arg_PIECES}
                           ENVIRONMENT "GTEST_TOTAL_SHARDS=${arg_PIECES};GTEST_SHARD_INDEX=${piece}")
    endforeach()
  else()
    gtest_discover_tests(${arg_NAME} TEST_PREFIX ${arg_NAME}. TEST_FILTER "*${left_out_TESTS}"
                         DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES TIMEOUT ${timeout})
  endif()
endfunction()
