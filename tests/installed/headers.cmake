# cmake -DCOMPILER=... -DSTANDARD=... -DPREFIX=... -DWORK=... -P headers.cmake
#
# Each installed header compiles alone, with exceptions and without, under an editor's strictest warnings, although the
# editor has files of the same names in the first folder of its include path: each says #error.
file(REMOVE_RECURSE ${WORK})
file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include ${PREFIX}/include/*)
if(NOT headers)
  message(FATAL_ERROR "no header in ${PREFIX}/include")
endif()

set(sources)
foreach(header IN LISTS headers)
  string(MAKE_C_IDENTIFIER ${header} source)
  file(WRITE ${WORK}/${source}.cpp "#include \"${header}\"\n")
  list(APPEND sources ${WORK}/${source}.cpp)
  # bda/platform/CMA/Job.h: the editor has a platform/CMA/Job.h, a CMA/Job.h and a Job.h.
  set(short ${header})
  while(short MATCHES "^[^/]+/(.+)$")
    set(short ${CMAKE_MATCH_1})
    file(WRITE ${WORK}/own/${short} "#error \"the editor's own ${short}\"\n")
  endwhile()
endforeach()

foreach(without IN ITEMS "" "-fno-exceptions;-fno-rtti")
  execute_process(COMMAND ${COMPILER} -std=c++${STANDARD} -fsyntax-only ${without} -Wall -Wextra -Wpedantic -Wshadow
                          -Wconversion -Wold-style-cast -Werror -I${WORK}/own -I${PREFIX}/include ${sources}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
list(LENGTH headers count)
message("${count} headers")
