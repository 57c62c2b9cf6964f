#pragma once

#include "CommonLayouts.h"

namespace BDA {

namespace SystemCommon {

enum Slot { common, tune };

inline constexpr Layout kLayout{
    68,
    std::array{
        setByteRun(0, 1, common, 0),
        setNibbleWord(2, 5, tune, 0),
        setByteRun(6, 11, common, 2),
        setByteParam(13, common, 8),
        setByteRun(17, 18, common, 12),
        setByteRun(20, 21, common, 14),
        setByteParam(24, common, 16),
        setByteRun(27, 31, common, 21),
        setByteParam(35, common, 27),
        setByteRun(40, 51, common, 28),
        setByteParam(53, common, 41),
        setByteParam(55, common, 42),
        setByteParam(57, common, 44),
        setByteRun(59, 60, common, 45),
        setByteParam(62, common, 48),
        setByteParam(64, common, 49),
    },
    std::array{spareBits(2, 5, 0xF0), gap(12), gap(14, 16), gap(19), gap(22, 23), gap(25, 26), gap(32, 34), gap(36, 39),
               gap(52), gap(54), gap(56), gap(58), gap(61), gap(63), gap(65, 67)}};

}  // namespace SystemCommon

namespace SystemUserQuickSetup {

inline constexpr Layout kLayout{10, std::array{setNameParam(0, 8, 0), setByteRun(8, 9, 0, 0)}, std::array<Gap, 0>{}};

}  // namespace SystemUserQuickSetup

namespace SystemSeq {

inline constexpr Layout kLayout{22, std::array{setByteRun(0, 3, 0, 0), setByteRun(11, 13, 0, 4)},
                                std::array{gap(4, 10), gap(14, 21)}};

}  // namespace SystemSeq

namespace SystemRemote {

inline constexpr Layout kLayout{5, std::array{setByteRun(0, 1, 0, 0)}, std::array{gap(2, 4)}};

}  // namespace SystemRemote

}  // namespace BDA
