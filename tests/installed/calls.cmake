# The examples in C do what they say. For tests/outside/build.cmake, which has built them in BUILD.
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${BUILD} --no-tests=error --output-on-failure -C Debug
                COMMAND_ERROR_IS_FATAL ANY)
