#include "contents/LibraryFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Bytes = Library::Bytes;
using Kind = LibraryError::Kind;
using Access = Library::Transaction::Access;
using Use = Library::Use;

struct LibraryFileTest : LibraryTest {
  ~LibraryFileTest() override { allow(0700, 0600); }  // or it would stay

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  // A library with one voice.
  void store() { Library(file).store(kVoice, Bytes{1, 2, 3}, "Piano"); }

  // Runs it as somebody whom permissions hold back, in a process of his own; whether it returned true.
  static bool asAnybody(const std::function<bool()>& operation) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
      if (::geteuid() == 0 && ::setuid(kNobody) != 0) ::_exit(2);
      bool isTrue = false;
      try {
        isTrue = operation();
      } catch (const std::exception&) {
      }
      ::_exit(isTrue ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  void allow(mode_t directoryMode, mode_t fileMode) {
    ::chmod(directory.path().c_str(), directoryMode);
    ::chmod(file.c_str(), fileMode);
  }
  bool canBeReadByAnybody() {
    return asAnybody([&] {
      Library library(file, {.use = Use::read});
      return library.content(kVoice) == Library::Content{"Piano", {1, 2, 3}};
    });
  }
};

// ---- Made by the first change ---------------------------------------------------------------------------------------

TEST_F(LibraryFileTest, NothingIsMadeWithoutAChange) {
  const auto deep = directory / "a/b/library.db";
  {
    Library library(deep);
    EXPECT_THAT(library.contents(), IsEmpty());
    { const Library::Transaction reading(library, Access::Read); }
    Library::Transaction(library).commit();
    EXPECT_FALSE(library.remove(kVoice));
    Library::Transaction takenBack(library);
    library.store(kVoice, Bytes{1}, "x");
  }
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(LibraryFileTest, TheFirstChangeMakesOneWithAllThatItsTransactionHolds) {
  Library library(file);
  Library::Transaction transaction(library);
  library.store(kVoice, Bytes{0, 1, 0xFF}, std::string("a\0b", 3));
  library.store(kMulti, Bytes{}, "");
  library.setFavourite(kVoice, 0x80);
  library.storeLive("system", Bytes{9});
  library.set("mixing-voices", 7);
  EXPECT_THAT(files(), IsEmpty());
  transaction.commit();
  EXPECT_EQ(library.takeChanges().size(), 5U);
  Library other(file);
  for (Library* const one : {&library, &other}) {
    EXPECT_THAT(one->contents(), ElementsAre(kMulti, kVoice));
    EXPECT_EQ(one->content(kVoice), (Library::Content{std::string("a\0b", 3), {0, 1, 0xFF}}));
    EXPECT_EQ(one->content(kMulti), (Library::Content{"", {}}));
    EXPECT_EQ(one->favourite(kVoice), 0x80);
    EXPECT_EQ(one->live("system"), Bytes{9});
    EXPECT_EQ(one->mixingVoiceMaximum(), 7);
  }
}

TEST_F(LibraryFileTest, WhatSomebodyElseHasMadeMeanwhileIsUsed) {
  Library first(file);
  Library second(file);
  EXPECT_THAT(second.contents(), IsEmpty());
  const Library::Version before = second.dataVersion();
  first.store(kVoice, Bytes{1}, "first");
  EXPECT_NE(second.dataVersion(), before);
  EXPECT_THAT(second.contents(), ElementsAre(kVoice));
  Library third(file, {.busyTimeout = std::chrono::milliseconds(20)});
  Library::Transaction transaction(second);
  second.store(kMulti, Bytes{2}, "second");
  transaction.commit();
  EXPECT_THAT(third.contents(), ElementsAre(kMulti, kVoice));
}

TEST_F(LibraryFileTest, OnlyOneMakesItAtATime) {
  Library first(file);
  Library second(file, {.busyTimeout = std::chrono::milliseconds(20)});
  Library::Transaction making(first);
  first.store(kVoice, Bytes{1}, "first");
  EXPECT_EQ(errorOf([&] { second.store(kMulti, Bytes{2}, "second"); })->kind(), Kind::Locked);
  making.commit();
  second.store(kMulti, Bytes{2}, "second");
  EXPECT_THAT(first.contents(), ElementsAre(kMulti, kVoice));
}

TEST_F(LibraryFileTest, AMakerThatGivesUpLetsTheNextOneMakeIt) {
  Library first(file);
  Library second(file, {.busyTimeout = std::chrono::milliseconds(20)});
  { const Library::Transaction givenUp(first); }
  second.store(kMulti, Bytes{2}, "second");
  EXPECT_THAT(first.contents(), ElementsAre(kMulti));
}

// Each finds other directories than the one before, in the midst of their making.
TEST_F(LibraryFileTest, SeveralMakeOneInDirectoriesThatDoNotExistEither) {
  constexpr std::uint32_t kMakers = 6;
  for (int round = 0; round < 20; ++round) {
    const auto fresh = directory / ("r" + std::to_string(round) + "/a/b/library.db").c_str();
    std::vector<pid_t> makers;
    for (std::uint32_t maker = 0; maker < kMakers; ++maker) {
      const pid_t child = ::fork();
      if (child == 0) {
        try {
          Library library(fresh);
          Library::Transaction transaction(library);
          library.store({1, maker}, Bytes{1}, "x");
          transaction.commit();
          ::_exit(0);
        } catch (const std::exception&) {
          ::_exit(1);
        }
      }
      makers.push_back(child);
    }
    for (const pid_t maker : makers) {
      int status = 0;
      ::waitpid(maker, &status, 0);
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_EQ(Library(fresh, {.use = Use::read}).contents().size(), kMakers);
  }
}

// What is written into a file that nobody will find is lost.
TEST_F(LibraryFileTest, ALibraryThatIsRemovedMeanwhileFails) {
  store();
  Library library(file);
  library.store(kVoice, Bytes{1}, "x");
  for (const char* const ending : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + ending);
  const auto error = errorOf([&] { library.store(kMulti, Bytes{1}, "x"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::Failed);
  EXPECT_THAT(error->what(), HasSubstr("somebody has removed or renamed it"));
}

TEST_F(LibraryFileTest, AFileThatMustNotBeWrittenIsToldAtOnce) {
  store();
  allow(0777, 0444);
  EXPECT_TRUE(asAnybody([&] { return errorOfOpening(file)->kind() == Kind::CannotOpen; }));
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

// Not by a program of ours, which would wait.
TEST_F(LibraryFileTest, WhatAForeignProgramPutsThereMeanwhileIsNotOverwritten) {
  Library library(file);
  Library::Transaction transaction(library);
  library.store(kVoice, Bytes{1}, "x");
  PlainDatabase{file}("CREATE TABLE t(a)");
  const std::string before = bytesOfFile(file);
  EXPECT_EQ(errorOf([&] { transaction.commit(); })->kind(), Kind::Locked);
  EXPECT_EQ(bytesOfFile(file), before);
}

TEST_F(LibraryFileTest, APlaceWithoutRoomIsToldAtOnce) {
  allow(0555, 0);
  EXPECT_TRUE(asAnybody([&] { return errorOfOpening(directory / "a/library.db")->kind() == Kind::CannotOpen; }));
  allow(0777, 0);
  EXPECT_TRUE(asAnybody([&] { return !errorOfOpening(directory / "a/library.db"); }));
}

// ---- Reading --------------------------------------------------------------------------------------------------------

TEST_F(LibraryFileTest, AReaderMakesNoneAndChangesNoByte) {
  const auto error = errorOf([&] { Library library(file, {.use = Use::read}); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), Kind::CannotOpen);
  EXPECT_THAT(error->what(), HasSubstr("there is no such library"));
  EXPECT_THAT(files(), IsEmpty());

  writeFile(file, "");
  EXPECT_THAT(Library(file, {.use = Use::read}).contents(), IsEmpty());
  EXPECT_EQ(bytesOfFile(file), "");

  std::filesystem::remove(file);
  store();
  const std::string before = bytesOfFile(file);
  EXPECT_THAT(Library(file, {.use = Use::read}).contents(), ElementsAre(kVoice));
  EXPECT_EQ(bytesOfFile(file), before);
  EXPECT_THAT(files(), ElementsAre("library.db"));
}

TEST_F(LibraryFileTest, APlaceThatCannotBeWrittenIsReadAllTheSame) {
  store();
  for (const auto& [directoryMode, fileMode] : {std::pair<mode_t, mode_t>{0555, 0444}, {0555, 0666}, {0777, 0444}}) {
    allow(directoryMode, fileMode);
    EXPECT_TRUE(canBeReadByAnybody()) << directoryMode << " " << fileMode;
    EXPECT_THAT(files(), ElementsAre("library.db"));
  }
  const auto odd = directory / "100%25 of #1? a.db";
  allow(0777, 0444);
  std::filesystem::rename(file, odd);
  file = odd;
  EXPECT_TRUE(canBeReadByAnybody());
}

// Who cannot read the log would not see what was stored last.
TEST_F(LibraryFileTest, ALogBesideItIsNotOverlooked) {
  // Written by a process that ends without closing it: this one would know the log from there.
  const pid_t child = ::fork();
  if (child == 0) {
    Library writer(madeLibrary(file));
    writer.store(kVoice, Bytes{1, 2, 3}, "Piano");
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  ASSERT_TRUE(std::filesystem::exists(file.string() + "-wal"));
  std::filesystem::remove(file.string() + "-shm");
  allow(0555, 0444);
  EXPECT_TRUE(asAnybody([&] {
    const auto error = errorOf([&] { Library library(file, {.use = Use::read}); });
    return std::string(error->what()).find("only a writer can read") != std::string::npos;
  }));
}

// ---- In memory ------------------------------------------------------------------------------------------------------

TEST_F(LibraryFileTest, OneInMemoryHasNoFile) {
  Library library(file, {.use = Use::memory});
  library.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(library.content(kVoice));
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(LibraryFileTest, ACopyInMemoryHoldsWhatItsTransactionSees) {
  Library original(file);
  original.store(kVoice, Bytes{1}, "x");
  original.setFavourite(kVoice, 1);
  original.storeLive("system", Bytes{9});
  const Library::Transaction oneState(original, Access::Read);
  EXPECT_TRUE(original.content(kVoice));
  Library(file).store(kMulti, Bytes{2}, "later");
  Library copy(file, {.use = Use::memory});
  copy.copyFrom(original);
  EXPECT_THAT(copy.contents(), ElementsAre(kVoice));
  EXPECT_EQ(copy.favourite(kVoice), 1);
  EXPECT_EQ(copy.live("system"), Bytes{9});
}

TEST_F(LibraryFileTest, ItsImageHoldsWhatItsTransactionSees) {
  Library original(file);
  original.store(kVoice, Bytes{1}, "x");
  original.setFavourite(kVoice, 1);
  const Library::Transaction oneState(original, Access::Read);
  EXPECT_TRUE(original.content(kVoice));
  Library(file).store(kMulti, Bytes{2}, "later");
  const Bytes image = original.image();
  Library copy("copy", {.use = Use::memory});
  copy.copyFrom(image);
  EXPECT_THAT(copy.contents(), ElementsAre(kVoice));
  EXPECT_EQ(copy.favourite(kVoice), 1);
  copy.store(kMulti, Bytes{3}, "there");
  EXPECT_EQ(Library(file).content(kMulti), (Library::Content{"later", Bytes{2}}));
}

TEST_F(LibraryFileTest, ALibraryThatIsNotMadeYetHasAnImage) {
  Library original(file);
  Library copy("copy", {.use = Use::memory});
  copy.copyFrom(original.image());
  EXPECT_THAT(copy.contents(), IsEmpty());
  copy.store(kVoice, Bytes{1}, "x");
  EXPECT_TRUE(copy.content(kVoice));
}

TEST_F(LibraryFileTest, WhatIsNoImageIsRefused) {
  Library original(file);
  original.store(kVoice, Bytes{1}, "x");
  const Bytes image = original.image();
  const auto errorOf = [](const Bytes& bytes) {
    Library copy("copy", {.use = Use::memory});
    try {
      copy.copyFrom(bytes);
    } catch (const LibraryError& error) {
      EXPECT_THAT(error.what(), HasSubstr("/copy"));
      EXPECT_THAT(error.reason(), Not(HasSubstr("copy"))) << "it stands for another one";
      return std::optional(error.kind());
    }
    return std::optional<Kind>();
  };
  EXPECT_EQ(errorOf(image), std::nullopt);
  EXPECT_EQ(errorOf({}), Kind::NotALibrary);
  EXPECT_EQ(errorOf(Bytes(5000, 7)), Kind::NotALibrary);
  EXPECT_TRUE(errorOf(Bytes(image.begin(), image.begin() + 50)));
  Bytes newer = image;
  newer[63] = 99;
  EXPECT_EQ(errorOf(newer), Kind::NewerVersion);
  Bytes foreign = image;
  foreign[68] = 0;
  EXPECT_EQ(errorOf(foreign), Kind::NotALibrary);
}

TEST_F(LibraryFileTest, ACopyInMemoryOfVersion1IsBroughtToThisOneThereAlone) {
  makeOldLibrary(file);
  const std::string before = bytesOfFile(file);
  Library original(file, {.use = Use::read});
  Library copy(file, {.use = Use::memory});
  copy.copyFrom(original);
  EXPECT_TRUE(copy.isOfOlderVersion());
  copy.store(kMulti, Bytes{2}, "new");
  EXPECT_FALSE(copy.isOfOlderVersion());
  EXPECT_THAT(copy.contents(), ElementsAre(kMulti, kVoice));
  EXPECT_EQ(bytesOfFile(file), before);
}

}  // namespace
}  // namespace Editor
