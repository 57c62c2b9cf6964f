// What a library records of its changes: Recorder, as whoever changes a library meets it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Bytes = Library::Bytes;

std::chrono::system_clock::time_point now;

struct LibraryHistory : LibraryTest {
  LibraryHistory() { now = std::chrono::system_clock::time_point(std::chrono::seconds(1'000'000)); }

  std::vector<std::int64_t> numbers() {
    std::vector<std::int64_t> all;
    for (const RecordedEntry& entry : library.recordedEntries()) all.push_back(entry.number);
    return all;
  }
  std::vector<RecordedChange> newest() {
    return library.recordedChanges(library.recordedEntries().front().number, true);
  }
  void run(const std::string& verb) { library.beginRun({verb}); }

  Library library{file, {.clock = [] { return now; }}};
};

TEST_F(LibraryHistory, OneRunIsOneEntryWithEachPlaceOnce) {
  library.beginRun({"receive", {"a.syx", "b c.syx"}});
  library.store(kVoice, Bytes{1}, "first");
  library.store(kVoice, Bytes{2}, "second");
  library.setFavourite(kVoice, 1);
  library.storeLive("nobody", Bytes{9});
  library.set("mixing-voices", 5);
  ASSERT_THAT(numbers(), ElementsAre(1));
  const RecordedEntry entry = library.recordedEntries().front();
  EXPECT_EQ(entry.time, 1'000'000);
  EXPECT_EQ(entry.run.verb, "receive");
  EXPECT_THAT(entry.run.sources, ElementsAre("a.syx", "b c.syx"));
  const std::vector<RecordedChange> changes = newest();
  ASSERT_THAT(changes, SizeIs(4));
  EXPECT_EQ(changes[0].place, contentAt(kVoice));
  EXPECT_EQ(changes[0].what, What::stored);
  EXPECT_EQ(changes[0].before, std::nullopt);
  EXPECT_EQ(changes[0].nameBefore, std::nullopt);
  EXPECT_EQ(changes[0].nameAfter, "second");
  EXPECT_EQ(changes[0].checksumAfter, heldOf("second", Bytes{2}).checksum);
  EXPECT_EQ(changes[1].place, favouriteAt(kVoice));
  EXPECT_EQ(changes[1].nameAfter, "1");
  EXPECT_EQ(changes[2].place, liveAt("nobody"));
  EXPECT_EQ(changes[3].place, settingAt("mixing-voices"));
  EXPECT_EQ(changes[3].nameAfter, "5");
}

TEST_F(LibraryHistory, APlaceKeepsWhatItHeldBeforeTheRun) {
  library.store(kVoice, Bytes{1}, "old");
  run("apply");
  library.store(kVoice, Bytes{2}, "between");
  library.store(kVoice, Bytes{3}, "new");
  const std::vector<RecordedChange> changes = newest();
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_EQ(changes[0].before, heldOf("old", Bytes{1}));
  EXPECT_EQ(changes[0].nameAfter, "new");
  library.remove(kVoice);
  EXPECT_EQ(newest()[0].what, What::removed);
  EXPECT_EQ(newest()[0].nameAfter, std::nullopt);
  EXPECT_EQ(newest()[0].before, heldOf("old", Bytes{1}));
}

TEST_F(LibraryHistory, ANameThatAloneChangesIsARenameByARunThatRenames) {
  ModelSet models = emptySetFor(kVoice);
  nameIn(models)->assign("Old");
  library.store(kVoice, encodeContent(models), "Old");
  library.store(kMulti, Bytes{1}, "opaque");
  library.beginRun({"rename", {}, {}, true});
  nameIn(models)->assign("New");
  library.store(kVoice, encodeContent(models), "New");
  library.rename(kMulti, "other");
  for (const RecordedChange& change : newest()) EXPECT_EQ(change.what, What::renamed);
  run("apply");
  nameIn(models)->assign("Other");
  library.store(kVoice, encodeContent(models), "Other");
  EXPECT_EQ(newest()[0].what, What::stored);
  run("apply");
  models.voice->common.set(Bytes{1, 2, 3}.data(), 3, 0);
  nameIn(models)->assign("Newer");
  library.store(kVoice, encodeContent(models), "Newer");
  EXPECT_EQ(newest()[0].what, What::stored);
}

TEST_F(LibraryHistory, AnEditBufferBearsTheNameInsideOfItsModels) {
  ModelSet models = emptySetFor(headerTypeOf(headerOf(EditBuffer::normalVoice)));
  nameIn(models)->assign("Edited");
  library.storeLive("voice", encodeContent(models));
  EXPECT_EQ(newest()[0].nameAfter, "Edited");
  EXPECT_EQ(newest()[0].what, What::stored);
}

