#include <array>
#include <cstring>

#include "BulkMessage.h"
#include "Failure.h"
#include "SystemSettings.h"
#include "bda/BulkDumpAssistant.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\Utilities.cpp";
// Anybody may call these; of messages that are handled the assistant notes why they are refused.
constexpr Failure<int> kWrongLength{
    {kFile, 139, "BDA::Utility::calcCheckSum"}, Refusal::none, "error : wrong length ! [length = %d]\n"};
constexpr BareMessage kTooShort{Refusal::none, "Message is too short!!!\n"};

std::uint64_t load(const unsigned char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// The bytes of a word, added in pairs into four fields of 16 bits.
std::uint64_t pairSums(std::uint64_t word) {
  constexpr std::uint64_t kEvenBytes = 0x00FF00FF00FF00FF;
  return (word & kEvenBytes) + (word >> 8 & kEvenBytes);
}

constexpr std::size_t kLanes = 16;

// From its byte n on: a mask that keeps the last n lanes.
constexpr auto kLastLanes = [] {
  std::array<std::uint8_t, 2 * kLanes> mask{};
  for (std::size_t i = kLanes; i < mask.size(); ++i) mask[i] = 0xFF;
  return mask;
}();

// The sum, modulo 256, which is enough, for 128 divides it. The sixteen bytes that end with the last one can be read,
// also where they begin before the first. The lanes do not depend on each other, so that compilers use whole vector
// registers.
unsigned sumOf(const unsigned char* bytes, std::size_t left) {
  std::array<std::uint8_t, kLanes> lanes{};
  for (; left >= 4 * kLanes; left -= 4 * kLanes, bytes += 4 * kLanes)
    for (std::size_t i = 0; i < kLanes; ++i)
      lanes[i] =
          std::uint8_t(lanes[i] + (bytes[i] + bytes[i + kLanes]) + (bytes[i + 2 * kLanes] + bytes[i + 3 * kLanes]));
  for (; left >= kLanes; left -= kLanes, bytes += kLanes)
    for (std::size_t i = 0; i < kLanes; ++i) lanes[i] = std::uint8_t(lanes[i] + bytes[i]);
  bytes = bytes + left - kLanes;
  for (std::size_t i = 0; i < kLanes; ++i) lanes[i] = std::uint8_t(lanes[i] + (bytes[i] & kLastLanes[left + i]));
  return unsigned((pairSums(load(lanes.data())) + pairSums(load(&lanes[kLanes / 2]))) * 0x0001000100010001 >> 48);
}

}  // namespace

unsigned char Utility::calcCheckSum(const unsigned char* message, unsigned long length) {
  if (message == nullptr || length < kDumpFrame || length != byteCountOf(message) + kDumpFrame) {
    kWrongLength(int(length));
    return 0;
  }
  const unsigned char* const end = message + length - 2;
  unsigned sum = 0;
  if (end - message >= std::ptrdiff_t(kLanes)) {
    sum = sumOf(message + kByteCountAt, std::size_t(end - message) - kByteCountAt);
  } else {
    // Byte count and address by themselves: most messages of a header and a footer have nothing else.
    sum = 0U + message[5] + message[6] + message[7] + message[8] + message[9];
    for (const unsigned char* byte = message + kDataAt; byte != end; ++byte) sum += *byte;
  }
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
  try {
    return readDeviceNumber(jobTools, nibble);
  } catch (...) {
    if (nibble != nullptr) *nibble = 0;
    return CMA::DeviceNumber_Off;
  }
}

}  // namespace BDA
