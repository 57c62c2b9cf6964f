# cmake -DHOST=... -P nothing_else.cmake: a project that did not ask for more got two libraries: no tests, nothing to
# be installed, no files. That there are no other targets and components, tests/outside sees for itself.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${HOST} -N OUTPUT_VARIABLE tests ERROR_VARIABLE tests)
if(NOT tests MATCHES "Total Tests: 0|No test configuration file found")
  message(FATAL_ERROR "has tests:\n${tests}")
endif()

file(REMOVE_RECURSE ${HOST}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${HOST} --prefix ${HOST}/prefix COMMAND_ERROR_IS_FATAL ANY)
foreach(stranger IN ITEMS prefix compile_commands.json CPackConfig.cmake)
  if(EXISTS ${HOST}/${stranger})
    message(FATAL_ERROR "made ${HOST}/${stranger}")
  endif()
endforeach()