TEST_F(LibraryHistory, WhatATransactionTakesBackIsNotRecorded) {
  run("receive");
  library.store(kMulti, Bytes{1}, "kept");
  {
    Library::Transaction outer(library);
    library.store(kMulti, Bytes{2}, "kept too");
    {
      const Library::Transaction inner(library);
      library.store(kVoice, Bytes{1}, "taken back");
    }
    outer.commit();
  }
  {
    const Library::Transaction outer(library);
    library.store(kVoice, Bytes{1}, "taken back");
  }
  ASSERT_THAT(newest(), SizeIs(1));
  EXPECT_EQ(newest()[0].nameAfter, "kept too");
}

TEST_F(LibraryHistory, AnEntryThatWasTakenBackGivesItsNumberToTheNext) {
  library.store(kMulti, Bytes{1}, "x");
  run("receive");
  {
    const Library::Transaction outer(library);
    library.store(kVoice, Bytes{1}, "taken back");
  }
  Library other(file);
  other.beginRun({"other"});
  other.store(kMulti, Bytes{2}, "theirs");
  library.store(kVoice, Bytes{1}, "mine");  // not into their entry
  EXPECT_THAT(numbers(), ElementsAre(3, 2, 1));
  EXPECT_EQ(library.recordedEntries()[1].run.verb, "other");
  EXPECT_THAT(library.recordedChanges(2, false), SizeIs(1));
}

TEST_F(LibraryHistory, NothingIsRecordedOfWhatChangesNothing) {
  library.store(kVoice, Bytes{1}, "x");
  run("again");
  library.store(kVoice, Bytes{1}, "x");
  library.remove(kMulti);
  EXPECT_THAT(numbers(), ElementsAre(1));
  {
    Library::Transaction transaction(library);
    library.store(kVoice, Bytes{2}, "y");
    library.store(kVoice, Bytes{1}, "x");
    transaction.commit();
  }
  EXPECT_THAT(numbers(), ElementsAre(1));
  library.store(kMulti, Bytes{2}, "y");
  EXPECT_THAT(numbers(), ElementsAre(2, 1));
}

TEST_F(LibraryHistory, ARunWithAnEndIsOneEntryHoweverLongItPauses) {
  run("fetch");
  library.store(kVoice, Bytes{1}, "1");
  now += std::chrono::hours(1);
  library.store(kVoice, Bytes{2}, "2");
  EXPECT_THAT(numbers(), ElementsAre(1));
}

TEST_F(LibraryHistory, InAnEndlessRunANewEntryBeginsAfterAMinuteWithoutAChange) {
  library.beginRun({.verb = "receive", .isEndless = true});
  library.store(kVoice, Bytes{1}, "1");
  now += std::chrono::seconds(59);
  library.store(kVoice, Bytes{2}, "2");
  now += std::chrono::seconds(59);
  library.store(kVoice, Bytes{3}, "3");
  EXPECT_THAT(numbers(), ElementsAre(1));
  now += std::chrono::seconds(60);
  library.store(kVoice, Bytes{4}, "4");
  EXPECT_THAT(numbers(), ElementsAre(2, 1));
  EXPECT_EQ(newest()[0].nameBefore, "3");
  EXPECT_EQ(library.recordedEntries().front().time, 1'000'178);
}

TEST_F(LibraryHistory, OneTransactionIsOneEntryHoweverLongItTakes) {
  Library::Transaction transaction(library);
  library.store(kVoice, Bytes{1}, "1");
  now += std::chrono::hours(1);
  library.store(kMulti, Bytes{2}, "2");
  transaction.commit();
  EXPECT_THAT(numbers(), ElementsAre(1));
}

TEST_F(LibraryHistory, ANewEntryBeginsWhenTheLastWasUndoneMeanwhile) {
  run("receive");
  library.store(kVoice, Bytes{1}, "1");
  {
    Library other(file);
    other.beginRun({"undo", {}, 1});
    other.putBack(contentAt(kVoice), std::nullopt);
  }
  library.store(kVoice, Bytes{2}, "2");
  EXPECT_THAT(numbers(), ElementsAre(3, 2, 1));
  EXPECT_EQ(library.recordedEntries()[1].run.undoes, 1);
}

TEST_F(LibraryHistory, TheOldestEntriesGoFirst) {
  library.set(Recorder::kEntries, 3);
  for (std::uint8_t i = 0; i < 6; ++i) {
    run("store");
    library.store(kVoice, Bytes{i}, "x");
  }
  EXPECT_THAT(numbers(), ElementsAre(6, 5, 4));
  EXPECT_THAT(library.recordedChanges(3, true), IsEmpty());
  library.set(Recorder::kEntries, 1);
  EXPECT_THAT(numbers(), ElementsAre(6));
}

