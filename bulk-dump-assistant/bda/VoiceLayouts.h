#pragma once

#include "CommonLayouts.h"

namespace BDA {

namespace VoiceCommon {

enum Name { name };
enum Slot { common, extra, part0 };

inline constexpr std::array kShared{
    setNameParam(0, 20, name),
    setByteRun(24, 25, common, 0),
    setNibbleParams(30, common, 4, common, 3),
    setByteRun(31, 38, common, 5),
    setByteRun(40, 43, common, 13),
    // The three pairs of part 0 run before its single bytes.
    setSplitByteParam(44, 45, part0, 0),
    setSplitByteParam(48, 49, part0, 2),
    setSplitByteParam(52, 53, part0, 5),
    setByteParam(46, part0, 1),
    setByteRun(50, 51, part0, 3),
    setByteParam(54, part0, 6),
    setByteRun(56, 59, common, 17),
    setByteParam(63, common, 23),
};
inline constexpr std::array kNormalTail{
    setByteRun(64, 76, common, 24),
    setByteParam(77, extra, 0),
};
// A drum voice does not carry common indices 24-27 and 30-34 in this block.
inline constexpr std::array kDrumTail{
    setByteRun(65, 66, common, 28),
    setByteRun(67, 68, common, 35),
    setByteParam(69, extra, 0),
    setByteRun(70, 71, common, 37),
};

inline constexpr std::array kSharedGaps{gap(20, 23),      gap(26, 29),      gap(39), spareOfSplit(44), gap(47),
                                        spareOfSplit(48), spareOfSplit(52), gap(55), gap(60, 62)};

inline constexpr Layout kNormal{80, join(kShared, kNormalTail), join(kSharedGaps, std::array{gap(78, 79)})};
inline constexpr Layout kDrum{72, join(kShared, kDrumTail), join(kSharedGaps, std::array{gap(64)})};
// What a block of neither type would carry.
inline constexpr Layout kEither{64, kShared, kSharedGaps};

}  // namespace VoiceCommon

namespace VoiceCommonArp {

enum Slot { arpeggioCommon, tempo, entry, six };

inline constexpr Layout kLayout{86,
                                std::array{
                                    setByteParam(0, arpeggioCommon, 6),
                                    setPairParam(2, 3, tempo, 0),
                                    setByteParam(14, entry, 0),
                                    setByteRun(20, 31, entry, 3),
                                    setSplitRun(32, 35, entry, 15),
                                    setSplitByteParam(40, 41, entry, 17),
                                    setByteRun(42, 43, entry, 20),  // crossed with the next row by contract
                                    setByteRun(44, 45, entry, 18),
                                    setByteRun(46, 49, entry, 22),
                                    setSplitRun(50, 73, entry, 26),
                                    setPairRun(74, 85, six, 0),
                                },
                                std::array{gap(1), gap(4, 13), gap(15, 19), spareOfSplitRun(32, 35), gap(36, 39),
                                           spareOfSplit(40), spareOfSplitRun(50, 73)}};

}  // namespace VoiceCommonArp

namespace VoiceCommonRev {

enum Slot { reverb, settings };

inline constexpr Layout kLayout{38, join(insEffectRows(reverb), std::array{setByteRun(36, 37, settings, 0)}),
                                std::array{gap(3)}};

}  // namespace VoiceCommonRev

namespace VoiceCommonCho {

enum Slot { chorus, settings };

inline constexpr Layout kLayout{40, join(insEffectRows(chorus), std::array{setByteRun(36, 38, settings, 0)}),
                                std::array{gap(3), gap(39)}};

}  // namespace VoiceCommonCho

namespace VoiceCommonInsL {

inline constexpr Layout kLayout{68, join(insEffectRows(0), std::array{setPairRun(36, 67, 0, 21)}), std::array{gap(3)}};

}  // namespace VoiceCommonInsL

namespace VoiceCommonCtrl {

// Six controller rows of four bytes each.
template <int kRow>
constexpr auto controllerRow() {
  return std::array{
      setByteParam(4 * kRow + 1, 0, 39 + 3 * kRow),
      setSplitByteParam(4 * kRow + 2, 4 * kRow + 3, 0, 40 + 3 * kRow),
      setByteParam(4 * kRow, 0, 41 + 3 * kRow),
  };
}
inline constexpr auto kRows = join(controllerRow<0>(), controllerRow<1>(), controllerRow<2>(), controllerRow<3>(),
                                   controllerRow<4>(), controllerRow<5>());

inline constexpr std::array kGaps{spareOfSplit(2),  spareOfSplit(6),  spareOfSplit(10),
                                  spareOfSplit(14), spareOfSplit(18), spareOfSplit(22)};

inline constexpr Layout kDrum{24, kRows, kGaps};
inline constexpr Layout kNormal{60,
                                join(kRows,
                                     std::array{
                                         setByteRun(24, 34, 0, 57),
                                         setByteParam(36, 0, 68),  // three crossed pairs by contract
                                         setByteParam(35, 0, 69),
                                         setByteParam(38, 0, 70),
                                         setByteParam(37, 0, 71),
                                         setByteParam(40, 0, 72),
                                         setByteParam(39, 0, 73),
                                         setByteRun(41, 42, 0, 74),
                                         setByteRun(43, 58, 0, 76),
                                         setByteParam(59, 0, 92),
                                     }),
                                kGaps};

}  // namespace VoiceCommonCtrl

namespace NormalVoiceElmOsc {

enum Slot { element, wave };

inline constexpr Layout kLayout{88,
                                std::array{
                                    setByteRun(0, 1, element, 0),       setByteParam(4, element, 2),
                                    setPairParam(2, 3, wave, 0),        setByteRun(5, 16, element, 6),
                                    setByteParam(17, element, 20),      setBitParam(19, 0x01, element, 22),
                                    setBitParam(19, 0x02, element, 23), setBitParam(19, 0x04, element, 24),
                                    setBitParam(19, 0x08, element, 25), setBitParam(19, 0x10, element, 26),
                                    setBitParam(19, 0x20, element, 27), setBitParam(21, 0x01, element, 28),
                                    setBitParam(21, 0x02, element, 29), setBitParam(21, 0x04, element, 30),
                                    setByteRun(22, 23, element, 31),    setByteRun(26, 38, element, 33),
                                    setByteRun(40, 43, element, 46),    setByteRun(44, 47, element, 51),
                                    setSplitRun(48, 55, element, 55),   setByteParam(56, element, 59),
                                    setByteParam(57, element, 50),  // out of order by contract
                                    setByteRun(58, 69, element, 60),    setSplitRun(70, 79, element, 72),
                                    setByteRun(80, 86, element, 77),
                                },
                                std::array{gap(18), spareBits(19, 0xC0), gap(20), spareBits(21, 0xF8), gap(24, 25),
                                           gap(39), spareOfSplitRun(48, 55), spareOfSplitRun(70, 79), gap(87)}};

}  // namespace NormalVoiceElmOsc

namespace NormalVoiceElmFilter {

inline constexpr Layout kLayout{
    74,
    std::array{
        setByteParam(0, 0, 84),
        setSplitByteParam(2, 3, 0, 85),
        setByteRun(4, 6, 0, 86),
        setSplitRun(8, 13, 0, 89),
        setByteRun(14, 18, 0, 92),
        setSplitRun(20, 29, 0, 97),
        setByteRun(30, 36, 0, 102),
        setByteRun(37, 40, 0, 109),
        setSplitRun(42, 49, 0, 113),
        setByteRun(50, 53, 0, 117),
        setSplitByteParam(54, 55, 0, 121),
        setByteParam(56, 0, 122),
        setSplitByteParam(58, 59, 0, 123),
        setByteParam(60, 0, 124),
        setByteRun(62, 73, 0, 125),
    },
    std::array{gap(1), spareOfSplit(2), gap(7), spareOfSplitRun(8, 13), gap(19), spareOfSplitRun(20, 29), gap(41),
               spareOfSplitRun(42, 49), spareOfSplit(54), gap(57), spareOfSplit(58), gap(61)}};

}  // namespace NormalVoiceElmFilter

namespace DrumVoiceKey {

enum Slot { key, wave };

inline constexpr Layout kLayout{46,
                                std::array{
                                    setByteRun(0, 1, key, 0),
                                    setByteRun(4, 6, key, 3),
                                    setPairParam(2, 3, wave, 0),
                                    setByteRun(7, 9, key, 6),
                                    setByteRun(10, 12, key, 18),
                                    setByteRun(14, 15, key, 33),
                                    setByteRun(17, 19, key, 37),
                                    setByteParam(23, key, 44),
                                    setByteRun(26, 28, key, 60),
                                    setSplitByteParam(30, 31, key, 85),
                                    setByteRun(32, 33, key, 86),
                                    setSplitByteParam(34, 35, key, 89),
                                    setByteRun(36, 37, key, 119),
                                    setSplitByteParam(38, 39, key, 121),
                                    setByteParam(40, key, 122),
                                    setSplitByteParam(42, 43, key, 123),
                                    setByteParam(44, key, 124),
                                },
                                std::array{gap(13), gap(16), gap(20, 22), gap(24, 25), gap(29), spareOfSplit(30),
                                           spareOfSplit(34), spareOfSplit(38), gap(41), spareOfSplit(42), gap(45)}};

}  // namespace DrumVoiceKey

}  // namespace BDA
