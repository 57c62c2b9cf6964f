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

# And all that an editor may call, or derive from, is there.
set(assistant BDA::BulkDumpAssistant)
set(bridge BDA::BulkDumpBridge)
set(wanted
    "${assistant}::BulkDumpAssistant(EvtSrv::EventPortManager*"
    "${assistant}::BulkDumpAssistant(${assistant} const&)"
    "${assistant}::operator=(${assistant} const&)"
    "${assistant}::~BulkDumpAssistant()"
    "${assistant}::registerBDABridge(${bridge}*)"
    "${assistant}::checkBulkDumpMessage(unsigned char const*, unsigned long)"
    "${assistant}::receiveBulkDump(unsigned char const*, unsigned long, BDA::DevicePortNum)"
    "${assistant}::bdaLoop()"
    "${assistant}::init()"
    "${assistant}::checkAddress(BDA::Address const&)"
    "${assistant}::isEditBufferFooter(BDA::Address const&)"
    "${assistant}::showMsg(unsigned short)"
    "${assistant}::closeMsg()"
    "${bridge}::BulkDumpBridge(${assistant}*)"
    "${bridge}::BulkDumpBridge(${bridge} const&)"
    "${bridge}::operator=(${bridge} const&)"
    "${bridge}::~BulkDumpBridge()"
    "vtable for ${bridge}"
    "typeinfo for ${bridge}"
    "BDA::Utility::calcCheckSum(unsigned char const*, unsigned long)"
    "BDA::Utility::isCorrectCheckSum(unsigned char const*, unsigned long)"
    "BDA::Utility::getDeviceNumber(CMA::JobTools&, unsigned char*)")
foreach(symbol IN LISTS wanted)
  string(FIND "${output}" " ${symbol}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "${LIBRARY} lacks ${symbol}")
  endif()
endforeach()
