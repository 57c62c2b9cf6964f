// Libraries of version 1: read as they are, and brought to this version by their first change.

#include "contents/LibraryCopy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "editor/contents/FaultyVfs.h"
#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Bytes = Library::Bytes;
using Kind = LibraryError::Kind;
using Use = Library::Use;
using Fault = FaultyVfs::Fault;

constexpr const char* kVersion = "PRAGMA user_version";

struct OldLibrary : LibraryTest {
  OldLibrary() {
    makeOldLibrary(file);
    old_ = bytesOfFile(file);
  }

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  std::filesystem::path copy() const { return file.string() + ".v1"; }

  static void expectAsItWas(Library& library) {
    EXPECT_THAT(library.contents(), ElementsAre(kVoice));
    EXPECT_EQ(library.content(kVoice), (Library::Content{"Piano", {1, 2, 3}}));
    EXPECT_EQ(library.favourite(kVoice), 1);
    EXPECT_EQ(library.live("nobody"), Bytes{9});
    EXPECT_EQ(library.mixingVoiceMaximum(), 7);
    EXPECT_TRUE(library.recordedEntries().empty());
  }

  std::string old_;
};

TEST_F(OldLibrary, AnImageOfItIsReadAsItIsAndBroughtToThisVersionThereAlone) {
  for (const Use use : {Use::read, Use::change}) {
    Library original(file, {.use = use});
    Library copy("copy", {.use = Use::memory});
    copy.copyFrom(original.image());
    expectAsItWas(copy);
    EXPECT_TRUE(copy.isOfOlderVersion());
    {
      const Library::Transaction takenBack(copy);
      copy.store(kMulti, Bytes{2}, "new");
    }
    expectAsItWas(copy);
    EXPECT_TRUE(copy.isOfOlderVersion());
    copy.store(kMulti, Bytes{2}, "new");
    EXPECT_FALSE(copy.isOfOlderVersion());
    EXPECT_THAT(copy.contents(), ElementsAre(kMulti, kVoice));
    EXPECT_EQ(copy.content(kVoice), (Library::Content{"Piano", {1, 2, 3}}));
  }
  EXPECT_EQ(bytesOfFile(file), old_);
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

TEST_F(OldLibrary, IsReadAsItIs) {
  for (const Use use : {Use::read, Use::change}) {
    Library library(file, {.use = use});
    expectAsItWas(library);
    const Library::Transaction reading(library, Library::Transaction::Access::Read);
    expectAsItWas(library);
  }
  EXPECT_EQ(bytesOfFile(file), old_);
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

TEST_F(OldLibrary, IsNotMigratedByATransactionThatChangesNothing) {
  {
    Library library(file);
    Library::Transaction(library).commit();
    Library::Transaction transaction(library);
    expectAsItWas(library);
  }
  EXPECT_EQ(bytesOfFile(file), old_);
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

TEST_F(OldLibrary, IsNotMigratedByWhatStoresWhatIsThereOrTakesBackAllThatItDid) {
  {
    Library library(file);
    library.store(kVoice, Bytes{1, 2, 3}, "Piano");
    EXPECT_TRUE(library.rename(kVoice, "Piano"));
    library.setFavourite(kVoice, 1);
    library.storeLive("nobody", Bytes{9});
    library.setMixingVoiceMaximum(7);
    EXPECT_FALSE(library.remove(kMulti));
    EXPECT_EQ(library.takeChanges().size(), 4U) << "what was stored, renamed and set, as whoever asked for it is told";
    Library::Transaction transaction(library);
    library.remove(kVoice);
    library.store(kVoice, Bytes{1, 2, 3}, "Piano");
    transaction.commit();
    EXPECT_EQ(library.takeChanges().size(), 2U);
    expectAsItWas(library);
  }
  EXPECT_EQ(bytesOfFile(file), old_);
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

TEST_F(OldLibrary, IsMigratedAfterAllByTheChangeThatComesNext) {
  Library library(file);
  {
    Library::Transaction transaction(library);
    library.remove(kVoice);
    library.store(kVoice, Bytes{1, 2, 3}, "Piano");
    transaction.commit();
  }
  library.set(Recorder::kEntries, 5);
  EXPECT_EQ(bytesOfFile(copy()), old_);
  library.store(kVoice, Bytes{4}, "Piano");
  EXPECT_EQ(library.recordedEntries().size(), 1U);
  EXPECT_EQ(library.number(Settings::kHistory), 5);
}

TEST_F(OldLibrary, IsMigratedByItsFirstChangeAndACopyOfEveryByteStaysBesideIt) {
  {
    Library library(file);
    library.store(kMulti, Bytes{4}, "new");
    EXPECT_TRUE(library.remove(kMulti));
    EXPECT_EQ(library.recordedEntries().size(), 1U);
    EXPECT_EQ(library.favourite(kVoice), 1);
    EXPECT_EQ(library.live("nobody"), Bytes{9});
    EXPECT_EQ(library.mixingVoiceMaximum(), 7);
  }
  EXPECT_EQ(PlainDatabase{file}(kVersion), "2");
  EXPECT_EQ(PlainDatabase{file}("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(PlainDatabase{file}("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), "6");
  EXPECT_EQ(bytesOfFile(copy()), old_);
  EXPECT_THAT(files(), ElementsAre("library.db", "library.db.v1"));
  Library again(copy(), {.use = Use::read});
  expectAsItWas(again);
}

TEST_F(OldLibrary, HasItsLogWrittenBackBeforeItIsCopied) {
  PlainDatabase living(file);
  living("PRAGMA wal_autocheckpoint = 0; INSERT INTO contents VALUES(1, 7, x'', x'05')");
  ASSERT_EQ(bytesOfFile(file), old_);
  Library library(file);
  library.remove(kVoice);
  std::filesystem::copy_file(copy(), directory / "alone.db");
  Library alone(directory / "alone.db", {.use = Use::read});
  EXPECT_THAT(alone.contents(), ElementsAre(kMulti, kVoice));
}

TEST_F(OldLibrary, StaysWhereAReaderKeepsTheLogFromBeingWrittenBack) {
  PlainDatabase writer(file);
  PlainDatabase reader(file);
  reader("BEGIN; SELECT count(*) FROM contents");
  writer("INSERT INTO contents VALUES(1, 7, x'', x'05')");
  Library library(file, {.busyTimeout = std::chrono::milliseconds(30)});
  EXPECT_EQ(errorOf([&] { library.remove(kVoice); })->kind(), Kind::Locked);
  EXPECT_EQ(writer(kVersion), "1");
  EXPECT_FALSE(std::filesystem::exists(copy()));
  EXPECT_TRUE(library.content(kVoice));
  reader("COMMIT");
  EXPECT_TRUE(library.remove(kVoice));
  EXPECT_EQ(writer(kVersion), "2");
}

TEST_F(OldLibrary, OverwritesNoCopy) {
  writeFile(copy(), "mine");
  writeFile(copy().string() + ".2", "mine too");
  Library(file).remove(kVoice);
  EXPECT_EQ(bytesOfFile(copy()), "mine");
  EXPECT_EQ(bytesOfFile(copy().string() + ".2"), "mine too");
  EXPECT_EQ(bytesOfFile(copy().string() + ".3"), old_);
}

TEST_F(OldLibrary, OverwritesNothingThatHasTheNameOfHalfACopy) {
  const std::string part = copy().string() + ".part";
  writeFile(part, "mine");
  Library(file).remove(kVoice);
  EXPECT_EQ(bytesOfFile(part), "mine");
  EXPECT_EQ(bytesOfFile(copy()), old_);
  EXPECT_THAT(files(), ElementsAre("library.db", "library.db.v1", "library.db.v1.part"));
}

TEST_F(OldLibrary, HasItsCopyBesideItWhenALinkIsNamed) {
  std::filesystem::create_directory(directory / "links");
  const std::filesystem::path link = directory / "links/z.db";
  std::filesystem::create_symlink(file, link);
  Library(link).remove(kVoice);
  EXPECT_EQ(bytesOfFile(copy()), old_);
  EXPECT_FALSE(std::filesystem::exists(link.string() + ".v1"));
}

TEST_F(OldLibrary, KeepsItsPermissionsInTheCopy) {
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  Library(file).remove(kVoice);
  EXPECT_EQ(std::filesystem::status(copy()).permissions(), std::filesystem::status(file).permissions());
}

TEST_F(OldLibrary, StaysWithoutACopyWhenTheChangeIsTakenBack) {
  Library library(file);
  {
    const Library::Transaction takenBack(library);
    library.remove(kVoice);
    EXPECT_FALSE(library.content(kVoice));
  }
  expectAsItWas(library);
  EXPECT_EQ(PlainDatabase{file}(kVersion), "1");
  EXPECT_FALSE(std::filesystem::exists(copy()));
  {
    Library::Transaction transaction(library);
    {
      const Library::Transaction inner(library);
      library.remove(kVoice);
    }
    expectAsItWas(library);
    library.store(kMulti, Bytes{1}, "x");
    transaction.commit();
  }
  EXPECT_TRUE(library.content(kVoice));
  EXPECT_EQ(bytesOfFile(copy()), old_);
  EXPECT_EQ(PlainDatabase{file}(kVersion), "2");
}

TEST_F(OldLibrary, IsFollowedByWhoeverHasItOpen) {
  Library reader(file, {.use = Use::read});
  Library writer(file);
  expectAsItWas(reader);
  expectAsItWas(writer);
  Library(file).store(kMulti, Bytes{1}, "x");
  EXPECT_THAT(reader.contents(), ElementsAre(kMulti, kVoice));
  EXPECT_TRUE(writer.remove(kVoice));
  EXPECT_THAT(reader.contents(), ElementsAre(kMulti));
  EXPECT_EQ(writer.recordedEntries().size(), 2U);
}

TEST_F(OldLibrary, FailsItsOwnProgramOnceItIsMigrated) {
  PlainDatabase program(file);
  EXPECT_EQ(program("SELECT count(*) FROM contents"), "1");
  Library(file).remove(kVoice);
  for (const char* const statement :
       {"INSERT INTO contents VALUES(1, 7, x'', x'05')", "DELETE FROM favourites", "INSERT INTO live VALUES('a', x'')",
        "INSERT INTO settings VALUES('a', 1)", "SELECT count(*) FROM contents"})
    EXPECT_ANY_THROW(program(statement)) << statement;
}

TEST_F(OldLibrary, IsNotWrittenOnceItIsOfANewerVersion) {
  Library library(file);
  PlainDatabase{file}("PRAGMA user_version = 3");
  EXPECT_EQ(errorOf([&] { library.remove(kVoice); })->kind(), Kind::NewerVersion);
  PlainDatabase{file}("PRAGMA user_version = 1");
  EXPECT_TRUE(library.remove(kVoice));
}

// ---- On a disk that fails -------------------------------------------------------------------------------------------

// Version 1 as it was or version 2 with the change, and then with a copy.
void expectWhole(const std::filesystem::path& file, const std::filesystem::path& copy, const std::string& old,
                 const std::string& when) {
  ASSERT_EQ(PlainDatabase{file}("PRAGMA integrity_check"), "ok") << when;
  const std::string version = PlainDatabase{file}(kVersion);
  Library library(file, {.use = Use::read});
  ASSERT_EQ(library.favourite(kVoice), 1) << when;
  ASSERT_EQ(library.live("nobody"), Bytes{9}) << when;
  if (version == "1") {
    ASSERT_EQ(library.content(kVoice)->name, "Piano") << when;
  } else {
    ASSERT_EQ(version, "2") << when;
    ASSERT_EQ(library.content(kVoice)->name, "Grand") << when;
    ASSERT_EQ(bytesOfFile(copy), old) << when;
  }
}

int operationsOfAMigration() {
  TemporaryDirectory directory;
  makeOldLibrary(directory / "library.db");
  FaultyVfs vfs;
  {
    Library library(directory / "library.db", {.vfs = FaultyVfs::kName});
    library.rename(kVoice, "Grand");
  }
  return vfs.operations();
}

struct MigrationFault : ::testing::TestWithParam<Fault> {};

TEST_P(MigrationFault, AtAnyOperationLeavesOneVersionWhole) {
  const int operations = operationsOfAMigration();
  ASSERT_GT(operations, 10);
  int failures = 0;
  for (int n = 1; n <= operations; ++n) {
    TemporaryDirectory directory;
    const auto file = directory / "library.db";
    makeOldLibrary(file);
    const std::string old = bytesOfFile(file);
    FaultyVfs vfs;
    {
      vfs.arm(GetParam(), n);
      try {
        Library library(file, {.vfs = FaultyVfs::kName});
        library.rename(kVoice, "Grand");
      } catch (const LibraryError&) {
        ++failures;
      }
      vfs.disarm();
    }
    const std::string when = "operation " + std::to_string(n);
    ASSERT_FALSE(std::filesystem::exists(file.string() + ".v1.part")) << when;
    expectWhole(file, file.string() + ".v1", old, when);
    Library(file).rename(kVoice, "works again");
  }
  std::cout << operations << " faults, " << failures << " reported\n";
  EXPECT_GT(failures, 5);
}

INSTANTIATE_TEST_SUITE_P(Disk, MigrationFault, ::testing::Values(Fault::IoError, Fault::DiskFull),
                         [](const auto& tested) { return tested.param == Fault::IoError ? "IoError" : "DiskFull"; });

TEST(MigrationPowerCut, AtAnyOperationLeavesOneVersionWholeAndItsCopyOnDisk) {
  const int operations = operationsOfAMigration();
  int migrated = 0;
  for (int cut = 1; cut <= operations + 1; ++cut) {
    TemporaryDirectory directory;
    const auto file = directory / "library.db";
    makeOldLibrary(file);
    const std::string old = bytesOfFile(file);
    FaultyVfs vfs;
    vfs.adopt(file);
    vfs.arm(Fault::PowerCut, cut);
    try {
      Library library(file, {.vfs = FaultyVfs::kName});
      library.rename(kVoice, "Grand");
    } catch (const LibraryError&) {
      // What it leaves is looked at.
    }
    for (unsigned seed = 0; seed < 3; ++seed) {
      TemporaryDirectory afterwards;
      vfs.leaveFiles(afterwards.path(), seed);
      // Its name was changed behind the file system's back.
      expectWhole(afterwards / "library.db", afterwards / "library.db.v1.part", old,
                  "cut at operation " + std::to_string(cut));
      migrated += PlainDatabase{afterwards / "library.db"}(kVersion) == "2" ? 1 : 0;
    }
  }
  EXPECT_GT(migrated, 0);
  EXPECT_LT(migrated, 3 * operations);
}

TEST_F(OldLibrary, IsWholeInOneVersionWhenItsMigratorIsKilled) {
#ifdef BDA_SAMPLED
  constexpr int kKills = 30;
#else
  constexpr int kKills = 300;
#endif
  int migrated = 0;
  for (int i = 0; i < kKills; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) std::filesystem::remove(entry);
    writeFile(file, old_);
    const pid_t child = ::fork();
    if (child == 0) {
      Library(file).rename(kVoice, "Grand");
      ::_exit(0);
    }
    ::usleep(useconds_t(i * 997 % 25000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    expectWhole(file, copy(), old_, "kill " + std::to_string(i));
    migrated += PlainDatabase{file}(kVersion) == "2" ? 1 : 0;
  }
  std::cout << kKills << " kills, " << migrated << " of them migrated\n";
}

}  // namespace
}  // namespace Editor
