# cmake -DPKG_CONFIG=... -DPREFIX=... -DLIBDIR=... -DKIND=... -DVERSION=... -DCOMPILER=...
#       -DEXAMPLE=... -DWORK=... -P pkg_config.cmake
#
# The outside project and the editor that makers copy, by a compiler and pkg-config alone, after what was installed has
# moved.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/minimal_editor.cmake)
file(REMOVE_RECURSE ${WORK})
file(COPY ${PREFIX}/ DESTINATION ${WORK}/moved)
set(ENV{PKG_CONFIG_PATH} ${WORK}/moved/${LIBDIR}/pkgconfig)
set(static)
if(KIND STREQUAL "static")
  set(static --static)
endif()

# bda_ask(result argument...): what pkg-config answers, as a list.
function(bda_ask result)
  execute_process(COMMAND ${PKG_CONFIG} ${ARGN} OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(answer)
  set(${result} ${answer} PARENT_SCOPE)
endfunction()

foreach(module IN ITEMS bda bda-platform)
  bda_ask(version --modversion ${module})
  bda_ask(prefix --variable=prefix ${module})
  file(REAL_PATH ${prefix} prefix)
  if(NOT version STREQUAL VERSION OR NOT prefix STREQUAL "${WORK}/moved")
    message(FATAL_ERROR "${module} is ${version} in ${prefix}")
  endif()
endforeach()
bda_ask(flags ${static} --cflags --libs bda)
if(static AND NOT "-pthread" IN_LIST flags)
  message(FATAL_ERROR "static libraries bring no threads: ${flags}")
endif()

# bda_compile(program file option...)
function(bda_compile program file)
  execute_process(COMMAND ${COMPILER} -std=c++17 -Wall -Wextra -Wpedantic -Werror ${ARGN} ${file} ${flags}
                          -Wl,-rpath,${WORK}/moved/${LIBDIR} -o ${program} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(outside ${CMAKE_CURRENT_LIST_DIR}/../outside)
bda_compile(${WORK}/outside ${outside}/main.cpp -I${outside}/own)
execute_process(COMMAND ${WORK}/outside COMMAND_ERROR_IS_FATAL ANY)
bda_compile(${WORK}/minimal-editor ${EXAMPLE}/main.cpp)
bda_run_minimal_editor(${WORK}/minimal-editor)
