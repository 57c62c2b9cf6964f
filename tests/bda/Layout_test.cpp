#include "Layout.h"

#include <gtest/gtest.h>

#include <set>

#include "CommonLayouts.h"
#include "TravellingBits.h"
#include "support/RecordingPlatform.h"

namespace BDA {
namespace {

using Testing::Bytes;
using Testing::FakeGroup;
using Testing::FakeName;
using Lines = std::vector<std::string>;

constexpr std::array<Gap, 0> kNoGaps{};

constexpr Layout kByte{1, std::array{setByteParam(0, 0, 7)}, kNoGaps};
constexpr Layout kWideByte{1, std::array{setWideByteParam(0, 0, 7)}, kNoGaps};
constexpr Layout kPair{2, std::array{setPairParam(0, 1, 0, 7)}, kNoGaps};
constexpr Layout kSplitByte{2, std::array{setSplitByteParam(0, 1, 0, 7)}, std::array{spareOfSplit(0)}};
constexpr Layout kSplitHigh{1, std::array{setSplitByteHigh(0, 0, 7)}, std::array{spareOfSplit(0)}};
constexpr Layout kNibbleSplit{2, std::array{setNibbleSplitParam(0, 1, 0, 7)}, std::array{spareBits(0, 0xF0)}};
constexpr Layout kNibbles{1, std::array{setNibbleParams(0, 0, 4, 1, 3)}, kNoGaps};
constexpr Layout kLowNibble{1, std::array{setLowNibble(0, 0, 7), setBitParam(0, 0x10, 0, 8)},
                            std::array{spareBits(0, 0xE0)}};
constexpr Layout kBits{1,
                       std::array{setBitParam(0, 0x01, 0, 0), setBitParam(0, 0x06, 0, 1), setBitParam(0, 0x40, 1, 0)},
                       std::array{spareBits(0, 0xB8)}};
constexpr Layout kWord{4, std::array{setNibbleWord(0, 3, 0, 7)}, std::array{spareBits(0, 3, 0xF0)}};
constexpr Layout kName{8, std::array{setNameParam(0, 8, 0)}, kNoGaps};
constexpr Layout kShared{1, std::array{setByteParam(0, 0, 1), setSharedByteParam(0, 1, 2)}, kNoGaps};
constexpr Layout kDumped{2, std::array{dumpByteRun(0, 1, 0, 3)}, kNoGaps};
constexpr Layout kRuns{9, std::array{setByteRun(0, 2, 0, 10), setPairRun(3, 6, 1, 20), setSplitRun(7, 8, 0, 30)},
                       std::array{spareOfSplitRun(7, 8)}};
// One of each, for what all have in common.
constexpr Layout kAll{20,
                      std::array{setByteParam(0, 0, 0), setWideByteParam(1, 0, 1), setPairParam(2, 3, 0, 2),
                                 setSplitByteParam(4, 5, 0, 3), setNibbleSplitParam(6, 7, 0, 4),
                                 setNibbleParams(8, 0, 5, 0, 6), setBitParam(9, 0x01, 0, 7), setLowNibble(10, 0, 8),
                                 setNibbleWord(11, 14, 0, 9), setSplitByteHigh(15, 0, 10), dumpByteRun(16, 16, 0, 11),
                                 setSharedByteParam(0, 0, 12), setNameParam(18, 2, 0)},
                      std::array{spareOfSplit(4), spareBits(6, 0xF0), spareBits(9, 0xFE), spareBits(10, 0xF0),
                                 spareBits(11, 14, 0xF0), spareOfSplit(15), gap(17)}};

class LayoutTest : public testing::Test {
 protected:
  template <const auto& kLayout>
  Targets<kLayout> targets() {
    Targets<kLayout> made;
    const std::array<CMA::ParameterGroup*, 2> groups{&a, &b};
    for (std::size_t i = 0; i < made.groups.size(); ++i) made.groups[i] = groups.at(i);
    for (auto& slot : made.names) slot = &name;
    return made;
  }
  template <const auto& kLayout>
  Lines receive(Bytes data) {
    const Bytes before = data;
    convert<kLayout>(targets<kLayout>(), data.data(), 1);
    EXPECT_EQ(data, before) << "receiving wrote to the data";
    return calls.take();
  }
  template <const auto& kLayout>
  Bytes dump() {
    Bytes data(touchedLength(kLayout), 0);
    convert<kLayout>(targets<kLayout>(), data.data(), 0);
    EXPECT_EQ(calls.take(), Lines{}) << "dumping wrote to the model";
    return data;
  }

