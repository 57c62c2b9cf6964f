# bda_build_outside(name OPTIONS option...)
#
# A test that configures tests/outside as if for the first time, with this build's compiler, builds it in a folder of the
# test's name and runs its program.
function(bda_build_outside name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "OPTIONS")
  set(options ${arg_OPTIONS})
  foreach(variable IN ITEMS CMAKE_CXX_COMPILER CMAKE_CXX_COMPILER_LAUNCHER CMAKE_TOOLCHAIN_FILE CMAKE_MAKE_PROGRAM)
    if(${variable})
      list(APPEND options -D${variable}=${${variable}})
    endif()
  endforeach()
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -DGENERATOR=${CMAKE_GENERATOR} -DBUILD=${CMAKE_CURRENT_BINARY_DIR}/${name}
                                "-DEMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}" "-DOPTIONS=${options}"
                                -P ${PROJECT_SOURCE_DIR}/tests/outside/build.cmake)
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT CMAKE_BUILD_PARALLEL_LEVEL=1)
endfunction()
