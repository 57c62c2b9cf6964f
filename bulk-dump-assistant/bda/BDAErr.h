#pragma once

#include <cstdint>

namespace BDA {

// Result of every receiver, block and executer operation. Bit 31 set: failure, and bits 24 to 27 name its kind; bit 31
// clear: success, and the bits below 16 tell what happened. Results of several steps are ORed.
using BDAErr = std::uint32_t;

inline constexpr BDAErr BDA_OK = 0x00000000;

inline constexpr BDAErr BDA_ERR = 0x80000000;
inline constexpr BDAErr BDA_ERR_DATA_LENGTH = 0x88000000;
inline constexpr BDAErr BDA_ERR_NOT_FOUND = 0x84000000;          // no block has the address
inline constexpr BDAErr BDA_ERR_NO_MEMORY = 0x82000000;          // storage ran out while a file dump was held
inline constexpr BDAErr BDA_ERR_MIXING_VOICE_FULL = 0x81000000;  // more mixing voices than there may be

// The flags that are named by their value are so by contract; nothing sets them.
inline constexpr BDAErr BDA_INFO_8000 = 0x00008000;
inline constexpr BDAErr BDA_INFO_FOOTER = 0x00004000;  // a footer stored the temporary model
inline constexpr BDAErr BDA_INFO_2000 = 0x00002000;
inline constexpr BDAErr BDA_INFO_FILE_DUMP = 0x00001000;          // a file dump was held, or asked for
inline constexpr BDAErr BDA_INFO_FILE_DUMP_CONTROL = 0x00000800;  // the write trigger of the file dumps
inline constexpr BDAErr BDA_INFO_EDITOR = 0x00000400;             // a block that the editor alone knows
inline constexpr BDAErr BDA_INFO_200 = 0x00000200;
inline constexpr BDAErr BDA_INFO_100 = 0x00000100;
inline constexpr BDAErr BDA_INFO_80 = 0x00000080;
inline constexpr BDAErr BDA_INFO_40 = 0x00000040;
inline constexpr BDAErr BDA_INFO_20 = 0x00000020;
inline constexpr BDAErr BDA_INFO_10 = 0x00000010;
inline constexpr BDAErr BDA_INFO_SWALLOWED = 0x00000008;  // nothing to do, or nothing to send
inline constexpr BDAErr BDA_INFO_SYSTEM = 0x00000004;     // a system block

constexpr bool isFailure(BDAErr result) { return (result & BDA_ERR) != 0; }
// Whether a failure is of that kind (BDA_ERR_NOT_FOUND ...), or a success carries that flag.
constexpr bool isOfKind(BDAErr result, BDAErr kind) { return (result & kind & ~BDA_ERR) != 0; }

}  // namespace BDA