  Testing::Calls calls;
  FakeGroup a{calls, "a"};
  FakeGroup b{calls, "b"};
  FakeName name{calls, "name"};
};

TEST_F(LayoutTest, AByteIsAOneByteParameterAsItIs) {
  for (unsigned value = 0; value < 256; ++value) {
    EXPECT_EQ(receive<kByte>({std::uint8_t(value)}), Lines{"set(a, 7, " + std::to_string(value) + ", flag 1)"});
    EXPECT_EQ(a[7], value);
    EXPECT_EQ(dump<kByte>(), Bytes{std::uint8_t(value)});
  }
}

TEST_F(LayoutTest, AWideByteIsTheLowByteOfA16BitParameter) {
  for (unsigned value = 0; value < 256; ++value) {
    a[7] = 0xFFFF;
    EXPECT_EQ(receive<kWideByte>({std::uint8_t(value)}), Lines{"set16(a, 7, " + std::to_string(value) + ", flag 1)"});
    EXPECT_EQ(a[7], value);
    a[7] = std::uint16_t(0xAB00 + value);
    EXPECT_EQ(dump<kWideByte>(), Bytes{std::uint8_t(value)});
  }
}

TEST_F(LayoutTest, APairSplits300Into2And44AndJoinsThemAgain) {
  a[7] = 300;
  EXPECT_EQ(dump<kPair>(), (Bytes{2, 44}));
  a[7] = 0;
  EXPECT_EQ(receive<kPair>({2, 44}), Lines{"set16(a, 7, 300, flag 1)"});
  EXPECT_EQ(a[7], 300);
}

TEST_F(LayoutTest, APairCarriesEvery14BitValue) {
  calls.records = false;
  for (unsigned value = 0; value < 0x4000; ++value) {
    a[7] = std::uint16_t(value);
    const Bytes data = dump<kPair>();
    ASSERT_EQ(data, (Bytes{std::uint8_t(value / 128), std::uint8_t(value % 128)}));
    a[7] = 0xFFFF;
    receive<kPair>(data);
    ASSERT_EQ(a[7], value);
  }
}

TEST_F(LayoutTest, APairLosesTheUpperBitsOfValuesAbove16383) {
  a[7] = 0x4000;
  EXPECT_EQ(dump<kPair>(), (Bytes{0, 0}));
  a[7] = 0xFFFF;
  EXPECT_EQ(dump<kPair>(), (Bytes{0x7F, 0x7F}));
}

TEST_F(LayoutTest, APairIsShiftedAndOredWithoutMasks) {
  receive<kPair>({0xFF, 0xFF});
  EXPECT_EQ(a[7], 0x7FFF);
  receive<kPair>({0x01, 0x80});
  EXPECT_EQ(a[7], 0x0080);
}

TEST_F(LayoutTest, ASplitByteIsBit7AndTheOtherSeven) {
  for (unsigned value = 0; value < 256; ++value) {
    a[7] = std::uint16_t(value);
    EXPECT_EQ(dump<kSplitByte>(), (Bytes{std::uint8_t(value >= 128 ? 1 : 0), std::uint8_t(value % 128)}));
  }
  EXPECT_EQ(receive<kSplitByte>({1, 5}), Lines{"set(a, 7, 133, flag 1)"});
}

TEST_F(LayoutTest, ASplitByteKeeps8BitsOfWhatTwoBytesSay) {
  calls.records = false;
  for (unsigned high = 0; high < 256; ++high)
    for (unsigned low = 0; low < 256; ++low) {
      receive<kSplitByte>({std::uint8_t(high), std::uint8_t(low)});
      ASSERT_EQ(a[7], (high * 128 | low) % 256) << high << ' ' << low;
    }
}

TEST_F(LayoutTest, AHighHalfAloneCarriesBit7) {
  for (unsigned value = 0; value < 256; ++value) {
    a[7] = std::uint16_t(value);
    EXPECT_EQ(dump<kSplitHigh>(), Bytes{std::uint8_t(value / 128)});
    receive<kSplitHigh>({std::uint8_t(value)});
    EXPECT_EQ(a[7], value % 2 == 1 ? 128 : 0);
  }
}

TEST_F(LayoutTest, ANibbleSplitByteDumpsBits6To4Twice) {
  a[7] = 0x35;
  EXPECT_EQ(dump<kNibbleSplit>(), (Bytes{0x03, 0x35}));
  a[7] = 0xF5;
  EXPECT_EQ(dump<kNibbleSplit>(), (Bytes{0x0F, 0x75}));
  for (unsigned value = 0; value < 256; ++value) {
    a[7] = std::uint16_t(value);
    EXPECT_EQ(dump<kNibbleSplit>(), (Bytes{std::uint8_t(value / 16), std::uint8_t(value % 128)}));
  }
}

TEST_F(LayoutTest, ANibbleSplitByteIsReceivedAs16TimesHighOrLow) {
  EXPECT_EQ(receive<kNibbleSplit>({0x03, 0x05}), Lines{"set(a, 7, 53, flag 1)"});
  EXPECT_EQ(receive<kNibbleSplit>({0x03, 0x35}), Lines{"set(a, 7, 53, flag 1)"});
  calls.records = false;
  for (unsigned high = 0; high < 256; ++high)
    for (unsigned low = 0; low < 256; ++low) {
      receive<kNibbleSplit>({std::uint8_t(high), std::uint8_t(low)});
      ASSERT_EQ(a[7], (high * 16 | low) % 256) << high << ' ' << low;
    }
}

TEST_F(LayoutTest, TwoNibblesAreTwoParametersLowOneFirst) {
  EXPECT_EQ(receive<kNibbles>({0x5A}), (Lines{"set(a, 4, 10, flag 1)", "set(b, 3, 5, flag 1)"}));
  for (unsigned value = 0; value < 256; ++value) {
    receive<kNibbles>({std::uint8_t(value)});
    EXPECT_EQ(a[4], value % 16);
    EXPECT_EQ(b[3], value / 16);
    EXPECT_EQ(dump<kNibbles>(), Bytes{std::uint8_t(value)});
  }
  a[4] = 0xF1;  // only nibbles count
  b[3] = 0xF2;
  EXPECT_EQ(dump<kNibbles>(), Bytes{0x21});
}

TEST_F(LayoutTest, ALowNibbleSharesItsByteWithSwitches) {
  for (unsigned value = 0; value < 128; ++value) {
    receive<kLowNibble>({std::uint8_t(value)});
    EXPECT_EQ(a[7], value % 16);
    EXPECT_EQ(a[8], value / 16 % 2);
    EXPECT_EQ(dump<kLowNibble>(), Bytes{std::uint8_t(value & 0x1F)});
  }
}

TEST_F(LayoutTest, ABitIsAParameterOf0Or1) {
  EXPECT_EQ(receive<kBits>({0x41}), (Lines{"set(a, 0, 1, flag 1)", "set(a, 1, 0, flag 1)", "set(b, 0, 1, flag 1)"}));
  for (unsigned value = 0; value < 256; ++value) {
    receive<kBits>({std::uint8_t(value)});
    EXPECT_EQ(a[0], value % 2);
    EXPECT_EQ(a[1], (value & 0x06) != 0);
    EXPECT_EQ(b[0], value / 64 % 2);
  }
}

TEST_F(LayoutTest, ABitIsDumpedForAParameterOfExactly1) {
  a[0] = 1;
  a[1] = 1;
  b[0] = 1;
  EXPECT_EQ(dump<kBits>(), Bytes{0x47});
  for (const unsigned other : {0U, 2U, 127U, 255U}) {
    a[0] = std::uint16_t(other);
    EXPECT_EQ(dump<kBits>(), Bytes{0x46}) << other;
  }
}

TEST_F(LayoutTest, ABitIsNeverCleared) {
  Bytes data{0x7F};
  convert<kBits>(targets<kBits>(), data.data(), 0);
  EXPECT_EQ(data, Bytes{0x7F});
}

TEST_F(LayoutTest, AWordIsFourNibblesMostSignificantFirst) {
  EXPECT_EQ(receive<kWord>({8, 0, 0, 0}), Lines{"set16(a, 7, 32768, flag 1)"});
  receive<kWord>({1, 2, 3, 4});
  EXPECT_EQ(a[7], 0x1234);
  EXPECT_EQ(dump<kWord>(), (Bytes{1, 2, 3, 4}));
  receive<kWord>({0x7F, 0x7F, 0x7F, 0x7F});
  EXPECT_EQ(a[7], 0xFFFF);
  receive<kWord>({0xF0, 0xF0, 0xF0, 0xF0});
  EXPECT_EQ(a[7], 0);
}

TEST_F(LayoutTest, AWordCarriesEvery16BitValue) {
  calls.records = false;
  for (unsigned value = 0; value < 0x10000; ++value) {
    a[7] = std::uint16_t(value);
    const Bytes data = dump<kWord>();
    for (const std::uint8_t byte : data) ASSERT_LT(byte, 16);
    a[7] = std::uint16_t(~value);
    receive<kWord>(data);
    ASSERT_EQ(a[7], value);
  }
}

TEST_F(LayoutTest, ANameIsItsCharacters) {
  EXPECT_EQ(receive<kName>(Testing::bytesOf("41 42 43 44 45 46 47 48")), Lines{"setName(name, ABCDEFGH)"});
  EXPECT_EQ(name.text, "ABCDEFGH");
  EXPECT_EQ(dump<kName>(), Testing::bytesOf("41 42 43 44 45 46 47 48"));
}

TEST_F(LayoutTest, AReceivedNameEndsAtItsFirstZero) {
  receive<kName>(Testing::bytesOf("41 42 00 44 45 46 47 48"));
  EXPECT_EQ(name.text, "AB");
  receive<kName>(Bytes(8, 0));
  EXPECT_EQ(name.text, "");
}

TEST_F(LayoutTest, AShortNameIsDumpedWithZeros) {
  name.text = "ABC";
  EXPECT_EQ(dump<kName>(), Testing::bytesOf("41 42 43 00 00 00 00 00"));
}

TEST_F(LayoutTest, ALongNameIsDumpedCut) {
  name.text = "ABCDEFGHIJKL";
  EXPECT_EQ(dump<kName>(), Testing::bytesOf("41 42 43 44 45 46 47 48"));
}

TEST_F(LayoutTest, CharactersTravelUnmasked) {
  receive<kName>(Testing::bytesOf("FF 80 01 20 7F E9 20 20"));
  EXPECT_EQ(name.text, "\xFF\x80\x01 \x7F\xE9  ");
  EXPECT_EQ(dump<kName>(), Testing::bytesOf("FF 80 01 20 7F E9 20 20"));
}

TEST_F(LayoutTest, ASharedByteFeedsTwoParameters) {
  EXPECT_EQ(receive<kShared>({99}), (Lines{"set(a, 1, 99, flag 1)", "set(b, 2, 99, flag 1)"}));
  a[1] = 5;
  b[2] = 6;
  EXPECT_EQ(dump<kShared>(), Bytes{6});  // the later row wins
}

TEST_F(LayoutTest, ADumpedByteIsNotReceived) {
  EXPECT_EQ(receive<kDumped>({1, 2}), Lines{});
  a[3] = 11;
  a[4] = 12;
  EXPECT_EQ(dump<kDumped>(), (Bytes{11, 12}));
}

TEST_F(LayoutTest, RunsGoOnByOneByteOrPairAndOneIndex) {
  EXPECT_EQ(receive<kRuns>({1, 2, 3, 1, 4, 1, 5, 1, 6}),
            (Lines{"set(a, 10, 1, flag 1)", "set(a, 11, 2, flag 1)", "set(a, 12, 3, flag 1)",
                   "set16(b, 20, 132, flag 1)", "set16(b, 21, 133, flag 1)", "set(a, 30, 134, flag 1)"}));
  EXPECT_EQ(dump<kRuns>(), (Bytes{1, 2, 3, 1, 4, 1, 5, 1, 6}));
}

TEST_F(LayoutTest, OtherDirectionsTouchNeitherModelNorData) {
  name.text = "xy";
  for (std::size_t i = 0; i < 13; ++i) a[i] = 0x55;
  for (unsigned direction = 2; direction < 256; ++direction) {
    Bytes data = Testing::pattern(20);
    convert<kAll>(targets<kAll>(), data.data(), std::uint8_t(direction));
    EXPECT_EQ(data, Testing::pattern(20));
  }
  EXPECT_EQ(calls.take(), Lines{});
  EXPECT_EQ(name.text, "xy");
  for (std::size_t i = 0; i < 13; ++i) EXPECT_EQ(a[i], 0x55);
}

TEST_F(LayoutTest, ParametersThatTheModelDoesNotHaveAreDumpedAs0) {
  a.resize(0);
  EXPECT_EQ(dump<kAll>(), Bytes(20, 0));
}

TEST_F(LayoutTest, GapsAreLeftAloneWhenDumped) {
  for (std::size_t i = 0; i < 13; ++i) a[i] = 0xFFFF;
  const Bytes data = dump<kAll>();
  EXPECT_EQ(data[17], 0);
  EXPECT_EQ(data[10], 0x0F);
  EXPECT_EQ(data[11], 0x0F);
}

TEST(Layout, ClaimsOfEveryFormTheBitsThatTravel) {
  std::set<Routine> tried;
  for (const Row& row : kAll.rows) {
    const auto routine = unsigned(row.routine);
    const std::vector<Row> alone{row};
    const Bytes bits = TravellingBits::of(alone, kAll.length);
    for (int byte = 0; byte < kAll.length; ++byte) {
      const bool isOfRow = byte >= row.byte && byte <= lastByte(row);
      const unsigned claimed = isOfRow ? claimedBits(row, (byte - row.byte) % bytesPerStep(row.routine)) : 0U;
      EXPECT_EQ(bits[std::size_t(byte)], claimed) << "routine " << routine << ", byte " << byte - row.byte;
    }
    tried.insert(row.routine);
  }
  EXPECT_EQ(tried.size(), std::size_t(Routine::dumpByteParam) + 1) << "a form is missing";
}

TEST(Layout, ARowDumpsOverAllOfItsBytesUnlessItSharesThem) {
  for (const Row& row : kAll.rows) {
    if (row.routine == Routine::setSharedByteParam || isName(row)) continue;
    Testing::Calls calls;
    FakeGroup group{calls, "group"};
    const std::array<CMA::ParameterGroup*, 1> groups{&group};
    Bytes data(kAll.length, 0xFF);
    convertRows(std::array{row}, groups, {}, data.data(), 0);  // of a parameter that is 0
    for (int byte = row.byte; byte <= lastByte(row); ++byte) {
      EXPECT_EQ(data[std::size_t(byte)], writtenBits(row) == 0xFF ? 0x00 : 0xFF) << "routine " << unsigned(row.routine);
    }
  }
}

TEST(Layout, CountsItsGroupsAndNames) {
  static_assert(slotCount(kByte, false) == 1 && slotCount(kByte, true) == 0);
  static_assert(slotCount(kNibbles, false) == 2);  // the second nibble's group is the second
  static_assert(slotCount(kName, false) == 0 && slotCount(kName, true) == 1);
  static_assert(slotCount(kBits, false) == 2);
}

TEST(Layout, TouchesTheBytesUpToItsLastRow) {
  static_assert(touchedLength(kAll) == 20);
  static_assert(touchedLength(Layout{9, std::array{setByteParam(3, 0, 0)}, kNoGaps}) == 4);
  static_assert(touchedLength(Layout{9, std::array{setPairParam(3, 4, 0, 0), setByteParam(0, 0, 1)}, kNoGaps}) == 5);
}

TEST(Layout, TargetsAreCompleteWhenNoneIsNull) {
  Testing::Calls calls;
  FakeGroup group{calls, "group"};
  FakeName name{calls, "name"};
  EXPECT_TRUE((Targets<kAll>{{&group}, {&name}}).areComplete());
  EXPECT_FALSE((Targets<kAll>{{nullptr}, {&name}}).areComplete());
  EXPECT_FALSE((Targets<kAll>{{&group}, {nullptr}}).areComplete());
  EXPECT_FALSE((Targets<kBits>{{&group, nullptr}}).areComplete());
}

TEST(Layout, JoinsRowsInOrder) {
  constexpr auto rows =
      join(std::array{setByteParam(0, 0, 0)}, std::array{setByteParam(1, 0, 5), setByteParam(2, 1, 0)});
  static_assert(rows.size() == 3 && rows[0].byte == 0 && rows[1].index == 5 && rows[2].slot == 1);
}

// Byte by byte: what reaches the model when one byte alone is not 0.
TEST_F(LayoutTest, InsertionEffectsAreThreeWideBytesAndSixteenPairs) {
  Lines expected{"set16(a, 0, 1, flag 1)", "set16(a, 1, 2, flag 1)", "set16(a, 4, 3, flag 1)"};
  Bytes data(36, 0x7F);
  data[0] = 1;
  data[1] = 2;
  data[2] = 3;
  for (std::size_t k = 0; k < 16; ++k) {
    data[4 + 2 * k] = std::uint8_t(k);
    data[5 + 2 * k] = std::uint8_t(k + 64);
    expected.push_back("set16(a, " + std::to_string(5 + k) + ", " + std::to_string(k * 128 + k + 64) + ", flag 1)");
  }
  EXPECT_EQ(receive<kInsEffect>(data), expected);
  a[2] = a[3] = 0xFFFF;
  data[3] = 0;
  EXPECT_EQ(dump<kInsEffect>(), data);
}

TEST_F(LayoutTest, SixParametersSkipByte5) {
  EXPECT_EQ(receive<kSixParam>({10, 11, 12, 13, 14, 99, 16}),
            (Lines{"set(a, 0, 10, flag 1)", "set(a, 1, 11, flag 1)", "set(a, 2, 12, flag 1)", "set(a, 3, 13, flag 1)",
                   "set(a, 4, 14, flag 1)", "set(a, 5, 16, flag 1)"}));
  a[6] = 77;
  EXPECT_EQ(dump<kSixParam>(), (Bytes{10, 11, 12, 13, 14, 0, 16}));
}

TEST_F(LayoutTest, AnEqSkipsBytes7And11And15AndParameter7) {
  a[7] = 0x55;
  Bytes data(20, 0);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i + 1);
  receive<kEq>(data);
  const std::vector<unsigned> byteOf{0, 1, 2, 3, 4, 5, 6, 99, 8, 9, 10, 12, 13, 14, 16, 17, 18, 19};
  for (std::size_t index = 0; index < byteOf.size(); ++index) {
    EXPECT_EQ(a[index], index == 7 ? 0x55 : byteOf[index] + 1) << index;
  }
  data[7] = data[11] = data[15] = 0;
  EXPECT_EQ(dump<kEq>(), data);
  EXPECT_EQ(a[7], 0x55);
}

}  // namespace
}  // namespace BDA
