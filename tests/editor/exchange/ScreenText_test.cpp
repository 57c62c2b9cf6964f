#include "exchange/ScreenText.h"

#include <gtest/gtest.h>

using Editor::kScreenHeight;
using Editor::kScreenWidth;
using Editor::paintScreen;

namespace {

constexpr std::uint8_t kWhite = 127;

// One cell of text, five columns and seven rows, as its user sees it.
std::string cell(const std::vector<std::uint8_t>& pixels, std::size_t line, std::size_t column) {
  std::string picture;
  for (std::size_t y = 0; y < 7; ++y) {
    for (std::size_t x = 0; x < 5; ++x)
      picture += pixels[(line * 8 + y) * kScreenWidth + 2 + column * 6 + x] == kWhite ? '#' : '.';
    picture += '\n';
  }
  return picture;
}

}  // namespace

TEST(ScreenText, everyPixelIsBlackOrWhite) {
  const auto pixels = paintScreen({"Bulk", "Dump"});
  ASSERT_EQ(pixels.size(), kScreenWidth * kScreenHeight);
  for (const std::uint8_t pixel : pixels) EXPECT_TRUE(pixel == 0 || pixel == kWhite);
}

TEST(ScreenText, aCharacterIsDrawnInItsCell) {
  EXPECT_EQ(cell(paintScreen({"", "  E"}), 1, 2), "#####\n#....\n#....\n####.\n#....\n#....\n#####\n");
}

TEST(ScreenText, theFirstLineIsBlackOnWhite) {
  const auto pixels = paintScreen({"I"});
  EXPECT_EQ(pixels.front(), kWhite);
  EXPECT_EQ(pixels[kScreenWidth * 8], 0);
  EXPECT_EQ(pixels[4 * kScreenWidth + 4], 0);
}

TEST(ScreenText, whatIsTooLongOrTooMuchIsCutOff) {
  const std::string longest(26, 'x');
  EXPECT_EQ(paintScreen(std::vector<std::string>(9, longest + "more")),
            paintScreen(std::vector<std::string>(8, longest)));
}

TEST(ScreenText, whatIsNotPrintableAsciiBecomesAQuestionMark) {
  EXPECT_EQ(paintScreen({"", "\x01\xFF\x7F"}), paintScreen({"", "???"}));
}
