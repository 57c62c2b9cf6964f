#pragma once

// What the assistant traces about a message that it does not take.

#include <cstdio>
#include <string>
#include <vector>

#include "support/RecordingPlatform.h"

namespace Testing {

inline constexpr const char* kFamily = "BulkDumpAssistant";
inline constexpr const char* kCheckMessage = "BDA::BulkDumpAssistant::checkBulkDumpMessage";
inline constexpr const char* kReceive = "BDA::BulkDumpAssistant::receiveBulkDump";

inline std::vector<std::string> deviceOff() {
  return failure(kFamily, 237, kCheckMessage, "Device Number is set to [OFF]... so can't send SysExc.\n");
}
inline std::vector<std::string> wrongDevice(int setting, int device) {
  return failure(kFamily, 245, kCheckMessage,
                 "Wrong Device Number... so can't send SysExc. Utility DevNum=[" + std::to_string(setting) +
                     "], Message Dev Num=[" + std::to_string(device) + "]\n");
}
inline std::vector<std::string> switchOff(int line) {
  return failure(kFamily, line, kCheckMessage, "Receive Bulk Sw is OFF !!!\n");
}
inline std::vector<std::string> receivingError() {
  return failure(kFamily, 573, kReceive, "ERROR: Bulk Dump Msg receiving error!\n");
}
inline std::vector<std::string> wrongCheckSum(const Bytes& message, unsigned computed, unsigned received) {
  char text[160];
  std::snprintf(text, sizeof text,
                "Check Sum Error!: Address=[%02x,%02x,%02x], Received Check Sum=[ 0x%02x ], Correct Check Sum=[ 0x%02x "
                "]\n",
                unsigned{message[7]}, unsigned{message[8]}, unsigned{message[9]}, computed, received);
  return failure(kFamily, 267, kCheckMessage, text);
}
inline std::vector<std::string> wrongLength(std::size_t length) {
  return failure("Utilities", 139, "BDA::Utility::calcCheckSum",
                 "error : wrong length ! [length = " + std::to_string(length) + "]\n");
}

}  // namespace Testing
