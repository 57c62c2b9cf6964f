# cmake -DNM=... -DLIBRARY=... -P symbols.cmake
execute_process(COMMAND ${NM} --dynamic --demangle --defined-only ${LIBRARY} OUTPUT_VARIABLE output
                COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\n$" "" output "${output}")
string(REPLACE ";" "," output "${output}")
string(REPLACE "\n" ";" lines "${output}")

set(strangers)
foreach(line IN LISTS lines)
  # 0000000000001220 T BDA::BulkDumpBridge::BulkDumpBridge(BDA::BulkDumpAssistant*)
  string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" symbol "${line}")
  if(NOT symbol MATCHES "^BDA::(BulkDumpAssistant|BulkDumpBridge|Utility)::(~?[A-Za-z]+|operator=)\\(" AND
     NOT symbol MATCHES "^(vtable|typeinfo|typeinfo name) for BDA::BulkDumpBridge$")
    string(APPEND strangers "  ${line}\n")
  endif()
endforeach()
if(strangers)
  message(FATAL_ERROR "${LIBRARY} shows more than its three classes:\n${strangers}")
endif()

# And what an editor calls is there.
foreach(wanted IN ITEMS "BDA::BulkDumpAssistant::receiveBulkDump(" "BDA::BulkDumpAssistant::~BulkDumpAssistant()"
                        "BDA::BulkDumpBridge::BulkDumpBridge(" "vtable for BDA::BulkDumpBridge"
                        "BDA::Utility::calcCheckSum(")
  string(FIND "${output}" "${wanted}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "${LIBRARY} lacks ${wanted}")
  endif()
endforeach()
