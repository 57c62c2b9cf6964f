#pragma once

#include <cstdint>

#include "bda/Export.h"

namespace CMA {

// A bank select message pair, controllers 0 (MSB) and 32 (LSB).
struct BankSelect {
  std::uint8_t msb;  // controller 0
  std::uint8_t lsb;  // controller 32
};

// Bank select of every voice bank by its code: 0-7 preset normal voices, 8-10 user normal voices, 11 preset and 12 user
// drum voices, 13 GM normal voices, 14 the GM drum voice, 15 mixing voices.
BDA_PLATFORM_API extern const BankSelect voiceBankSelTable[16];

}  // namespace CMA
