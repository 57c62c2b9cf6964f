#include "midi/Hex.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <rapidcheck/gtest.h>

namespace Editor {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Hex, IsWrittenInUpperCaseWithOneBlankBetweenBytes) {
  EXPECT_EQ(formatHex(Bytes{0xF0, 0x7D, 0x00, 0xF7}), "F0 7D 00 F7");
  EXPECT_EQ(formatHex(Bytes{0xAB}), "AB");
  EXPECT_EQ(formatHex(Bytes{}), "");
}

TEST(Hex, IsReadWithAndWithoutBlanksInEitherCase) {
  const Bytes expected{0xF0, 0x7D, 0x0A, 0xF7};
  for (const char* text : {"F0 7D 0A F7", "F07D0AF7", "f07d 0aF7", "  F0\t7D\r\n0A F7\n"}) {
    EXPECT_EQ(parseHex(text), expected) << text;
  }
  EXPECT_EQ(parseHex(""), Bytes{});
  EXPECT_EQ(parseHex(" \n"), Bytes{});
}

TEST(Hex, RefusesAnythingElse) {
  for (const char* text :
       {"F", "F0 7", "F 0", "F0 7D 0", "F0,7D", "0xF0", "G0", "F0 7D ..", "F0-7D", "/0", ":0", "@0", "`0"}) {
    EXPECT_EQ(parseHex(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseHex(std::string_view("F0\0F7", 5)), std::nullopt);
}

RC_GTEST_PROP(Hex, ReadsWhatItWrites, (const Bytes& bytes)) { RC_ASSERT(parseHex(formatHex(bytes)) == bytes); }

}  // namespace
}  // namespace Editor
