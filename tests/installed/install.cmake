# cmake -DBUILD=... -DPREFIX=... -P install.cmake: installs into a fresh folder, so that nothing old hides what is missing.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX} COMMAND_ERROR_IS_FATAL ANY)
