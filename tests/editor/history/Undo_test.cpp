#include "history/Undo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <map>

#include "contents/ContentFormat.h"
#include "editor/contents/FaultyVfs.h"
#include "editor/contents/LibraryFixture.h"
#include "editor/messages/BulkMessages.h"
#include "history/History.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using State = Undone::State;

class Undoing : public LibraryTest {
 protected:
  void run(const std::string& verb) { library.beginRun({verb}); }
  void store(ContentId id, const std::string& name, const Bytes& bytes) {
    run("store");
    library.store(id, bytes, name);
  }
  Undone undoNow(std::optional<std::int64_t> entry = {}, Force force = Force::no) {
    Library::Transaction transaction(library);
    Undone undone = undo(editor, entry, force);
    if (undone.state == State::done) transaction.commit();
    return undone;
  }
  HistoryEntry entry(std::int64_t number) {
    for (const HistoryEntry& one : entriesOf(library))
      if (one.number == number) return one;
    return {};
  }
  std::string nameAt(ContentId id) { return library.contentName(id).value_or("nothing"); }
  void selectDrums() {
    run("drums");
    Library::Transaction transaction(library);
    ModelSet multi = editor.tools().live(EditBuffer::multi);
    ASSERT_TRUE(multi.multi->part[0].bankProgram.assign({0x3F, 0x28, 0}));
    ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
    transaction.commit();
  }

  EmbeddedEditor editor{file};
  Library& library = editor.library();
};

TEST_F(Undoing, OfWhatIsUndoneIsRefusedWithTheUndoThatDidIt) {
  store(kVoice, "one", {1});
  store(kVoice, "two", {2});
  for (const std::int64_t number : {2, 3, 2}) ASSERT_EQ(undoNow(number).state, State::done);
  for (const Force force : {Force::no, Force::yes}) {
    const Undone again = undoNow(3, force);
    EXPECT_EQ(again.state, State::isUndone);
    EXPECT_EQ(again.undoneBy, 4);
    EXPECT_EQ(whyNotDone(again), "entry 3 is already undone, by 4");
    EXPECT_EQ(undoNow(2, force).undoneBy, 5);
  }
  EXPECT_EQ(nameAt(kVoice), "one");
  EXPECT_EQ(undoNow(5).state, State::done) << "the newest undo is undone by its number";
  EXPECT_EQ(nameAt(kVoice), "two");
}

TEST_F(Undoing, PutsBackEveryKindOfPlace) {
  store(kVoice, "Piano", {1});
  library.set("mixing-voices", 7);
  run("change");
  library.store(kVoice, Bytes{2}, "Grand");
  library.store(kMulti, Bytes{3}, "Multi");
  library.setFavourite(kVoice, 1);
  library.set("mixing-voices", 8);
  library.remove(kVoice);
  const Undone undone = undoNow();
  EXPECT_EQ(undone.state, State::done);
  EXPECT_EQ(undone.entry, 2);
  EXPECT_EQ(undone.changes.size(), 4U);
  EXPECT_EQ(library.content(kVoice), (Library::Content{"Piano", {1}}));
  EXPECT_FALSE(library.content(kMulti));
  EXPECT_EQ(library.favourite(kVoice), 0);
  EXPECT_EQ(library.mixingVoiceMaximum(), 7);
}

TEST_F(Undoing, SaidAgainItGoesOneChangeFurtherBack) {
  for (const char* name : {"1", "2", "3"}) store(kVoice, name, {1});
  for (const char* name : {"2", "1", "nothing"}) {
    EXPECT_EQ(undoNow().state, State::done);
    EXPECT_EQ(nameAt(kVoice), name);
  }
  EXPECT_EQ(undoNow().state, State::nothingToUndo);
  EXPECT_EQ(whyNotDone(undoNow()), "there is nothing to undo");
  EXPECT_EQ(undoNow(77).state, State::noSuchEntry);
  EXPECT_EQ(whyNotDone(undoNow(77)), "there is no entry 77 in the history");
}

TEST_F(Undoing, ThatIsTakenBackIsInTheLiveModelsUntilTheyAreReadAgain) {
  selectDrums();
  const auto bank = [&] { return editor.tools().live(EditBuffer::multi).multi->part[0].bankProgram.values(); };
  const auto drums = bank();
  {
    const Library::Transaction takenBack(library);
    ASSERT_EQ(undo(editor, {}, Force::no).state, State::done);
  }
  ASSERT_NE(bank(), drums);
  editor.rereadLive();
  EXPECT_EQ(bank(), drums);
}

