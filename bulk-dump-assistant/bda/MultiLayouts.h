#pragma once

#include "CommonLayouts.h"

namespace BDA {

// The switch that puts a part, or an audio input part, through the insertion effects.
inline constexpr int kPartInsertionSwitch = 54;   // of a part's main group
inline constexpr int kAdPartInsertionSwitch = 7;  // of an audio input part's group

namespace MultiPart {

enum Slot { bankProgram, main, extra };

// The voice selection is received apart: only as the editor corrects it.
inline constexpr std::array kRows{
    dumpByteRun(1, 3, bankProgram, 0),   setByteRun(4, 15, main, 1),          setNibbleSplitParam(16, 17, main, 13),
    setByteRun(18, 19, main, 14),        setByteRun(21, 22, main, 16),        setByteRun(24, 28, main, 18),
    setByteParam(30, main, 23),          setBitParam(31, 0x04, main, 24),     setBitParam(31, 0x08, main, 25),
    setBitParam(31, 0x10, main, 26),     setBitParam(31, 0x20, main, 27),     setBitParam(31, 0x40, main, 28),
    setBitParam(32, 0x01, main, 29),     setBitParam(32, 0x02, main, 30),     setBitParam(32, 0x04, main, 31),
    setBitParam(32, 0x08, main, 32),     setBitParam(32, 0x20, main, 33),     setBitParam(32, 0x40, main, 34),
    setBitParam(33, 0x01, main, 35),     setBitParam(33, 0x02, main, 36),     setBitParam(33, 0x04, main, 37),
    setBitParam(33, 0x08, main, 38),     setBitParam(33, 0x10, main, 39),     setBitParam(33, 0x20, main, 40),
    setBitParam(33, 0x40, main, 41),     setByteRun(34, 43, main, 42),        setByteRun(45, 46, main, 52),
    setSplitByteParam(48, 49, extra, 0), setByteParam(50, extra, 1),          setSplitByteParam(52, 53, extra, 2),
    setByteRun(54, 55, extra, 3),        setSplitByteParam(56, 57, extra, 5), setByteParam(58, extra, 6),
    setByteRun(60, 61, main, 56),
};
inline constexpr std::array kGaps{
    spareBits(16, 0xF0),
    gap(20),
    gap(23),
    gap(29),
    spareBits(31, 0x83),
    spareBits(32, 0x90),
    spareBits(33, 0x80),
    gap(44),
    gap(47),
    spareOfSplit(48),
    gap(51),
    spareOfSplit(52),
    spareOfSplit(56),
    gap(59),
};
inline constexpr Layout kLayout{62, kRows, join(std::array{gap(0)}, kGaps)};

}  // namespace MultiPart

namespace PerfPart {

// What a performance's part carries beyond a multi's: byte 0, and byte 30 a second time. It is converted before the
// rest, so that a dump carries index 23 there and a receipt sets both.
inline constexpr std::array kOwnRows{
    setByteParam(0, MultiPart::main, 0),
    setSharedByteParam(30, MultiPart::main, 55),
};
inline constexpr Layout kLayout{63, join(kOwnRows, MultiPart::kRows), join(MultiPart::kGaps, std::array{gap(62)})};

}  // namespace PerfPart

namespace MultiCommon {

enum Slot { common, adPart0, part0 };  // and parts 1 to 15 after it
inline constexpr int kParts = 16;

// Bytes 78 and 79 switch parts 7 to 13 and 0 to 6.
constexpr auto partSwitchRows() {
  std::array<Row, 14> rows{};
  std::size_t row = 0;
  for (int i = 0; i < 7; ++i) {
    rows[row++] = setBitParam(78, 1 << i, part0 + i + 7, kPartInsertionSwitch);
    rows[row++] = setBitParam(79, 1 << i, part0 + i, kPartInsertionSwitch);
  }
  return rows;
}
inline constexpr std::array kBeforeSwitches{
    setNibbleParams(30, common, 2, common, 33),
    setByteRun(63, 64, common, 28),
    setByteParam(75, common, 40),
};
inline constexpr Layout kLayout{
    80,
    join(kBeforeSwitches,
         std::array{
             setBitParam(77, 0x01, part0 + 14, kPartInsertionSwitch),
             setBitParam(77, 0x02, part0 + 15, kPartInsertionSwitch),
             setBitParam(77, 0x20, adPart0, kAdPartInsertionSwitch),
         },
         partSwitchRows()),
    std::array{gap(0, 29), gap(31, 62), gap(65, 74), gap(76), spareBits(77, 0xDC), spareBits(78, 79, 0x80)}};

}  // namespace MultiCommon

namespace PerfCommon {

enum Name { name };
enum Slot { common, adPart0, part0 };  // and parts 1 to 3 after it
inline constexpr int kParts = 4;

inline constexpr std::array kBeforeSwitches{
    setNameParam(0, 20, name),      setByteRun(24, 25, common, 0),  setNibbleParams(30, common, 2, common, 33),
    setByteParam(31, common, 3),    setByteRun(33, 38, common, 4),  setByteRun(40, 43, common, 10),
    setByteRun(46, 47, common, 14), setByteRun(49, 51, common, 16), setByteRun(53, 54, common, 19),
    setByteRun(56, 60, common, 21), setByteRun(63, 64, common, 28), setByteRun(66, 67, common, 31),
    setByteParam(76, common, 40),
};
inline constexpr Layout kLayout{
    81,
    join(kBeforeSwitches,
         std::array{
             setBitParam(78, 0x20, adPart0, kAdPartInsertionSwitch),
             setBitParam(80, 0x01, part0 + 0, kPartInsertionSwitch),
             setBitParam(80, 0x02, part0 + 1, kPartInsertionSwitch),
             setBitParam(80, 0x04, part0 + 2, kPartInsertionSwitch),
             setBitParam(80, 0x08, part0 + 3, kPartInsertionSwitch),
         }),
    std::array{gap(20, 23), gap(26, 29), gap(32), gap(39), gap(44, 45), gap(48), gap(52), gap(55), gap(61, 62), gap(65),
               gap(68, 75), gap(77), spareBits(78, 0xDF), gap(79), spareBits(80, 0xF0)}};

}  // namespace PerfCommon

namespace MultiCommonArp {

inline constexpr std::array kRows{
    setByteParam(0, 0, 6),
    setByteRun(4, 5, 0, 0),
    setSplitRun(6, 11, 0, 2),
};
inline constexpr std::array kGaps{gap(1, 3), spareOfSplitRun(6, 11), spareOfSplit(12)};
inline constexpr Layout kMulti{14, join(kRows, std::array{setSplitByteParam(12, 13, 0, 5)}), kGaps};
// A performance's block ends within the last pair: the low 7 bits of index 5 do not travel, by contract.
inline constexpr Layout kPerformance{13, join(kRows, std::array{setSplitByteHigh(12, 0, 5)}), kGaps};

}  // namespace MultiCommonArp

namespace MultiPartArp {

enum Slot { arpeggio, six };

inline constexpr Layout kLayout{
    72,
    std::array{
        setByteRun(0, 2, arpeggio, 0),
        setByteParam(3, arpeggio, 38),
        setByteRun(6, 17, arpeggio, 3),
        setSplitRun(18, 21, arpeggio, 15),
        setSplitByteParam(26, 27, arpeggio, 17),
        setByteRun(28, 29, arpeggio, 20),  // crossed with the next row by contract
        setByteRun(30, 31, arpeggio, 18),
        setByteRun(32, 35, arpeggio, 22),
        setSplitRun(36, 59, arpeggio, 26),
        setPairRun(60, 71, six, 0),
    },
    std::array{gap(4, 5), spareOfSplitRun(18, 21), gap(22, 25), spareOfSplit(26), spareOfSplitRun(36, 59)}};

}  // namespace MultiPartArp

}  // namespace BDA
