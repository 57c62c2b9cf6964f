# cmake -DEXAMPLES=... -DPROGRAM=... -P minimal_editor.cmake: the editor that makers copy, given all the messages there
# are, says what minimal-editor.txt has: which contents were stored, and that every byte came back.
cmake_minimum_required(VERSION 3.25)
set(expected_file ${CMAKE_CURRENT_LIST_DIR}/minimal-editor.txt)

function(bda_run_minimal_editor program)
  file(GLOB messages RELATIVE ${EXAMPLES} ${EXAMPLES}/*.syx)
  execute_process(COMMAND ${program} ${messages} WORKING_DIRECTORY ${EXAMPLES} OUTPUT_VARIABLE said
                  COMMAND_ERROR_IS_FATAL ANY)
  file(READ ${expected_file} expected)
  if(NOT said STREQUAL expected)
    message(FATAL_ERROR "${program} says\n${said}\nand not, as ${expected_file} has it,\n${expected}")
  endif()
endfunction()

if(PROGRAM)
  bda_run_minimal_editor(${PROGRAM})
endif()
