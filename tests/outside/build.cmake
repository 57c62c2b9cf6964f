# cmake -DGENERATOR=... -DBUILD=... -DEMULATOR=... -DOPTIONS=... -P build.cmake: configures the outside project as if for
# the first time, builds it and, where there is one, runs its program.
execute_process(COMMAND ${CMAKE_COMMAND} --fresh -S ${CMAKE_CURRENT_LIST_DIR} -B ${BUILD} -G ${GENERATOR} ${OPTIONS}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB program ${BUILD}/outside ${BUILD}/outside.exe ${BUILD}/outside.js)
if(program)
  execute_process(COMMAND ${EMULATOR} ${program} COMMAND_ERROR_IS_FATAL ANY)
elseif(NOT OPTIONS MATCHES "OUTSIDE_WAY=none")
  message(FATAL_ERROR "no program in ${BUILD}")
endif()
