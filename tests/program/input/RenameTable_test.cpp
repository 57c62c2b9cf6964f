#include "input/RenameTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Editor::parseRenameTable;
using Editor::RenameRow;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string errorOf(std::string_view text) {
  std::vector<RenameRow> rows;
  std::string error = parseRenameTable(text, rows);
  return error;
}

}  // namespace

TEST(RenameTable, aLineIsAnAddressAndANameWithItsBlanks) {
  std::vector<RenameRow> rows;
  ASSERT_EQ(parseRenameTable("voice:user1:6 Grand Piano 2\n0E0A06 Low\n0E 0A 07 AB CD\nvoice:edit 0E 0A\n", rows), "");
  ASSERT_THAT(rows, SizeIs(4));
  EXPECT_EQ(rows[0].target.name, "voice:user1:6");
  EXPECT_EQ(rows[0].name, "Grand Piano 2");
  EXPECT_EQ(rows[1].target.name, "voice:user1:7");
  EXPECT_EQ(rows[1].name, "Low");
  EXPECT_EQ(rows[2].target.name, "voice:user1:8");
  EXPECT_EQ(rows[2].name, "AB CD");
  EXPECT_EQ(rows[3].target.name, "voice:edit");
  EXPECT_EQ(rows[3].name, "0E 0A");
  EXPECT_EQ(rows[3].line, 4u);
}

TEST(RenameTable, commentsEmptyLinesAndBlanksAroundCountForNothing) {
  std::vector<RenameRow> rows;
  ASSERT_EQ(parseRenameTable("# mine\r\n\r\n \t\n  voice:user1:6 \t Piano  \r\nmaster:1\tStage", rows), "");
  ASSERT_THAT(rows, SizeIs(2));
  EXPECT_EQ(rows[0].line, 4u);
  EXPECT_EQ(rows[0].name, "Piano");
  EXPECT_EQ(rows[1].name, "Stage");
  ASSERT_EQ(parseRenameTable("", rows), "");
  EXPECT_THAT(rows, IsEmpty());
}

TEST(RenameTable, aLineThatIsNoneIsNamed) {
  EXPECT_THAT(errorOf("master:1 One\nvoice:usr1:6 Name"), HasSubstr("line 2: \"voice:usr1:6\""));
  EXPECT_EQ(errorOf("voice:user1:6"), "line 1: expected a name behind voice:user1:6");
  EXPECT_EQ(errorOf("0E 0A 05 "), "line 1: expected a name behind voice:user1:6");
  EXPECT_EQ(errorOf("system Name"), "line 1: system has no name");
  EXPECT_THAT(errorOf("write Name"), HasSubstr("line 1: 11 00 00 (write trigger) is no target"));
  EXPECT_EQ(errorOf("voice:user1:6 A\n\nfile:voice:user1:6 B"), "line 3: file:voice:user1:6 occurs twice");
}

TEST(RenameTable, aUtf8MarkBeforeTheFirstLineCountsForNothing) {
  std::vector<RenameRow> rows;
  ASSERT_EQ(parseRenameTable("\xEF\xBB\xBFvoice:user1:6 Piano\n", rows), "");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].name, "Piano");
}

TEST(RenameTable, whatIsWrongIsToldBeyondANul) {
  using namespace std::string_view_literals;
  EXPECT_THAT(errorOf("voice:\0user1 Piano"sv), testing::AllOf(HasSubstr("\\x00user1"), HasSubstr("expected")));
}
