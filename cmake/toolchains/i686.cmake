# 32 bits on this processor, no emulator. Linked statically: the machine that runs it needs no libraries of 32 bits.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(BUILD_SHARED_LIBS OFF)
set(BDA_PLATFORM i686)
