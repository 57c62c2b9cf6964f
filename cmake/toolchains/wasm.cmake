# WebAssembly by Debian's emscripten, under node: one thread, static libraries, exceptions caught.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(CMAKE_CXX_FLAGS_INIT -fexceptions)
# The memory grows as needed, and the tests read the files of this machine.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sALLOW_MEMORY_GROWTH -sNODERAWFS -sEXIT_RUNTIME -sWASM_ASYNC_COMPILATION=0")
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR node)
set(BUILD_SHARED_LIBS OFF)
set(BDA_PLATFORM wasm)
