# How everything in this repository is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Libraries and program side by side in one tree, found without LD_LIBRARY_PATH before and after installation.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}:$ORIGIN")

find_program(BDA_CCACHE ccache)
if(BDA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${BDA_CCACHE})
endif()

# Every target of ours links this one.
add_library(bda-warnings INTERFACE)
target_compile_options(bda-warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                              $<$<BOOL:${BDA_WERROR}>:-Werror>)

if(BDA_SANITIZE)
  string(REPLACE ";" "," sanitizers "${BDA_SANITIZE}")
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${sanitizers})
else()
  # A shared library that forgets one of its dependencies fails here, not in the editor that loads it.
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-z,defs>)
endif()
