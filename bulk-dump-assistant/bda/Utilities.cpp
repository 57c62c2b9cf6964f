#include <array>

#include "BulkMessage.h"
#include "CMA/JobTools.h"
#include "Failure.h"
#include "bda/BulkDumpAssistant.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\Utilities.cpp";
constexpr Failure<int> kWrongLength{{kFile, 139, "BDA::Utility::calcCheckSum"},
                                    "error : wrong length ! [length = %d]\n"};
constexpr BareMessage kTooShort{"Message is too short!!!\n"};

constexpr std::uint16_t kDeviceNumberParameter = 51;

// Modulo 256, which is enough: 128 divides it. The lanes of a block do not depend on each other, so that compilers use
// whole vector registers.
std::uint8_t sumOf(const unsigned char* bytes, std::size_t count) {
  constexpr std::size_t kLanes = 32;
  unsigned sum = 0;
  if (count >= kLanes) {
    std::array<std::uint8_t, kLanes> lanes{};
    do {
      for (std::size_t i = 0; i < kLanes; ++i) lanes[i] = std::uint8_t(lanes[i] + bytes[i]);
      bytes += kLanes;
      count -= kLanes;
    } while (count >= kLanes);
    for (const std::uint8_t lane : lanes) sum += lane;
  }
  for (; count > 0; --count) sum += *bytes++;
  return std::uint8_t(sum);
}

}  // namespace

unsigned char Utility::calcCheckSum(const unsigned char* message, unsigned long length) {
  if (message == nullptr || length < kDumpFrame || length != byteCountOf(message) + kDumpFrame) {
    kWrongLength(int(length));
    return 0;
  }
  const unsigned sum = sumOf(message + kByteCountAt, length - 2 - kByteCountAt);
  return (0U - sum) & 0x7FU;
}

bool Utility::isCorrectCheckSum(const unsigned char* message, unsigned long length) {
  if (message == nullptr || length < kDataAt || length < byteCountOf(message) + kDataAt) {
    kTooShort();
    return false;
  }
  const unsigned char correct = calcCheckSum(message, length);
  // A message that ends where its checksum should stand has none. One that lacks only its F7, or has bytes after it, is
  // measured as 0: a checksum byte of 0 passes, as the instrument has it.
  const unsigned long checksumAt = byteCountOf(message) + kDataAt;
  return length > checksumAt && correct == message[checksumAt];
}

CMA::DeviceNumber Utility::getDeviceNumber(CMA::JobTools& jobTools, unsigned char* nibble) {
  std::uint8_t setting = CMA::DeviceNumber_Off;
  CMA::SystemParameterModel* const system = jobTools.getSystemModel();
  if (CMA::ParameterGroup* const utility = system == nullptr ? nullptr : system->getUtility()) {
    setting = 0;
    utility->get(&setting, kDeviceNumberParameter);
  }
  const bool isDevice = setting != CMA::DeviceNumber_All && setting != CMA::DeviceNumber_Off;
  if (nibble != nullptr) *nibble = isDevice ? setting : std::uint8_t{0};
  return static_cast<CMA::DeviceNumber>(setting);
}

}  // namespace BDA
