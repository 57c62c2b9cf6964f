#pragma once

#include "CommonLayouts.h"

namespace BDA {

namespace MasterCommon {

inline constexpr Layout kLayout{32,
                                std::array{setNameParam(0, 20, 0), setByteRun(25, 29, 0, 0),
                                           setNibbleParams(30, 0, 5, 0, 6), setByteParam(31, 0, 7)},
                                std::array{gap(20, 24)}};

}  // namespace MasterCommon

namespace MasterZone {

inline constexpr Layout kLayout{
    16,
    std::array{
        setBitParam(0, 0x10, 0, 1),   setBitParam(0, 0x20, 0, 2),   setLowNibble(0, 0, 0),
        setByteRun(1, 4, 0, 3),       setByteRun(6, 10, 0, 7),      setBitParam(11, 0x01, 0, 12),
        setBitParam(11, 0x02, 0, 13), setBitParam(11, 0x04, 0, 16),  // 14-16 out of bit order by contract
        setBitParam(11, 0x08, 0, 14), setBitParam(11, 0x10, 0, 15), setBitParam(12, 0x01, 0, 17),
        setBitParam(12, 0x02, 0, 18), setBitParam(12, 0x04, 0, 19), setBitParam(12, 0x08, 0, 20),
        setBitParam(12, 0x10, 0, 21), setBitParam(12, 0x20, 0, 22), setBitParam(12, 0x40, 0, 23),
        setBitParam(13, 0x01, 0, 24), setBitParam(13, 0x02, 0, 25), setBitParam(13, 0x04, 0, 26),
        setBitParam(13, 0x10, 0, 28), setBitParam(13, 0x20, 0, 29), setBitParam(13, 0x40, 0, 30),
        setByteRun(14, 15, 0, 31),
    },
    std::array{spareBits(0, 0xC0), gap(5), spareBits(11, 0xE0), spareBits(12, 0x80), spareBits(13, 0x88)}};

}  // namespace MasterZone

namespace RemoteCommon {

enum Name { name1, name2 };

inline constexpr Layout kLayout{
    27, std::array{setNameParam(0, 13, name1), setNameParam(13, 12, name2), setByteRun(25, 26, 0, 0)},
    std::array<Gap, 0>{}};

}  // namespace RemoteCommon

namespace RemoteController {

enum Name { name1, name2 };

inline constexpr Layout kLayout{
    26, std::array{setNameParam(0, 9, name1), setNameParam(9, 15, name2), setByteRun(24, 25, 0, 0)},
    std::array<Gap, 0>{}};

}  // namespace RemoteController

}  // namespace BDA
