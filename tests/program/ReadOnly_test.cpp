// A library that its user may read and not write: what only rehearses a change works there like what only reads.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandLine.h"
#include "editor/contents/TemporaryLibrary.h"
#include "program/Anybody.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(ReadOnly, everyChangeIsRehearsedThere) {
  const Editor::TemporaryDirectory directory;
  const fs::path library = directory / "library.db";
  Editor::Library(library).setMixingVoiceMaximum(7);
  fs::permissions(library, fs::perms(0444));
  fs::permissions(directory.path(), fs::perms(0555));
  const fs::path output = fs::path(directory.path()) += ".out";
  const int out = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const auto run = [&](const std::vector<const char*>& words) {
    return codeForAnybody([&] {
      ::dup2(out, STDOUT_FILENO);
      std::vector<const char*> all{"bda", "--library", library.c_str()};
      all.insert(all.end(), words.begin(), words.end());
      const int code = Editor::runProgram(int(all.size()), all.data());
      std::fflush(nullptr);
      return code;
    });
  };
  EXPECT_EQ(run({"history"}), 0);
  EXPECT_EQ(run({"settings", "mixing-voices", "5", "--dry-run"}), 0);
  EXPECT_EQ(run({"undo", "--dry-run"}), 0);
  EXPECT_EQ(run({"undo"}), 2);
  ::close(out);
  const std::string told = Editor::bytesOfFile(output);
  EXPECT_THAT(told, HasSubstr("would set: mixing-voices: 5, was 7\n"));
  EXPECT_THAT(told, HasSubstr("would set: mixing-voices: 2048, was 7\n"));
  fs::permissions(directory.path(), fs::perms::owner_all);
  fs::remove(output);
}

}  // namespace
