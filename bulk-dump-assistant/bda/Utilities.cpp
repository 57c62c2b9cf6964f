#include <array>
#include <bit>
#include <cstring>

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

std::uint64_t load(const unsigned char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// The bytes of a word, added in pairs into four fields of 16 bits: room for 128 words before one overflows.
std::uint64_t pairSums(std::uint64_t word) {
  constexpr std::uint64_t kEvenBytes = 0x00FF00FF00FF00FF;
  return (word & kEvenBytes) + (word >> 8 & kEvenBytes);
}

// The sum, modulo 256, which is enough, for 128 divides it. At least eight bytes before the first can be read. The
// lanes of a block do not depend on each other, so that compilers use whole vector registers.
unsigned sumOf(const unsigned char* bytes, std::size_t left) {
  constexpr std::size_t kLanes = 16;
  std::uint64_t sums = 0;
  if (left >= kLanes) {
    std::array<std::uint8_t, kLanes> lanes{};
    for (; left >= 4 * kLanes; left -= 4 * kLanes, bytes += 4 * kLanes)
      for (std::size_t i = 0; i < kLanes; ++i)
        lanes[i] =
            std::uint8_t(lanes[i] + (bytes[i] + bytes[i + kLanes]) + (bytes[i + 2 * kLanes] + bytes[i + 3 * kLanes]));
    for (; left >= kLanes; left -= kLanes, bytes += kLanes)
      for (std::size_t i = 0; i < kLanes; ++i) lanes[i] = std::uint8_t(lanes[i] + bytes[i]);
    sums = pairSums(load(lanes.data())) + pairSums(load(&lanes[kLanes / 2]));
  }
  for (; left >= sizeof sums; left -= sizeof sums, bytes += sizeof sums) sums += pairSums(load(bytes));
  unsigned sum = 0;
  if constexpr (std::endian::native == std::endian::little) {
    // The last word that ends with the last byte; what of it was counted, or stands before the first, is shifted out.
    if (left > 0) sums += pairSums(load(bytes + left - sizeof sums) >> 8 * (sizeof sums - left));
  } else {
    for (; left > 0; --left) sum += *bytes++;
  }
  return sum + unsigned(sums * 0x0001000100010001 >> 48);
}

}  // namespace

unsigned char Utility::calcCheckSum(const unsigned char* message, unsigned long length) {
  if (message == nullptr || length < kDumpFrame || length != byteCountOf(message) + kDumpFrame) {
    kWrongLength(int(length));
    return 0;
  }
  // Byte count and address by themselves: most messages of a header and a footer have nothing else.
  unsigned sum = 0U + message[5] + message[6] + message[7] + message[8] + message[9];
  if (length > kDumpFrame) sum += sumOf(message + kDataAt, length - kDumpFrame);
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
