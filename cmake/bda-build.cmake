# How everything in this repository is compiled, here and inside of somebody else's project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_UNITY_BUILD OFF)  # sources have names of their own, which are the same in each

# Which kind of libraries: the builder's choice, where the system has both.
get_property(BDA_IS_SHARED GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)
if(NOT BUILD_SHARED_LIBS)
  set(BDA_IS_SHARED OFF)
endif()
# Static libraries too: an editor may be a plug-in. WebAssembly has no use for it, Windows needs no flag.
if(NOT DEFINED CMAKE_POSITION_INDEPENDENT_CODE AND CMAKE_EXECUTABLE_FORMAT MATCHES "ELF|MACHO")
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()

# Every target of ours links this one.
add_library(bda-warnings INTERFACE)

if(BDA_SANITIZE)
  string(REPLACE ";" "," sanitizers "${BDA_SANITIZE}")
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${sanitizers})
endif()

# The rest is how its developers work: a guest brings no opinions along. Nor is he judged by those of his host, whose
# warnings may be other ones, and errors.
if(NOT PROJECT_IS_TOP_LEVEL)
  target_compile_options(bda-warnings INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-w>)
  return()
endif()

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(BDA_CCACHE ccache)
if(BDA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${BDA_CCACHE})
endif()

target_compile_options(bda-warnings INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wshadow
                                              -Wconversion $<$<BOOL:${BDA_WERROR}>:-Werror>>)

# A shared library that forgets one of its dependencies fails here, not in the editor that loads it. Clang's sanitizers
# are such a dependency on purpose.
if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF" AND NOT BDA_SANITIZE)
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-z,defs>)
endif()
