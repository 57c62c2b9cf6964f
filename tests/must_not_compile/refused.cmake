# cmake -DCOMPILER=... -DSOURCE=... -DINCLUDES=... -DBAD=... -DEXPECTED=... -P refused.cmake
list(TRANSFORM INCLUDES PREPEND -I)
execute_process(COMMAND ${COMPILER} -std=c++20 -Wall -Wextra -fsyntax-only ${INCLUDES} -DBAD=${BAD} ${SOURCE}
                RESULT_VARIABLE result OUTPUT_VARIABLE diagnostics ERROR_VARIABLE diagnostics)

if(BAD EQUAL 0)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "the control does not compile:\n${diagnostics}")
  endif()
elseif(result EQUAL 0)
  message(FATAL_ERROR "compiled, but had to be refused with: ${EXPECTED}")
else()
  string(FIND "${diagnostics}" "${EXPECTED}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "refused for another reason than \"${EXPECTED}\":\n${diagnostics}")
  endif()
endif()
