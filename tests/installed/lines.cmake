# cmake -DFILE=... -DMOST=... -P lines.cmake
file(READ ${FILE} text)
string(REGEX MATCHALL "\n" ends "${text}")
list(LENGTH ends lines)
if(lines GREATER MOST)
  message(FATAL_ERROR "${FILE} has ${lines} lines, and may have ${MOST}")
endif()
