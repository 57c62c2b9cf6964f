#pragma once

// Rows that several families of blocks share.

#include "Layout.h"

namespace BDA {

// Reverb, chorus, master effect and insertion effects. Indices 2 and 3 and byte 3 stay untouched by contract.
constexpr auto insEffectRows(int slot) {
  return std::array{
      setWideByteParam(0, slot, 0),
      setWideByteParam(1, slot, 1),
      setWideByteParam(2, slot, 4),
      setPairRun(4, 35, slot, 5),
  };
}

// An audio input part. Byte 5 stays untouched by contract.
constexpr auto sixParamRows(int slot) {
  return std::array{
      setByteRun(0, 4, slot, 0),
      setByteParam(6, slot, 5),
  };
}

// A master EQ. Bytes 7, 11 and 15 and index 7 stay untouched by contract: where the data skips a byte, the index runs
// on by one, but not at byte 7.
constexpr auto eqRows(int slot) {
  return std::array{
      setByteRun(0, 6, slot, 0),
      setByteRun(8, 10, slot, 8),
      setByteRun(12, 14, slot, 11),
      setByteRun(16, 19, slot, 14),
  };
}

inline constexpr Layout kInsEffect{36, insEffectRows(0), std::array{gap(3)}};
inline constexpr Layout kSixParam{7, sixParamRows(0), std::array{gap(5)}};
// The blocks of an audio input part and of a master effect, in the system as in a multi.
inline constexpr Layout kAdPart{8, sixParamRows(0), std::array{gap(5), gap(7)}};
enum MasterEffectSlot { masterEffect, masterEffectSettings };
inline constexpr Layout kMasterEffect{
    38, join(insEffectRows(masterEffect), std::array{setByteParam(36, masterEffectSettings, 0)}),
    std::array{gap(3), gap(37)}};
inline constexpr Layout kEq{20, eqRows(0), std::array{gap(7), gap(11), gap(15)}};

}  // namespace BDA
