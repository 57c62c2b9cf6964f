# The editor that makers copy, given all the messages there are, says what minimal-editor.txt has: which contents were
# stored, and that every byte came back. For tests/outside/build.cmake, whose `program` it runs, and for pkg_config.cmake.
set(expected_file ${CMAKE_CURRENT_LIST_DIR}/minimal-editor.txt)
set(examples ${CMAKE_CURRENT_LIST_DIR}/../../examples)

# bda_run_minimal_editor(program): `program` may be a list, an emulator before it.
function(bda_run_minimal_editor program)
  file(GLOB messages RELATIVE ${examples} ${examples}/*.syx)
  execute_process(COMMAND ${program} ${messages} WORKING_DIRECTORY ${examples} OUTPUT_VARIABLE said
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\r\n" "\n" said "${said}")
  file(READ ${expected_file} expected)
  if(NOT said STREQUAL expected)
    message(FATAL_ERROR "${program} says\n${said}\nand not, as ${expected_file} has it,\n${expected}")
  endif()
endfunction()

if(program)
  bda_run_minimal_editor("${program}")
endif()
