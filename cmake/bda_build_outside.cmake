# bda_build_outside(name [SOURCE folder] [PROGRAM name] [RUN script] OPTIONS option...)
#
# A test that configures a project outside of this tree as if for the first time, with this build's compiler, builds it in
# a folder of the test's name and runs its program, which is named like the project's folder unless it is said; or has the
# script run it, see tests/outside/build.cmake. The project is tests/outside if no other is named.
function(bda_build_outside name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SOURCE;PROGRAM;RUN" "OPTIONS")
  if(NOT arg_SOURCE)
    set(arg_SOURCE ${PROJECT_SOURCE_DIR}/tests/outside)
  endif()
  if(NOT arg_PROGRAM)
    cmake_path(GET arg_SOURCE FILENAME arg_PROGRAM)
  endif()
  set(options ${arg_OPTIONS})
  foreach(variable IN ITEMS CMAKE_CXX_COMPILER CMAKE_CXX_COMPILER_LAUNCHER CMAKE_TOOLCHAIN_FILE CMAKE_MAKE_PROGRAM)
    if(${variable})
      list(APPEND options -D${variable}=${${variable}})
    endif()
  endforeach()
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -DSOURCE=${arg_SOURCE} -DPROGRAM=${arg_PROGRAM} -DRUN=${arg_RUN}
                                -DGENERATOR=${CMAKE_GENERATOR} -DBUILD=${CMAKE_CURRENT_BINARY_DIR}/${name}
                                "-DEMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}" "-DOPTIONS=${options}"
                                -P ${PROJECT_SOURCE_DIR}/tests/outside/build.cmake)
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT CMAKE_BUILD_PARALLEL_LEVEL=1)
endfunction()
