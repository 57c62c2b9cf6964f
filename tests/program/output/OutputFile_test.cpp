#include "output/OutputFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ExitCode.h"

using Editor::OutputFile;
using testing::HasSubstr;

namespace {

class OutputFileTest : public testing::Test {
 protected:
  OutputFileTest() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-output-XXXXXX").string();
    directory_ = ::mkdtemp(name.data());
  }
  ~OutputFileTest() override { std::filesystem::remove_all(directory_); }

  std::string path(const char* name) const { return (directory_ / name).string(); }
  std::string read(const char* name) const {
    std::ifstream stream(directory_ / name, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
  }
  void write(const char* name, const char* text) const { std::ofstream(directory_ / name) << text; }
  std::ptrdiff_t count() const {
    return std::distance(std::filesystem::directory_iterator(directory_), std::filesystem::directory_iterator());
  }

 private:
  std::filesystem::path directory_;
};

}  // namespace

TEST_F(OutputFileTest, isThereWhenItIsCommittedAndNotBefore) {
  OutputFile file(path("a"));
  file.write(std::string("whole"));
  EXPECT_FALSE(std::filesystem::exists(path("a")));
  file.commit();
  EXPECT_EQ(read("a"), "whole");
  EXPECT_EQ(count(), 1);
}

TEST_F(OutputFileTest, leavesNothingBehindWithoutCommit) {
  write("a", "before");
  {
    OutputFile file(path("a"));
    file.write(std::string(1 << 20, 'x'));
  }
  EXPECT_EQ(read("a"), "before");
  EXPECT_EQ(count(), 1);
}

TEST_F(OutputFileTest, keepsTheModeOfTheFileThatItReplaces) {
  write("a", "before");
  ::chmod(path("a").c_str(), 0640);
  OutputFile file(path("a"));
  file.commit();
  struct stat status {};
  ASSERT_EQ(::stat(path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0640u);
  EXPECT_EQ(read("a"), "");
}

TEST_F(OutputFileTest, replacesWhatALinkNames) {
  write("a", "before");
  std::filesystem::create_symlink("a", path("link"));
  OutputFile file(path("link"));
  file.write(std::string("after"));
  file.commit();
  EXPECT_EQ(read("a"), "after");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
}

TEST_F(OutputFileTest, writesWhatALinkToNothingNames) {
  std::filesystem::create_directory(path("d"));
  std::filesystem::create_symlink("b", path("d/inner"));
  std::filesystem::create_symlink("d/inner", path("link"));
  OutputFile file(path("link"));
  file.write(std::string("new"));
  file.commit();
  EXPECT_EQ(read("d/b"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_TRUE(std::filesystem::is_symlink(path("d/inner")));
}

TEST_F(OutputFileTest, writesNothingTwiceAfterAFailure) {
  std::string bytes;
  for (int i = 0; i < 1000; ++i) bytes += std::to_string(i) + ' ';
  OutputFile file(path("a"));
  file.write(bytes);
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{1000, limit.rlim_max};  // a part is written, then no more
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string why;
  try {
    file.commit();
  } catch (const Editor::Failure& failure) {
    why = failure.what();
  }
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  std::signal(SIGXFSZ, previous);
  EXPECT_THAT(why, HasSubstr("cannot write it: File too large"));
  file.commit();
  EXPECT_EQ(read("a"), bytes);
}

TEST_F(OutputFileTest, aDeviceIsWrittenInPlace) {
  OutputFile file("/dev/null");
  file.write(std::string("gone"));
  file.commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, whatStandsThereStaysWhereThatIsAskedFor) {
  OutputFile file(path("a"), OutputFile::Existing::stays);
  file.write(std::string("new"));
  write("a", "came meanwhile");
  EXPECT_FALSE(file.commit());
  EXPECT_EQ(read("a"), "came meanwhile");
  std::filesystem::create_symlink(path("none"), path("link"));
  OutputFile link(path("link"), OutputFile::Existing::stays);
  EXPECT_FALSE(link.commit());
  OutputFile free(path("b"), OutputFile::Existing::stays);
  free.write(std::string("new"));
  EXPECT_TRUE(free.commit());
  EXPECT_EQ(read("b"), "new");
}

TEST_F(OutputFileTest, whatCouldNotTakeItsPlaceLeavesNothingBehind) {
  write("a", "before");
  { EXPECT_FALSE(OutputFile(path("a"), OutputFile::Existing::stays).commit()); }
  EXPECT_EQ(count(), 1);
}

TEST_F(OutputFileTest, saysWhyItCannotBeWritten) {
  const auto whyNot = [&](const std::string& name) -> std::string {
    try {
      OutputFile file(name);
      file.write(std::string("x"));
      file.commit();
    } catch (const Editor::Failure& failure) {
      EXPECT_EQ(failure.code(), Editor::kWrongUsage);
      return failure.what();
    }
    return "written";
  };
  EXPECT_THAT(whyNot(path("none/a")), HasSubstr("none/a: cannot create it: No such file or directory"));
  EXPECT_THAT(whyNot(path(".")), HasSubstr("cannot open it: Is a directory"));
  EXPECT_THAT(whyNot("/dev/full"), HasSubstr("/dev/full: cannot write it: No space left on device"));
}
