#include "contents/Library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>

#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using Content = Library::Content;
using Kind = LibraryError::Kind;
using std::chrono::milliseconds;

// ---- Opening --------------------------------------------------------------------------------------------------------

TEST_F(LibraryTest, IsMadeWithItsDirectory) {
  const auto deep = directory / "a/b/library.db";
  madeLibrary(deep);
  PlainDatabase plain(deep);
  EXPECT_EQ(plain("PRAGMA journal_mode"), "wal");
  EXPECT_EQ(plain("PRAGMA application_id"), std::to_string(0x4244414C));
  EXPECT_EQ(plain("PRAGMA user_version"), "2");
  EXPECT_EQ(plain("PRAGMA integrity_check"), "ok");
}

TEST_F(LibraryTest, StartsEmpty) {
  Library library(file);
  EXPECT_THAT(library.contents(), IsEmpty());
  EXPECT_THAT(library.favourites(), IsEmpty());
  EXPECT_THAT(library.liveKeys(), IsEmpty());
  EXPECT_EQ(library.mixingVoiceCount(), 0);
  EXPECT_EQ(library.mixingVoiceMaximum(), 2048);
}

TEST_F(LibraryTest, AnEmptyFileBecomesALibrary) {
  writeFile(file, "");
  Library library(file);
  library.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(library.content(kVoice));
}

TEST_F(LibraryTest, KeepsEverythingWhenItIsOpenedAgain) {
  {
    Library library(file);
    library.store(kVoice, Bytes{1, 2, 3}, "Piano");
    library.setFavourite(kMulti, 1);
    library.storeLive("system", Bytes{9});
    library.setMixingVoiceMaximum(5);
  }
  Library library(file);
  EXPECT_EQ(library.content(kVoice), (Content{"Piano", {1, 2, 3}}));
  EXPECT_EQ(library.favourite(kMulti), 1);
  EXPECT_EQ(library.live("system"), Bytes{9});
  EXPECT_EQ(library.mixingVoiceMaximum(), 5);
}

TEST_F(LibraryTest, ARandomFileIsRefusedAndUntouched) {
  for (const std::string& bytes :
       {std::string("x"), std::string(99, 'y'), std::string(5000, 'z'), std::string(4096, '\0'),
        std::string("SQLite format 3\0", 16), std::string("SQLite format 3\0", 16) + std::string(4080, '\0')}) {
    writeFile(file, bytes);
    const auto error = errorOfOpening(file);
    ASSERT_TRUE(error) << bytes.size();
    EXPECT_EQ(error->kind(), Kind::NotALibrary);
    EXPECT_EQ(error->what(), file.string() + " is no library");
    EXPECT_EQ(bytesOfFile(file), bytes);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
  }
}

TEST_F(LibraryTest, AForeignDatabaseIsRefusedAndUntouched) {
  { PlainDatabase{file}("CREATE TABLE contents(a); INSERT INTO contents VALUES(1)"); }
  const std::string before = bytesOfFile(file);
  const auto error = errorOfOpening(file);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::NotALibrary);
  EXPECT_EQ(bytesOfFile(file), before);
}

// To read such a database through SQLite would write its log back into it.
TEST_F(LibraryTest, AForeignOrNewerDatabaseWithALogOfItsOwnIsUntouched) {
  const auto refused = [&](const std::string& setUp) {
    const TemporaryDirectory elsewhere;
    const auto original = elsewhere / "original.db";
    PlainDatabase living(original);
    living(setUp + "; PRAGMA journal_mode = WAL; CREATE TABLE t(a); INSERT INTO t VALUES(1)");
    const auto copy = std::filesystem::copy_options::overwrite_existing;
    std::filesystem::copy_file(original, file, copy);
    std::filesystem::copy_file(original.string() + "-wal", file.string() + "-wal", copy);
    const std::string before = bytesOfFile(file);
    const std::string log = bytesOfFile(file.string() + "-wal");
    EXPECT_FALSE(log.empty());

    const auto error = errorOfOpening(file);
    EXPECT_EQ(bytesOfFile(file), before);
    EXPECT_EQ(bytesOfFile(file.string() + "-wal"), log);
    EXPECT_FALSE(std::filesystem::exists(file.string() + "-shm"));
    return error->kind();
  };
  EXPECT_EQ(refused("SELECT 1"), Kind::NotALibrary);
  EXPECT_EQ(refused("PRAGMA application_id = " + std::to_string(0x4244414C) + "; PRAGMA user_version = 3"),
            Kind::NewerVersion);
}

