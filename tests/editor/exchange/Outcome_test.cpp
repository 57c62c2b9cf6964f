#include "exchange/Outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"

using Editor::Outcome;

TEST(Outcome, isTheAssistantsWordUnlessTheLibraryChanged) {
  const auto outcomeOf = [](BDA::BulkDumpOutcome told, bool libraryChanged, std::initializer_list<int> ids) {
    Editor::Handed handed;
    handed.report.outcome = told;
    handed.shown.assign(ids.begin(), ids.end());
    Editor::Touched touched;
    if (libraryChanged) touched.contents = {"voice:user1:6"};
    return Editor::outcomeOf(Editor::readMessage(blockDump({0x00, 0x00, 0x00})), handed, touched);
  };
  using Told = BDA::BulkDumpOutcome;
  EXPECT_EQ(outcomeOf(Told::notOurs, false, {}), Outcome::notOurs);
  EXPECT_EQ(outcomeOf(Told::ignored, false, {}), Outcome::ignored);
  EXPECT_EQ(outcomeOf(Told::accepted, false, {11}), Outcome::accepted);
  EXPECT_EQ(outcomeOf(Told::completed, false, {11, 12}), Outcome::completed);
  EXPECT_EQ(outcomeOf(Told::handedToStore, true, {12, 1, 2}), Outcome::stored);
  EXPECT_EQ(outcomeOf(Told::handedToStore, false, {12, 11, 12}), Outcome::completed) << "an edit buffer";
  EXPECT_EQ(outcomeOf(Told::handedToStore, true, {}), Outcome::stored) << "a mixing voice was removed";
  EXPECT_EQ(outcomeOf(Told::nothingToDo, false, {}), Outcome::ignored) << "there was no such mixing voice";
  EXPECT_EQ(outcomeOf(Told::nothingToDo, false, {1, 2}), Outcome::completed) << "a trigger with nothing held";
  EXPECT_EQ(outcomeOf(Told::answered, false, {13, 14}), Outcome::answered);
  EXPECT_EQ(outcomeOf(Told::nothingToSend, false, {13, 14}), Outcome::nothingToSend);
  EXPECT_EQ(outcomeOf(Told::refused, true, {11, 12, 44}), Outcome::refused);
}

TEST(Outcome, hasWordsForEveryRefusal) {
  for (int refusal = 1; refusal <= int(BDA::BulkDumpRefusal::notConstructed); ++refusal) {
    const std::string words = Editor::wordsOf(BDA::BulkDumpRefusal(refusal));
    EXPECT_GT(words.size(), 10U) << refusal;
  }
  EXPECT_STREQ(Editor::wordsOf(BDA::BulkDumpRefusal::none), "");
}

TEST(Outcome, isRefusedWhenTheStoreFailedBehindTheAssistantsBack) {
  Editor::Handed handed;
  handed.report.outcome = BDA::BulkDumpOutcome::handedToStore;
  handed.shown = {1, 2};
  handed.storeError = "no space left";
  EXPECT_EQ(Editor::outcomeOf(Editor::readMessage(dump({0x11, 0x00, 0x00})), handed, {}), Outcome::refused);
}

TEST(Outcome, ofAnEditBuffersFooterNamesItsBuffer) {
  Editor::Handed handed;
  handed.report.outcome = BDA::BulkDumpOutcome::handedToStore;
  const Editor::Reading footer = Editor::readMessage(dump({0x0F, 0x0F, 0x00}));
  EXPECT_THAT(Editor::touchedBy(footer, handed).contents, testing::IsEmpty()) << "not yet on disk";
  handed.isKept = true;
  EXPECT_THAT(Editor::touchedBy(footer, handed).contents, testing::ElementsAre("voice:edit"));
}

TEST(Outcome, ofWhatWasStoredAndRemovedIsWhatIsThereInTheEnd) {
  using Kind = Editor::Change::Kind;
  Editor::Handed handed;
  handed.isKept = true;
  handed.changes = {{Kind::Stored, {1, 4}}, {Kind::Removed, {1, 5}}, {Kind::Removed, {1, 4}}, {Kind::Renamed, {1, 6}}};
  const Editor::Touched touched = Editor::touchedBy(Editor::readMessage(dump({0x11, 0x00, 0x00})), handed);
  EXPECT_THAT(touched.contents, testing::ElementsAre("file:multi:5", "file:multi:6"));
  EXPECT_THAT(touched.removed, testing::ElementsAre("file:multi:5", "file:multi:6"));
}
