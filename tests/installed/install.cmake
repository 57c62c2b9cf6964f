# cmake -DBUILD=... -DPREFIX=... [-DASK=ON] -P install.cmake: installs into a fresh folder, so that nothing old hides
# what is missing; ASK, out of a project that has to ask its guest for it.
file(REMOVE_RECURSE ${PREFIX})
if(ASK)
  execute_process(COMMAND ${CMAKE_COMMAND} -DBDA_INSTALL=ON ${BUILD} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX} COMMAND_ERROR_IS_FATAL ANY)