TEST_F(LibraryTest, ALibraryOfANewerVersionIsRefusedAndUntouched) {
  madeLibrary(file);
  { PlainDatabase{file}("PRAGMA user_version = 3"); }
  const std::string before = bytesOfFile(file);
  const auto error = errorOfOpening(file);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::NewerVersion);
  EXPECT_THAT(error->what(), HasSubstr(file.string()));
  EXPECT_THAT(error->what(), HasSubstr("newer version"));
  EXPECT_EQ(bytesOfFile(file), before);
}

TEST_F(LibraryTest, WhatCannotBeOpenedIsNamed) {
  writeFile(file, "a file");
  for (const auto& [path, kind] : {std::pair(directory.path(), Kind::NotALibrary),
                                   {file / "below-a-file.db", Kind::CannotOpen},
                                   {"/dev/null", Kind::NotALibrary}}) {
    const auto error = errorOfOpening(path);
    ASSERT_TRUE(error) << path;
    EXPECT_EQ(error->kind(), kind);
    EXPECT_THAT(error->what(), HasSubstr(path.string()));
  }
  EXPECT_EQ(errorOfOpening("")->kind(), Kind::CannotOpen);
}

TEST_F(LibraryTest, AMissingTableIsDamage) {
  madeLibrary(file);
  { PlainDatabase{file}("DROP TABLE favourite"); }
  const auto error = errorOfOpening(file);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::Damaged);
  EXPECT_THAT(error->what(), HasSubstr(file.string() + " is damaged: no such table: favourite"));
}

TEST_F(LibraryTest, AMissingVersionIsDamage) {
  madeLibrary(file);
  { PlainDatabase{file}("PRAGMA user_version = 0"); }
  const auto error = errorOfOpening(file);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::Damaged);
}

// All that a program killed while it created a library may leave, beside an empty file.
TEST_F(LibraryTest, AnUnfinishedLibraryIsFinished) {
  { PlainDatabase{file}("PRAGMA application_id = " + std::to_string(0x4244414C)); }
  Library library(file);
  library.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(library.content(kVoice));
}

TEST_F(LibraryTest, ATruncatedFileIsDamaged) {
  {
    Library library(file);
    library.store(kVoice, Bytes(20000, 1), "x");
  }
  std::filesystem::resize_file(file, 5000);
  const auto error = errorOfOpening(file);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::Damaged);
}

