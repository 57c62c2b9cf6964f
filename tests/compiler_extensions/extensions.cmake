# cmake -DROOT=... -P extensions.cmake
set(extensions "__attribute|__declspec|__builtin_|__extension__|__typeof|__int128|__PRETTY_FUNCTION__|__restrict"
               "|__FUNCSIG__|\\[\\[(gnu|clang|msvc)::|#pragma +(GCC|clang|warning)|_Pragma|cxxabi[.]h|unistd[.]h"
               "|sys/[a-z]+[.]h|pthread[.]h|sched[.]h|intrin[.]h|windows[.]h")
string(CONCAT extensions ${extensions})

# Each with what it may name.
set(allowed_platform/include/bda/Export.h "__attribute|__declspec")
set(allowed_bulk-dump-assistant/bda/Compiler.h "__builtin_")
set(allowed_platform/UtilSrv/Thread.cpp "pthread[.]h")
set(allowed_tests/support/OwnScheduling.h "pthread[.]h|sys/[a-z]+[.]h|unistd[.]h")

file(GLOB_RECURSE sources RELATIVE ${ROOT}
     ${ROOT}/platform/*.h ${ROOT}/platform/*.cpp ${ROOT}/bulk-dump-assistant/*.h ${ROOT}/bulk-dump-assistant/*.cpp
     ${ROOT}/tests/bda/*.h ${ROOT}/tests/bda/*.cpp ${ROOT}/tests/platform/*.cpp ${ROOT}/tests/support/*.h
     ${ROOT}/tests/support/*.cpp ${ROOT}/fuzz/codec_fuzz.cpp ${ROOT}/fuzz/assistant_fuzz.cpp ${ROOT}/fuzz/replay.cpp
     ${ROOT}/fuzz/commands.h ${ROOT}/fuzz/input.h ${ROOT}/fuzz/require.h)
list(LENGTH sources count)
if(count LESS 100)
  message(FATAL_ERROR "only ${count} sources found under ${ROOT}")
endif()

set(strangers)
foreach(source IN LISTS sources)
  file(STRINGS ${ROOT}/${source} lines REGEX "${extensions}")
  foreach(line IN LISTS lines)
    string(REGEX MATCHALL "${extensions}" found "${line}")
    foreach(extension IN LISTS found)
      if(NOT DEFINED allowed_${source} OR NOT extension MATCHES "^(${allowed_${source}})$")
        string(APPEND strangers "  ${source}: ${extension}\n")
      endif()
    endforeach()
  endforeach()
endforeach()
if(strangers)
  message(FATAL_ERROR "extensions outside of Export.h and Compiler.h:\n${strangers}")
endif()