TEST_F(Undoing, AnUndoIsUndoneByItsNumber) {
  store(kVoice, "1", {1});
  store(kVoice, "2", {2});
  undoNow();
  EXPECT_EQ(entry(2).undoneBy, 3);
  EXPECT_EQ(entry(3).undoes, 2);
  EXPECT_EQ(undoNow(3).state, State::done);
  EXPECT_EQ(nameAt(kVoice), "2");
  EXPECT_EQ(entry(2).undoneBy, std::nullopt);
  EXPECT_EQ(entry(3).undoneBy, 4);
  EXPECT_EQ(undoNow().entry, 2);  // as it is not undone any more
  EXPECT_EQ(nameAt(kVoice), "1");
  EXPECT_EQ(entry(2).undoneBy, 5);
}

TEST_F(Undoing, APlaceThatChangedSinceIsAConflictAndNothingIsPutBack) {
  run("both");
  library.store(kVoice, Bytes{1}, "1");
  library.setFavourite(kVoice, 1);
  library.store(kMulti, Bytes{1}, "1");
  store(kVoice, "2", {2});
  library.setFavourite(kVoice, 0);
  const Undone refused = undoNow(1);
  EXPECT_EQ(refused.state, State::conflict);
  EXPECT_THAT(refused.conflicts, ElementsAre("voice:user1:6"));
  EXPECT_EQ(whyNotDone(refused), "entry 1 is not undone, nothing is changed");
  EXPECT_EQ(wordsOfConflict(refused), "no longer holds what entry 1 left there");
  EXPECT_EQ(nameAt(kMulti), "1");
  EXPECT_EQ(entriesOf(library).size(), 2U);
  EXPECT_EQ(undoNow(1, Force::yes).state, State::done);
  EXPECT_EQ(nameAt(kVoice), "nothing");
  EXPECT_EQ(nameAt(kMulti), "nothing");
  EXPECT_EQ(undoNow(3).state, State::done);
  EXPECT_EQ(nameAt(kVoice), "2");
}

TEST_F(Undoing, APlaceIsJudgedByWhatItHoldsNotByWhatCameLater) {
  store(kVoice, "1", {1});
  store(kVoice, "2", {2});
  store(kVoice, "1", {1});
  EXPECT_EQ(undoNow(1).state, State::done);
  EXPECT_EQ(nameAt(kVoice), "nothing");
}

TEST_F(Undoing, AForcedUndoThatChangesNothingIsDoneAllTheSame) {
  store(kVoice, "1", {1});
  run("remove");
  library.remove(kVoice);
  EXPECT_EQ(undoNow(1, Force::yes).state, State::done);
  EXPECT_THAT(changesOf(library, 3), IsEmpty());
  EXPECT_EQ(entry(1).undoneBy, 3);
}

TEST_F(Undoing, TheLiveModelsOfTheEditorFollow) {
  const auto deviceOf = [&] {
    return editor.tools().liveSystem().system->utility.values()[SystemModel::kDeviceNumber];
  };
  ASSERT_EQ(deviceOf(), 0);
  run("settings");
  ModelSet system = editor.tools().liveSystem();
  const std::uint8_t five = 5;
  system.system->utility.set(&five, SystemModel::kDeviceNumber, 0);
  ASSERT_TRUE(editor.tools().replaceSystem(system));
  ASSERT_EQ(deviceOf(), 5);
  EXPECT_EQ(undoNow().changes.at(0).place, "system");
  EXPECT_EQ(deviceOf(), 0);
  // A message that comes now is for the device of before.
  EXPECT_EQ(editor.handle(dump({0, 6, 0}, {1, 1, 0, 0, 0}, 0), BDA::DevicePort_Main, 1).outcome, Outcome::completed);
}

TEST_F(Undoing, WhatAnEditorElsewhereHasOpenFollows) {
  EmbeddedEditor other(file);
  selectDrums();
  other.handle(request({0x0E, 0x30, 0}), BDA::DevicePort_Main, 1);
  ASSERT_TRUE(other.tools().live(EditBuffer::partVoice, 0).voice->isDrum());
  undoNow();
  other.handle(request({0x0E, 0x30, 0}), BDA::DevicePort_Main, 2);
  EXPECT_FALSE(other.tools().live(EditBuffer::partVoice, 0).voice->isDrum());
}

TEST_F(Undoing, AForcedUndoLeavesNoVoiceOfTheWrongKindInAPart) {
  run("name");
  ModelSet multi = editor.tools().live(EditBuffer::multi);
  multi.multi->name.assign("first");
  ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
  run("name again");
  multi.multi->name.assign("second");
  ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
  selectDrums();
  EXPECT_EQ(undoNow(2).state, State::conflict);
  EXPECT_EQ(undoNow(2, Force::yes).state, State::done);
  EXPECT_FALSE(editor.tools().live(EditBuffer::partVoice, 0).voice->isDrum());
  EXPECT_EQ(editor.tools().live(EditBuffer::multi).multi->name.text(), "first");
  EXPECT_NO_THROW(EmbeddedEditor{file});
}