TEST_F(LibraryTest, ALockedLibraryIsNamedAfterTheBusyTimeout) {
  madeLibrary(file);
  Library library(file, {.busyTimeout = milliseconds(50)});
  PlainDatabase other(file);
  other("BEGIN IMMEDIATE");
  const auto error = errorOf([&] { library.store(kVoice, Bytes{1}, "x"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::Locked);
  EXPECT_THAT(error->what(), HasSubstr(file.string()));
  other("COMMIT");
  library.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(library.content(kVoice));
}

TEST_F(LibraryTest, ATimeThatSQLiteCannotCountIsWaitedToo) {
  madeLibrary(file);
  Library library(file, {.busyTimeout = milliseconds(std::int64_t{1} << 32)});
  PlainDatabase other(file);
  other("BEGIN IMMEDIATE");
  std::thread writer([&] { EXPECT_NO_THROW(library.store(kVoice, Bytes{1}, "x")); });
  std::this_thread::sleep_for(milliseconds(50));
  other("COMMIT");
  writer.join();
  EXPECT_TRUE(library.content(kVoice));
}

// As one has it for a moment that another program is creating.
TEST_F(LibraryTest, ALibraryWithoutItsLogWaitsForTheLockThatKeepsItFromOne) {
  madeLibrary(file);
  PlainDatabase other(file);
  other("PRAGMA journal_mode = DELETE; BEGIN IMMEDIATE");
  std::thread opener([this] { EXPECT_NO_THROW(Library library(file)); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  other("COMMIT");
  opener.join();
  EXPECT_EQ(PlainDatabase{file}("PRAGMA journal_mode"), "wal");
}

TEST_F(LibraryTest, ALibraryThatIsLockedForGoodCannotBeOpened) {
  madeLibrary(file);
  PlainDatabase other(file);
  other("PRAGMA locking_mode = EXCLUSIVE; BEGIN IMMEDIATE; CREATE TABLE t(a)");
  EXPECT_EQ(errorOfOpening(file)->kind(), Kind::Locked);
}

TEST_F(LibraryTest, ALockedLibraryCanStillBeOpenedAndRead) {
  {
    Library library(file);
    library.store(kVoice, Bytes{1}, "x");
  }
  PlainDatabase other(file);
  other("BEGIN IMMEDIATE");
  Library library(file, {.busyTimeout = milliseconds(50)});
  EXPECT_TRUE(library.content(kVoice));
}

// ---- Transactions and changes ---------------------------------------------------------------------------------------

TEST_F(LibraryTest, ATransactionIsSeenByOthersOnlyWhenCommitted) {
  Library writer(file);
  Library reader(file);
  Library::Transaction transaction(writer);
  writer.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(writer.content(kVoice));
  EXPECT_FALSE(reader.content(kVoice));
  transaction.commit();
  EXPECT_TRUE(reader.content(kVoice));
}

TEST_F(LibraryTest, ATransactionThatEndsByAnExceptionLeavesNothing) {
  Library library(file);
  library.store(kVoice, Bytes{1}, "before");
  library.setFavourite(kVoice, 1);
  library.takeChanges();
  const auto broken = [&] {
    Library::Transaction transaction(library);
    library.store(kVoice, Bytes{2}, "after");
    library.store(kMulti, Bytes{2}, "after");
    library.setFavourite(kVoice, 0);
    library.storeLive("system", Bytes{2});
    library.setMixingVoiceMaximum(1);
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(broken(), std::runtime_error);
  EXPECT_EQ(library.content(kVoice), (Content{"before", {1}}));
  EXPECT_FALSE(library.content(kMulti));
  EXPECT_EQ(library.favourite(kVoice), 1);
  EXPECT_FALSE(library.live("system"));
  EXPECT_EQ(library.mixingVoiceMaximum(), 2048);
  EXPECT_THAT(library.takeChanges(), IsEmpty());
}

TEST_F(LibraryTest, AnInnerTransactionJoinsTheOuterOne) {
  Library library(file);
  Library other(file);
  {
    Library::Transaction outer(library);
    {
      Library::Transaction inner(library);
      library.store(kVoice, Bytes{1}, "x");
      inner.commit();
    }
    EXPECT_FALSE(other.content(kVoice));
    EXPECT_THAT(library.takeChanges(), IsEmpty());
  }
  EXPECT_FALSE(library.content(kVoice));
}

TEST_F(LibraryTest, AnInnerTransactionTakesBackItsOwnPartOnly) {
  Library library(file);
  Library::Transaction outer(library);
  library.store(kVoice, Bytes{1}, "x");
  {
    Library::Transaction inner(library);
    library.store(kMulti, Bytes{1}, "x");
    {
      Library::Transaction innermost(library);
      library.remove(kVoice);
      innermost.commit();
    }
  }
  outer.commit();
  EXPECT_THAT(library.contents(), ElementsAre(kVoice));
  EXPECT_THAT(library.takeChanges(), ElementsAre(Change{What::stored, contentAt(kVoice)}));
}

TEST_F(LibraryTest, ATransactionIsCommittedOnceAndAfterThoseInsideIt) {
  Library library(file);
  std::optional<Library::Transaction> outer(library);
  std::optional<Library::Transaction> inner(library);
  EXPECT_THROW(outer->commit(), std::logic_error);
  inner->commit();
  EXPECT_THROW(inner->commit(), std::logic_error);
  library.store(kVoice, Bytes{1}, "x");
  inner.reset();
  outer->commit();
  EXPECT_TRUE(library.content(kVoice));
}

TEST_F(LibraryTest, AnOuterTransactionEndsThoseInsideIt) {
  Library library(file);
  std::optional<Library::Transaction> outer(library);
  std::optional<Library::Transaction> inner(library);
  library.store(kVoice, Bytes{1}, "x");
  outer.reset();
  EXPECT_THROW(inner->commit(), std::logic_error);
  std::optional<Library::Transaction> next(library);
  library.store(kMulti, Bytes{1}, "x");
  inner.reset();  // takes nothing back that is not its own
  next->commit();
  EXPECT_THAT(library.contents(), ElementsAre(kMulti));
  EXPECT_THAT(library.takeChanges(), ElementsAre(Change{What::stored, contentAt(kMulti)}));
}

// SQLite ends a whole transaction by itself on some errors; what follows must not be written alone.
TEST_F(LibraryTest, NothingIsWrittenInATransactionThatWasLost) {
  madeLibrary(file);
  Library library(file);
  {
    PlainDatabase{file}(
        "CREATE TRIGGER full BEFORE INSERT ON content WHEN new.number = 13 BEGIN "
        "SELECT RAISE(ROLLBACK, 'disk full'); END");
  }
  {
    Library::Transaction transaction(library);
    library.store({1, 1}, Bytes{1}, "first");
    EXPECT_EQ(errorOf([&] { library.store({1, 13}, Bytes{1}, "lost"); })->kind(), Kind::Failed);
    EXPECT_EQ(errorOf([&] { library.store({1, 2}, Bytes{1}, "after"); })->kind(), Kind::Failed);
    EXPECT_EQ(errorOf([&] { library.setFavourite({1, 2}, 1); })->kind(), Kind::Failed);
    EXPECT_EQ(errorOf([&] { library.storeLive("system", Bytes{1}); })->kind(), Kind::Failed);
    EXPECT_EQ(errorOf([&] { transaction.commit(); })->kind(), Kind::Failed);
  }
  EXPECT_THAT(library.contents(), IsEmpty());
  EXPECT_EQ(library.favourite({1, 2}), 0);
  EXPECT_FALSE(library.live("system"));
  library.store({1, 1}, Bytes{1}, "works again");
  EXPECT_TRUE(library.content({1, 1}));
}

TEST_F(LibraryTest, AReadTransactionHoldsOneState) {
  Library reader(file);
  Library writer(file);
  Library::Transaction snapshot(reader, Library::Transaction::Access::Read);
  EXPECT_THAT(reader.contents(), IsEmpty());
  writer.store(kVoice, Bytes{1}, "x");
  EXPECT_THAT(reader.contents(), IsEmpty());
  snapshot.commit();
  EXPECT_THAT(reader.contents(), ElementsAre(kVoice));
}

TEST_F(LibraryTest, ItsDataVersionTellsWhatOthersCommittedAndNothingElse) {
  Library library(madeLibrary(file));
  Library other(file);
  constexpr std::size_t kPages = 20;  // so many that the log begins anew several times
  for (std::uint8_t round = 1; round < 200; ++round) {
    const Library::Version before = library.dataVersion();
    library.store(kVoice, Bytes(kPages * 4096, round), "mine");
    ASSERT_EQ(library.dataVersion(), before);
    {
      const Library::Transaction takenBack(other);
      other.store(kMulti, Bytes(1, round), "not theirs");
    }
    ASSERT_EQ(library.dataVersion(), before);
    other.store(kMulti, Bytes(1, round), "theirs");
    ASSERT_NE(library.dataVersion(), before);
  }
}

TEST_F(LibraryTest, ItsDataVersionGoesOnWhenItIsMade) {
  Library library(file);
  const Library::Version before = library.dataVersion();
  library.store(kVoice, Bytes{1}, "x");
  ASSERT_FALSE(library.isYetEmpty());
  EXPECT_EQ(library.dataVersion(), before);
  Library(file).store(kMulti, Bytes{1}, "theirs");
  EXPECT_NE(library.dataVersion(), before);
}

TEST_F(LibraryTest, ItsDataVersionIsThatOfTheStateThatATransactionSees) {
  Library library(madeLibrary(file));
  Library other(file);
  const Library::Version before = library.dataVersion();
  {
    const Library::Transaction reading(library, Library::Transaction::Access::Read);
    EXPECT_EQ(library.dataVersion(), before);
    other.store(kVoice, Bytes{1}, "theirs");
    EXPECT_EQ(library.dataVersion(), before);
    EXPECT_FALSE(library.content(kVoice));
  }
  EXPECT_NE(library.dataVersion(), before);
}

TEST_F(LibraryTest, ListsCommittedChangesInOrder) {
  Library library(madeLibrary(file));
  library.store(kSameMixingVoice, Bytes{1}, "x");
  library.rename(kSameMixingVoice, "y");
  library.setFavourite(kSameMixingVoice, 1);
  library.setFavourite(kSameMixingVoice, 1);  // changes nothing
  library.remove(kSameMixingVoice);
  library.remove(kSameMixingVoice);  // changes nothing
  library.rename(kMulti, "nothing is there");
  library.storeLive("system", Bytes{1});
  EXPECT_THAT(library.takeChanges(),
              ElementsAre(Change{What::stored, contentAt(kBank15Voice)}, Change{What::renamed, contentAt(kBank15Voice)},
                          Change{What::flagged, favouriteAt(kBank15Voice)},
                          Change{What::removed, contentAt(kBank15Voice)}, Change{What::stored, liveAt("system")}));
  EXPECT_THAT(library.takeChanges(), IsEmpty());
  EXPECT_EQ(library.changeCount(), 5U);
}

// ---- Several at a time ----------------------------------------------------------------------------------------------

TEST_F(LibraryTest, WritersWaitForEachOther) {
  constexpr std::uint32_t kEach = 40;
  std::vector<std::thread> writers;
  std::atomic<int> failures = 0;
  for (std::uint32_t writer = 0; writer < 3; ++writer)
    writers.emplace_back([&, writer] {
      try {
        Library library(file);  // all at once: one of them creates it
        for (std::uint32_t i = 0; i < kEach; ++i) library.store({4, writer << 8 | i}, Bytes{std::uint8_t(i)}, "x");
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
        ++failures;
      }
    });
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Library(file).contents().size(), 3 * kEach);
  EXPECT_EQ(PlainDatabase{file}("PRAGMA integrity_check"), "ok");
}

TEST_F(LibraryTest, SeveralCanCreateItAtOnce) {
  for (int round = 0; round < 20; ++round) {
    const auto fresh = directory / ("library" + std::to_string(round)).c_str();
    std::atomic<int> waiting = 3;
    std::vector<std::thread> creators;
    for (std::uint32_t creator = 0; creator < 3; ++creator)
      creators.emplace_back([&, creator] {
        for (--waiting; waiting > 0;) std::this_thread::yield();
        EXPECT_NO_THROW(Library(fresh).store({1, creator}, Bytes{1}, "x"));
      });
    for (std::thread& creator : creators) creator.join();
    EXPECT_EQ(Library(fresh).contents().size(), 3U);
  }
}

// The last program to leave a file takes its log away. To open a second library must not cost the first its locks, or
// that would happen under its hands.
TEST_F(LibraryTest, ASecondOneInTheSameProcessDoesNotUndoTheLocksOfTheFirst) {
  std::array<int, 2> go{};
  ASSERT_EQ(::pipe(go.data()), 0);
  const pid_t child = ::fork();  // before SQLite knows the file: it would think the child's locks its own
  if (child == 0) {
    char byte = 0;
    const bool told = ::read(go[0], &byte, 1) == 1;
    if (told) Library(file).store(kMulti, Bytes{1}, "x");
    ::_exit(told ? 0 : 1);
  }
  Library first(file);
  first.store(kVoice, Bytes{1}, "x");
  first.store(kVoice, Bytes{2}, "x");  // the first one made the library, this one is in the log
  { Library second(file); }
  EXPECT_EQ(::write(go[1], "x", 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(std::filesystem::exists(file.string() + "-wal"));
  EXPECT_EQ(first.contents().size(), 2U);
  for (const int end : go) ::close(end);
}

// Transactions of 8 contents that all carry the number of their transaction, by a program that is killed at any moment.
// It tells each number when it has been committed.
TEST_F(LibraryTest, AKilledWriterLeavesWholeTransactionsAndAllThatItReported) {
#ifdef BDA_SAMPLED
  constexpr int kKills = 10;
#else
  constexpr int kKills = 200;
#endif
  constexpr std::uint32_t kContents = 8;
  std::uint8_t stored = 0;  // the number of the last transaction in the file
  int transactions = 0;
  int unreported = 0;
  int kills = 0;  // more of them where a busy machine leaves the program no time for a transaction
  for (; kills < kKills || (transactions <= kKills && kills < 10 * kKills); ++kills) {
    std::array<int, 2> reports{};
    ASSERT_EQ(::pipe(reports.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      Library library(file);
      for (std::uint8_t number = stored;;) {
        ++number;
        Library::Transaction transaction(library);
        for (std::uint32_t i = 0; i < kContents; ++i) library.store({1, i}, Bytes(3000, number), "x");
        transaction.commit();
        if (::write(reports[1], &number, 1) != 1) ::_exit(1);
      }
    }
    ::close(reports[1]);
    ::usleep(useconds_t(3000 + kills * 997 % 20000));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    std::uint8_t reported = stored;
    for (std::uint8_t number = 0; ::read(reports[0], &number, 1) == 1; ++transactions) reported = number;
    ::close(reports[0]);

    Library library(file);
    const std::vector<ContentId> ids = library.contents();
    ASSERT_TRUE(ids.size() == kContents || (ids.empty() && transactions == 0));
    if (ids.empty()) continue;
    for (const ContentId id : ids) ASSERT_EQ(library.content(id)->bytes, library.content({1, 0})->bytes);
    stored = library.content({1, 0})->bytes[0];
    ASSERT_TRUE(stored == reported || stored == std::uint8_t(reported + 1)) << "kill " << kills;
    unreported += stored == reported ? 0 : 1;
    ASSERT_EQ(PlainDatabase(file)("PRAGMA integrity_check"), "ok");
  }
  EXPECT_GT(transactions, kKills);
  std::cout << kills << " kills in " << transactions << " transactions, " << unreported
            << " of them committed but not reported\n";
}

}  // namespace
}  // namespace Editor
