# cmake -DSOURCE=... -DPROGRAM=... -DGENERATOR=... -DBUILD=... -DEMULATOR=... -DOPTIONS=... [-DRUN=...] -P build.cmake:
# configures a project as if for the first time, builds it and, where it has that program, runs it. The script RUN may do
# that instead: `program` is what to call.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${CMAKE_COMMAND} --fresh -S ${SOURCE} -B ${BUILD} -G ${GENERATOR} ${OPTIONS}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB program ${BUILD}/${PROGRAM} ${BUILD}/${PROGRAM}.exe ${BUILD}/${PROGRAM}.js)
if(program)
  list(PREPEND program ${EMULATOR})
elseif(NOT OPTIONS MATCHES "OUTSIDE_WAY=none")
  message(FATAL_ERROR "no program in ${BUILD}")
endif()
if(RUN)
  include(${RUN})
elseif(program)
  execute_process(COMMAND ${program} COMMAND_ERROR_IS_FATAL ANY)
endif()