TEST_F(Undoing, WhatBlocksLeftInEditBuffersBelongsToTheEntryOfTheirRun) {
  run("receive");
  for (const BulkAddress address : systemAddresses()) editor.handle(blockDump(address, 1), BDA::DevicePort_Main, 1);
  ASSERT_EQ(entriesOf(library).size(), 1U);
  EXPECT_EQ(changesOf(library, 1).at(0).place, "system");
  EXPECT_EQ(undoNow().state, State::done);
  EXPECT_THAT(library.liveKeys(), IsEmpty());
}

// ---- On a disk that fails, and killed -------------------------------------------------------------------------------

using Contents = std::map<ContentId, Library::Content>;

Contents contentsOf(const std::filesystem::path& file) {
  Library library(file, {.use = Library::Use::read});
  Contents contents;
  for (const ContentId id : library.contents()) contents[id] = library.content(id).value();
  return contents;
}

// Two entries: twenty contents, then ten of them replaced and ten removed.
void makeHistory(const std::filesystem::path& file) {
  Library library(file);
  library.beginRun({"first"});
  for (std::uint32_t i = 0; i < 20; ++i) library.store({1, i}, Bytes(3000, std::uint8_t(i)), "first");
  Library::Transaction transaction(library);
  library.beginRun({"second"});
  for (std::uint32_t i = 0; i < 10; ++i) library.store({1, i}, Bytes(3000, 99), "second");
  for (std::uint32_t i = 10; i < 20; ++i) library.remove({1, i});
  transaction.commit();
}

void undoIn(const std::filesystem::path& file, const char* vfs = nullptr) {
  EmbeddedEditor editor(file, {.vfs = vfs});
  Library::Transaction transaction(editor.library());
  undo(editor, std::nullopt, Force::no);
  transaction.commit();
}

TEST(UndoFaults, AtAnyOperationItIsDoneAsAWholeOrNotAtAll) {
  using Fault = FaultyVfs::Fault;
  TemporaryDirectory original;
  makeHistory(original / "library.db");
  const Contents before = contentsOf(original / "library.db");
  const std::string bytes = bytesOfFile(original / "library.db");
  undoIn(original / "library.db");
  const Contents after = contentsOf(original / "library.db");
  ASSERT_NE(before, after);
#ifdef BDA_SAMPLED
  constexpr int kStep = 7;
#else
  constexpr int kStep = 1;
#endif
  int operations = 0;
  for (const Fault fault : {Fault::DiskFull, Fault::PowerCut})
    for (int n = 1;; n += kStep) {
      TemporaryDirectory directory;
      const auto file = directory / "library.db";
      writeFile(file, bytes);
      FaultyVfs vfs;
      vfs.adopt(file);
      vfs.arm(fault, n);
      bool isDone = true;
      try {
        undoIn(file, FaultyVfs::kName);
      } catch (const std::exception&) {
        isDone = false;
      }
      if (!vfs.hasStruck()) break;
      operations = std::max(operations, n);
      TemporaryDirectory afterwards;
      if (fault == Fault::PowerCut) vfs.leaveFiles(afterwards.path(), unsigned(n));
      vfs.disarm();
      const auto left = fault == Fault::PowerCut ? afterwards / "library.db" : file;
      const Contents found = contentsOf(left);
      ASSERT_TRUE(found == after || (found == before && !isDone)) << "operation " << n;
      ASSERT_EQ(Library(left).recordedEntries().size(), found == after ? 3U : 2U) << "operation " << n;
    }
  EXPECT_GT(operations, 10);
}

TEST(UndoKilled, ItIsDoneAsAWholeOrNotAtAll) {
#ifdef BDA_SAMPLED
  constexpr int kKills = 30;
#else
  constexpr int kKills = 300;
#endif
  TemporaryDirectory directory;
  const auto file = directory / "library.db";
  makeHistory(file);
  const Contents before = contentsOf(file);
  const std::string bytes = bytesOfFile(file);
  int done = 0;
  for (int i = 0; i < kKills; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) std::filesystem::remove(entry);
    writeFile(file, bytes);
    const pid_t child = ::fork();
    if (child == 0) {
      undoIn(file);
      ::_exit(0);
    }
    ::usleep(useconds_t(i * 1997 % 40000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const Contents found = contentsOf(file);
    const std::size_t entries = Library(file).recordedEntries().size();
    if (found == before)
      ASSERT_EQ(entries, 2U) << "kill " << i;
    else
      ASSERT_EQ(entries, 3U) << "kill " << i;
    ASSERT_TRUE(found == before || found.size() == 20) << "kill " << i;
    for (const auto& [id, content] : found) ASSERT_EQ(content.name == "first", found.size() == 20) << "kill " << i;
    done += found == before ? 0 : 1;
  }
  std::cout << kKills << " kills, " << done << " undone\n";
}

}  // namespace
}  // namespace Editor
