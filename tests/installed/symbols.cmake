# cmake -DNM=... -DLIBRARY=... -DLIST=... -P symbols.cmake
#
# A shared library shows the symbols of the list, each by its full name, and no other. The list is sorted; names that
# stand for several symbols, such as a constructor's, are in it once.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${NM} --dynamic --demangle --defined-only ${LIBRARY} OUTPUT_VARIABLE shown
                COMMAND_ERROR_IS_FATAL ANY)
# 0000000000001220 T BDA::BulkDumpBridge::BulkDumpBridge(BDA::BulkDumpAssistant*)
string(REGEX REPLACE "\n$" "" shown "${shown}")
string(REPLACE "\n" ";" shown "${shown}")
# What an unoptimised build keeps, weak, of the standard library's templates is nobody's to call.
list(FILTER shown EXCLUDE REGEX "^[0-9a-f]+ W (.* )?std::")
list(TRANSFORM shown REPLACE "^[0-9a-f]+ [A-Za-z] " "")
list(REMOVE_DUPLICATES shown)
list(SORT shown)
file(STRINGS ${LIST} listed)

set(sorted ${listed})
list(REMOVE_DUPLICATES sorted)
list(SORT sorted)
if(NOT sorted STREQUAL listed)
  message(FATAL_ERROR "${LIST} is not sorted, or has a name twice")
endif()
if(NOT shown STREQUAL listed)
  set(strangers ${shown})
  list(REMOVE_ITEM strangers ${listed})
  set(missing ${listed})
  list(REMOVE_ITEM missing ${shown})
  list(JOIN strangers "\n  " strangers)
  list(JOIN missing "\n  " missing)
  message(FATAL_ERROR "${LIBRARY} shows what is not listed:\n  ${strangers}\nand lacks what is:\n  ${missing}")
endif()
list(LENGTH listed count)
message("${count} symbols")
