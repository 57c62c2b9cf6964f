#include "output/Columns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

using Editor::displayWidth;
using Editor::inColumns;
using Editor::wrap;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Columns, theWidthCountsCharactersAndNotBytes) {
  EXPECT_EQ(displayWidth(""), 0u);
  EXPECT_EQ(displayWidth("Pad"), 3u);
  EXPECT_EQ(displayWidth("\u00E9t\u00E9"), 3u);
}

TEST(Columns, cellsRunDownTheColumns) {
  EXPECT_THAT(inColumns({"1 a", "2 b", "3 c", "4 d", "5 e"}, 13), ElementsAre("  1 a  4 d", "  2 b  5 e", "  3 c"));
  EXPECT_THAT(inColumns({"1 a", "2 b", "3 c"}, 15), ElementsAre("  1 a  2 b  3 c"));
}

TEST(Columns, eachColumnIsAsWideAsItsWidestCell) {
  EXPECT_THAT(inColumns({"a", "wide cell", "\u00E9\u00E9", "d"}, 20),
              ElementsAre("  a          \u00E9\u00E9", "  wide cell  d"));
}

TEST(Columns, whatIsTooWideHasALineToItself) {
  EXPECT_THAT(inColumns({"much too wide", "b"}, 5), ElementsAre("  much too wide", "  b"));
  EXPECT_THAT(inColumns({}, 80), IsEmpty());
}

RC_GTEST_PROP(Columns, noLineIsWiderThanTheTerminalAndNoCellIsLost, ()) {
  const auto lengths = *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(1, 30));
  const std::size_t width = *rc::gen::inRange<std::size_t>(32, 200);
  std::vector<std::string> cells;
  for (const std::size_t length : lengths) cells.push_back(std::string(length, 'x'));
  std::size_t shown = 0;
  for (const std::string& line : inColumns(cells, width)) {
    RC_ASSERT(line.size() <= width);
    shown += std::size_t(std::count(line.begin(), line.end(), 'x'));
  }
  std::size_t all = 0;
  for (const std::size_t length : lengths) all += length;
  RC_ASSERT(shown == all);
}

TEST(Columns, textIsBrokenAtBlanks) {
  EXPECT_THAT(wrap("to be or not", 5), ElementsAre("to be", "or", "not"));
  EXPECT_THAT(wrap("unbreakable is it", 4), ElementsAre("unbreakable", "is", "it"));
  EXPECT_THAT(wrap("", 5), IsEmpty());
}
