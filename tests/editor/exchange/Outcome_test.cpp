#include "exchange/Outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"

using Editor::Outcome;

namespace {

constexpr Editor::ContentId kMulti5{ContSrv::ContType_Multi, 4};
constexpr Editor::ContentId kMulti6{ContSrv::ContType_Multi, 5};
constexpr Editor::ContentId kMulti7{ContSrv::ContType_Multi, 6};

}  // namespace

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
  using Editor::contentAt;
  using Editor::What;
  Editor::Handed handed;
  handed.isKept = true;
  handed.changes = {{What::stored, contentAt(kMulti5)},
                    {What::removed, contentAt(kMulti6)},
                    {What::removed, contentAt(kMulti5)},
                    {What::renamed, contentAt(kMulti7)}};
  const Editor::Touched touched = Editor::touchedBy(Editor::readMessage(dump({0x11, 0x00, 0x00})), handed);
  EXPECT_THAT(touched.contents, testing::ElementsAre("file:multi:5", "file:multi:6"));
  EXPECT_THAT(touched.removed, testing::ElementsAre("file:multi:5", "file:multi:6"));
}

TEST(Outcome, ofWhatChangedIsEachPlaceOnceWithWhatItHeldBefore) {
  using Editor::contentAt;
  using Editor::Standing;
  using Editor::What;
  const Standing one{"One", 1};
  const Standing two{"Two", 2};
  const Editor::Place live = Editor::liveAt("edit");
  Editor::Handed handed;
  handed.isKept = true;
  handed.changes = {{What::removed, contentAt(kMulti5), one, std::nullopt},
                    {What::removed, contentAt(kMulti6), one, std::nullopt},
                    {What::stored, live, one, two},
                    {What::stored, contentAt(kMulti5), std::nullopt, one},
                    {What::stored, contentAt(kMulti6), std::nullopt, two},
                    {What::stored, contentAt(kMulti7), one, one},
                    {What::renamed, contentAt(kMulti7), one, Standing{"Uno", 1}}};
  const Editor::Touched touched = Editor::touchedBy(Editor::readMessage(dump({0x11, 0x00, 0x00})), handed);
  EXPECT_THAT(touched.contents, testing::ElementsAre("file:multi:5", "file:multi:6", "file:multi:7"));
  EXPECT_THAT(touched.removed, testing::IsEmpty());
  ASSERT_THAT(touched.changed,
              testing::ElementsAre(Editor::Change{What::stored, contentAt(kMulti6)}, Editor::Change{What::stored, live},
                                   Editor::Change{What::renamed, contentAt(kMulti7)}))
      << "multi 5 holds what it held";
  EXPECT_EQ(touched.changed[0].before, one);
  EXPECT_EQ(touched.changed[0].after, two);
  handed.isKept = false;
  EXPECT_THAT(Editor::touchedBy(Editor::readMessage(dump({0x11, 0x00, 0x00})), handed).changed, testing::IsEmpty());
}
