#include "messages/Text.h"

#include <gtest/gtest.h>

TEST(Text, controlCharactersAreEscaped) {
  EXPECT_EQ(Editor::escape("a\x1B[31m\tb\n\x7F"), "a\\x1B[31m\\x09b\\x0A\\x7F");
  EXPECT_EQ(Editor::escape("caf\xC3\xA9.syx"), "caf\xC3\xA9.syx");
}

TEST(Text, namesAreShownAsUtf8) {
  EXPECT_EQ(Editor::showName("Gr\xFC\xDF"), "Gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(Editor::showName("\x01 \x9B"), "\\x01 \\x9B");
}

TEST(Text, valuesAreShownAsWhatTheyAre) {
  EXPECT_EQ(Editor::showValue(std::int64_t(300)), "300");
  EXPECT_EQ(Editor::showValue(std::string("\xFC\x1B\x9B")), "\"\xC3\xBC\\x1B\\x9B\"");
  EXPECT_EQ(Editor::showValue(std::vector<std::uint8_t>{0x41}), "1 byte");
}
