#include "midi/HexText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include "midi/Hex.h"

namespace {

using Editor::HexTextReader;
using Editor::StreamJoiner;
using testing::ElementsAre;
using testing::IsEmpty;

// What is read of a text, one line each: "offset: bytes", "offset: count reason", "offset! error".
class Listing final : public StreamJoiner::Receiver {
 public:
  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
    lines.push_back(std::to_string(offset) + ": " + Editor::formatHex(bytes));
  }
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    lines.push_back(std::to_string(offset) + ": " + std::to_string(count) + " " + describe(reason));
  }
  std::vector<std::string> lines;
};

std::vector<std::string> read(const std::string& text, std::size_t chunk = 1 << 16) {
  Listing listing;
  StreamJoiner joiner(listing);
  HexTextReader reader(joiner, [&](std::uint64_t offset, const std::string& error) {
    listing.lines.push_back(std::to_string(offset) + "! " + error);
  });
  for (std::size_t at = 0; at < text.size(); at += chunk) {
    const std::string part = text.substr(at, chunk);
    reader.feed({reinterpret_cast<const std::uint8_t*>(part.data()), part.size()});
  }
  reader.finish();
  return listing.lines;
}

}  // namespace

TEST(HexText, aLineIsAMessage) {
  EXPECT_EQ(Editor::hexLine(std::vector<std::uint8_t>{0xF0, 0x7D, 0x0A, 0xF7}), "F0 7D 0A F7\n");
  EXPECT_THAT(read("F0 7D 0A F7\nF0 01 F7\n"), ElementsAre("0: F0 7D 0A F7", "12: F0 01 F7"));
}

TEST(HexText, caseBlanksAndLineEndsDoNotCount) {
  EXPECT_THAT(read("\tf07d\r\n\r\n  0a\nF7 F0F7"), ElementsAre("1: F0 7D 0A F7", "17: F0 F7"));
}

TEST(HexText, aCommentEndsWithItsLine) {
  EXPECT_THAT(read("# F0 01 F7 \xC3\xA9\nF0 01 # F7\nF7#"), ElementsAre("14: F0 01 F7"));
}

TEST(HexText, theMarkOfUtf8BeforeItIsNone) {
  EXPECT_THAT(read("\xEF\xBB\xBF"
                   "F0 F7"),
              ElementsAre("3: F0 F7"));
}

TEST(HexText, bytesThatAreInNoMessageAreToldWhereTheyStand) {
  EXPECT_THAT(read("01 02\nF0 01 F0 F7"),
              ElementsAre("0: 2 outside of any message", "6: 2 message cut short by another status byte", "12: F0 F7"));
}

TEST(HexText, whatIsLostInsideOfALineIsToldWhereItStands) {
  EXPECT_THAT(
      read("05 F0 01 90 40 F8 f8 06 F7"),
      ElementsAre("0: 1 outside of any message", "3: 2 message cut short by another status byte",
                  "9: 2 outside of any message", "15: 1 real-time", "18: 1 real-time", "21: 2 outside of any message"));
  EXPECT_THAT(read("F0 F8 01 F7"), ElementsAre("3: 1 real-time", "0: F0 01 F7"));
}

TEST(HexText, everyByteIsVisitedWithTheOffsetOfItsFirstDigit) {
  Listing listing;
  StreamJoiner joiner(listing);
  std::vector<std::string> bytes;
  HexTextReader reader(
      joiner, [](std::uint64_t, const std::string&) {},
      [&](std::uint64_t offset, std::uint8_t byte) {
        bytes.push_back(std::to_string(offset) + ":" + std::to_string(byte));
      });
  const std::string text = "# 01\nF0 0102 x 03\nf7";
  reader.feed({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  reader.finish();
  EXPECT_THAT(bytes, ElementsAre("5:240", "8:1", "10:2", "18:247"));
}

TEST(HexText, aLineThatIsNoHexIsToldAndEndsTheMessage) {
  const std::string why = "expected two hex digits a byte, the rest of it is not read";
  EXPECT_THAT(read("F0 F7\nF0 01 zz F7\nF0 F7"),
              ElementsAre("0: F0 F7", "6: 2 message without end", "12! line 2: " + why, "18: F0 F7"));
  EXPECT_THAT(read("F0 F7 F"), ElementsAre("0: F0 F7", "7! line 1: " + why));
  EXPECT_THAT(read("F 0\nF0 F7"), ElementsAre("1! line 1: " + why, "4: F0 F7"));
}

TEST(HexText, nothingIsInATextWithoutBytes) { EXPECT_THAT(read("\n# only words\n"), IsEmpty()); }

RC_GTEST_PROP(HexText, isReadTheSameHoweverItIsCut, ()) {
  const auto text = *rc::gen::container<std::string>(rc::gen::elementOf(std::string("F07 \n#z")));
  const auto chunk = *rc::gen::inRange<std::size_t>(1, 5);
  RC_ASSERT(read(text, chunk) == read(text));
}
