#include "input/Sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "ExitCode.h"
#include "contents/Library.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SourcesTest : testing::Test {
  std::string path(const char* name) const { return (directory / name).string(); }
  std::string makeFile(const char* name, const std::string& bytes = "x") const {
    writeFile(directory / name, bytes);
    return path(name);
  }
  std::vector<std::string> pathsOf(const Sources& sources) const {
    std::vector<std::string> paths;
    for (const Source& source : sources.list) paths.push_back(source.path);
    return paths;
  }

  const TemporaryDirectory directory;
};

TEST_F(SourcesTest, thoseOfAFolderComeByNameAndWithTheWayIntoIt) {
  std::filesystem::create_directories(directory / "folder/b");
  makeFile("folder/c", "xx");
  makeFile("folder/a");
  makeFile("folder/b/z");
  const Sources sources = findSources({path("folder")});
  EXPECT_THAT(pathsOf(sources), ElementsAre(path("folder/a"), path("folder/b/z"), path("folder/c")));
  EXPECT_FALSE(sources.list[0].isNamed);
  EXPECT_FALSE(sources.list[0].isLibrary);
  EXPECT_EQ(sources.list[2].size, 2u);
  EXPECT_EQ(sources.ofOtherKinds, 0u);
  EXPECT_THAT(sources.problems, IsEmpty());
}

TEST_F(SourcesTest, aLibraryIsKnownByItsContentAndItsLogIsPartOfIt) {
  madeLibrary(directory / "library.db");
  makeFile("library.db-wal");
  makeFile("library.db-shm");
  makeFile("other-wal");
  const Sources sources = findSources({directory.path().string()});
  EXPECT_THAT(pathsOf(sources), ElementsAre(path("library.db"), path("other-wal")));
  EXPECT_TRUE(sources.list[0].isLibrary);
  EXPECT_FALSE(sources.list[1].isLibrary);
}

TEST_F(SourcesTest, anotherDatabaseIsALibraryOnlyWhenItIsNamed) {
  const std::string file = makeFile("other.db", std::string("SQLite format 3\0", 16) + std::string(100, 0));
  EXPECT_TRUE(findSources({file}).list.at(0).isLibrary);
  const Sources sources = findSources({directory.path().string()});
  EXPECT_THAT(sources.list, IsEmpty());
  EXPECT_EQ(sources.ofOtherKinds, 1u);
}

TEST_F(SourcesTest, aPipeInAFolderIsNotOpened) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const Sources sources = findSources({directory.path().string()});
  EXPECT_THAT(sources.list, IsEmpty());
  EXPECT_EQ(sources.ofOtherKinds, 1u);
}

TEST_F(SourcesTest, whatIsNamedHasToExist) {
  try {
    findSources({path("none")});
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), kUnusableInput);
  }
}

}  // namespace
}  // namespace Editor
