# The example in C receives a file into a new library and lists what it holds then; what is no such file it refuses. For
# tests/outside/build.cmake, whose `program` it runs.
set(examples ${CMAKE_CURRENT_LIST_DIR}/../../examples)
set(library ${CMAKE_CURRENT_BINARY_DIR}/receive.db)
file(REMOVE ${library})
execute_process(COMMAND ${program} ${library} ${examples}/normal-voice.syx OUTPUT_VARIABLE said
                COMMAND_ERROR_IS_FATAL ANY)
if(NOT said MATCHES "^{\"content\":\"voice:[^\n]*}\n$")
  message(FATAL_ERROR "it lists\n${said}")
endif()
execute_process(COMMAND ${program} ${library} ${examples}/receive/receive.c RESULT_VARIABLE code ERROR_VARIABLE said)
if(NOT code EQUAL 1 OR NOT said MATCHES "receive[.]c: no System Exclusive message in it: it seems to be text")
  message(FATAL_ERROR "of a text it says ${code}:\n${said}")
endif()
