# Windows by MinGW-w64 with the system's threads, for which its C++ library has no std::thread; under Wine. Linked
# statically: a program needs no DLL in its path.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(BUILD_SHARED_LIBS OFF)
set(BDA_PLATFORM windows-win32)
