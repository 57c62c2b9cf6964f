#pragma once

// Where things stand in the instrument's System Exclusive bulk messages.
//
//   bulk dump      F0 7D 0n 7F 14 BH BL AH AM AL data... checksum F7    n: device, BH BL: byte count, AH AM AL: address
//   bulk request   F0 7D 2n 7F 14 AH AM AL F7
//   notice         F0 7D 6n 02 F7

#include <cstddef>
#include <cstdint>

namespace BDA {

inline constexpr std::uint8_t kStartOfExclusive = 0xF0;
inline constexpr std::uint8_t kEndOfExclusive = 0xF7;
inline constexpr std::uint8_t kMakerId = 0x7D;
inline constexpr std::uint8_t kModelId1 = 0x7F;
inline constexpr std::uint8_t kModelId2 = 0x14;
inline constexpr std::uint8_t kOtherModelId2 = 0x15;  // accepted on receipt whatever stands before it

// High nibble of byte 2.
inline constexpr std::uint8_t kTypeMask = 0xF0;
inline constexpr std::uint8_t kDeviceMask = 0x0F;
inline constexpr std::uint8_t kTypeDump = 0x00;
inline constexpr std::uint8_t kType1 = 0x10;
inline constexpr std::uint8_t kTypeRequest = 0x20;
inline constexpr std::uint8_t kType3 = 0x30;
inline constexpr std::uint8_t kType4 = 0x40;

inline constexpr std::size_t kByteCountAt = 5;
inline constexpr std::size_t kDumpAddressAt = 7;
inline constexpr std::size_t kDataAt = 10;
inline constexpr std::size_t kDumpFrame = 12;  // bytes of a dump around its data
inline constexpr std::size_t kRequestAddressAt = 5;
inline constexpr std::size_t kRequestLength = 9;

// The number of data bytes that a dump says it has; the two bytes are not trusted to be 7-bit.
constexpr std::uint32_t byteCountOf(const std::uint8_t* dump) {
  return std::uint32_t{dump[kByteCountAt]} << 7 | dump[kByteCountAt + 1];
}

}  // namespace BDA