TEST_F(LibraryHistory, ASizeThatIsExceededCostsTheOldestAndNeverTheNewest) {
  library.set(Recorder::kMegabytes, 1);
  run("small");
  library.store(kMulti, Bytes{1}, "small");
  for (std::uint8_t i = 0; i < 4; ++i) {
    run("large");
    library.store(kVoice, Bytes(400'000, i), "x");
  }
  EXPECT_THAT(numbers(), ElementsAre(5, 4));  // which hold two times 400 KB
  run("huge");
  library.store(kVoice, Bytes(2'000'000, 9), "x");
  run("takes a huge one away");
  library.remove(kVoice);
  EXPECT_THAT(numbers(), ElementsAre(7));
  run("small");
  library.store(kMulti, Bytes{2}, "small");
  EXPECT_THAT(numbers(), ElementsAre(8));
}

TEST_F(LibraryHistory, TheFileDoesNotGrowWithoutBound) {
  library.set(Recorder::kMegabytes, 1);
  std::uintmax_t size = 0;
  for (int i = 0; i < 200; ++i) {
    run("store");
    library.store(kVoice, Bytes(100'000, std::uint8_t(i)), "x");
    if (i == 50) size = std::filesystem::file_size(file);
  }
  EXPECT_LE(std::filesystem::file_size(file), size + 200'000);
}

TEST_F(LibraryHistory, OffKeepsWhatStandsAndRecordsNothingButUndos) {
  library.store(kVoice, Bytes{1}, "1");
  library.set(Recorder::kEntries, 0);
  run("store");
  library.store(kVoice, Bytes{2}, "2");
  EXPECT_THAT(numbers(), ElementsAre(1));
  library.beginRun({"undo", {}, 1});
  library.putBack(contentAt(kVoice), std::nullopt);
  EXPECT_THAT(numbers(), ElementsAre(2, 1));
}

TEST_F(LibraryHistory, TheSettingsOfTheHistoryAreNotRecorded) {
  library.set(Recorder::kEntries, 10);
  library.set(Recorder::kMegabytes, 10);
  EXPECT_THAT(numbers(), IsEmpty());
}

TEST_F(LibraryHistory, ALibraryInMemoryHasNone) {
  Library memory(file, {.use = Library::Use::memory});
  memory.store(kVoice, Bytes{1}, "x");
  EXPECT_THAT(memory.recordedEntries(), IsEmpty());
}

TEST_F(LibraryHistory, ACopyInMemoryGoesOnWithThatOfItsOriginal) {
  library.store(kVoice, Bytes{1}, "x");
  Library copy(file, {.use = Library::Use::memory});
  copy.copyFrom(library);
  copy.store(kVoice, Bytes{2}, "no run");
  EXPECT_THAT(copy.recordedEntries(), SizeIs(1));
  copy.beginRun({"rehearsal"});
  copy.store(kVoice, Bytes{3}, "y");
  EXPECT_THAT(copy.recordedEntries(), SizeIs(2));
  EXPECT_EQ(copy.entryOfRun(), 2);
  EXPECT_THAT(numbers(), ElementsAre(1));
}

// ---- Checksums ------------------------------------------------------------------------------------------------------

TEST_F(LibraryHistory, AContentThatDoesNotFitItsChecksumIsDamagedAndTheOthersAreNot) {
  library.store(kVoice, Bytes{1, 2, 3}, "Piano");
  library.store(kMulti, Bytes{1, 2, 3}, "Multi");
  for (const char* change : {"bytes = x'01020300'", "name = CAST('Piana' AS BLOB)", "bytes = x'010283'"}) {
    PlainDatabase{file}(std::string("UPDATE content SET ") + change + " WHERE type = 4");
    const auto error = errorOf([&] { library.content(kVoice); });
    ASSERT_TRUE(error) << change;
    EXPECT_EQ(error->kind(), LibraryError::Kind::DamagedPlace);
    EXPECT_TRUE(library.content(kMulti));
    EXPECT_TRUE(errorOf([&] { library.rename(kVoice, "it would pass for good"); }));
    library.store(kVoice, Bytes{1, 2, 3}, "Piano");
    EXPECT_TRUE(library.content(kVoice));
  }
}

TEST_F(LibraryHistory, AChecksumIsThatOfItsDefinition) {
  // FNV-1a of 00 00 00 00 00 00 00 01, 61, 62.
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const std::uint8_t byte : Bytes{0, 0, 0, 0, 0, 0, 0, 1, 0x61, 0x62}) hash = (hash ^ byte) * 0x100000001B3;
  EXPECT_EQ(std::uint64_t(heldOf("a", Bytes{0x62}).checksum), hash);
  EXPECT_NE(heldOf("a", Bytes{0x62}).checksum, heldOf("", Bytes{0x61, 0x62}).checksum);
}

}  // namespace
}  // namespace Editor
