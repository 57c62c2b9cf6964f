// find, for somebody who may not read all of a folder.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "CommandLine.h"
#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "program/Anybody.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string textOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST(Unreadable, whatIsSoInAFolderIsToldAndKeepsNobodyFromTheOthers) {
  const Editor::TemporaryDirectory directory;
  fs::permissions(directory.path(), fs::perms(0755));
  const fs::path dumps = directory / "dumps";
  fs::create_directories(dumps / "closed");
  for (const char* name : {"a.syx", "b.syx"}) {
    std::ofstream file(dumps / name, std::ios::binary);
    const auto add = [&](const Bytes& bytes) {
      file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    };
    add(dump({BDA::kHeaderHi, 0x0A, 0x10}));
    for (const Editor::BulkAddress address : blocksOf(BDA::List::normalVoice)) add(blockDump(address));
    add(dump({BDA::kFooterHi, 0x0A, 0x10}));
  }
  fs::permissions(dumps / "a.syx", fs::perms::none);
  fs::permissions(dumps / "closed", fs::perms::none);
  const int out = ::open((directory / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int err = ::open((directory / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int code = codeForAnybody([&] {
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    const std::string library = directory / "library.db";
    const std::string in = dumps;
    const char* const words[] = {"bda", "--library", library.c_str(), "find", "--in", in.c_str()};
    const int result = Editor::runProgram(int(std::size(words)), words);
    std::fflush(nullptr);
    return result;
  });
  ::close(out);
  ::close(err);
  fs::permissions(dumps / "closed", fs::perms::owner_all);
  EXPECT_EQ(code, 2);
  EXPECT_THAT(textOf(directory / "out"), HasSubstr("dumps/b.syx: voice:user1:17"));
  EXPECT_THAT(textOf(directory / "err"), HasSubstr("dumps/a.syx: Permission denied"));
  EXPECT_THAT(textOf(directory / "err"), HasSubstr("dumps/closed: Permission denied"));
}

}  // namespace
