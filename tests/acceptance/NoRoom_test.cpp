// Where a file cannot be made, or may not grow: libraries are read all the same, and nothing is left behind.

#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>

#include "Program.h"
#include "editor/contents/TemporaryLibrary.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// What is started meanwhile may write no file beyond that size.
class Limit {
 public:
  explicit Limit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;
  ~Limit() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

class NoRoom : public Program {
 protected:
  void ok(const std::vector<std::string>& words) { ASSERT_THAT(bda(words), Exits(0)) << testing::PrintToString(words); }
  std::vector<std::string> allFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
      names.push_back(std::filesystem::relative(entry.path(), directory).string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

constexpr rlim_t kNoSideFiles = 19 * 1024;  // SQLite's shared memory has 32 KiB

TEST_F(NoRoom, aLibraryIsReadAsItIsAndNothingIsLeft) {
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  ok({"receive", "-q", "voice.syx"});
  const std::vector<std::string> before = allFiles();
  for (const std::vector<std::string>& words : {std::vector<std::string>{"contents", "--lines"},
                                                {"check"},
                                                {"show", "voice:user1:6"},
                                                {"history"},
                                                {"backup", "-q", "-o", "-"},
                                                {"find", "A"}}) {
    const Result whole = bda(words);
    Result run;
    {
      const Limit limit(kNoSideFiles);
      run = bda(words);
    }
    EXPECT_THAT(run, Exits(0)) << words[0];
    EXPECT_EQ(run.out, whole.out) << words[0];
    EXPECT_EQ(allFiles(), before) << words[0];
  }
  const Limit limit(kNoSideFiles);
  const Result change = bda({"rename", "voice:user1:6", "Grand"});
  EXPECT_THAT(change, Exits(2));
  EXPECT_THAT(change.err, HasSubstr("the disk is full"));
}

TEST_F(NoRoom, aLogWithoutAByteIsNone) {
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  ok({"receive", "-q", "voice.syx"});
  write("library.db-wal", std::string());
  const Limit limit(kNoSideFiles);
  ok({"contents", "voice:user1:6"});
  EXPECT_FALSE(exists("library.db-wal"));
}

TEST_F(NoRoom, aFirstRunThatFailsLeavesNothing) {
  removeLibrary();
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  const std::vector<std::string> before = allFiles();
  for (const char* library : {"d.db", "a/b/d.db"}) {
    const Limit limit(20 * 1024);
    const Result run = bda({"--library", library, "receive", "voice.syx"});
    EXPECT_THAT(run, Exits(1)) << library;
    EXPECT_EQ(allFiles(), before) << library;
  }
}

TEST_F(NoRoom, whereNoLibraryCanBeMadeIsSaidBeforeAnythingIsDone) {
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  ok({"receive", "-q", "voice.syx"});
  write("voice.json", bda({"show", "voice:user1:6", "--json"}).out);
  const std::vector<std::string> before = allFiles();
  for (const char* library : {"nd/", "/proc/x.db", "/proc/a/x.db"})
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"receive", "voice.syx"},
          {"restore", "voice.syx"},
          {"apply", "voice:user1:6", "voice.json"},
          {"settings", "mixing-voices", "9"},
          {"copy", "voice:user1:6", "voice:user1:7", "--from-library", "library.db"}}) {
      std::vector<std::string> all{"--library", library};
      all.insert(all.end(), words.begin(), words.end());
      const Result run = bda(all);
      EXPECT_THAT(run, Exits(2)) << library << " " << words[0];
      EXPECT_THAT(run.out, IsEmpty()) << library << " " << words[0];
      EXPECT_THAT(run.err, AllOf(HasSubstr("cannot be opened"), Not(HasSubstr("first change")))) << words[0];
      EXPECT_EQ(allFiles(), before) << library << " " << words[0];
    }
}

TEST_F(NoRoom, anEmptyLibraryIsToldByCheck) {
  write("empty.db", std::string());
  const Result check = bda({"--library", "empty.db", "check"});
  EXPECT_THAT(check, Exits(0));
  EXPECT_THAT(check.err, HasSubstr("there is nothing in it yet"));
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"diff", "library.db", "empty.db"}, {"find", "--in", "empty.db"}})
    EXPECT_THAT(bda(words), Exits(2)) << "only a library that is named as one may be empty";
}

TEST_F(NoRoom, aChangeThatCannotBeToldIsSaidToBeMade) {
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  ok({"receive", "-q", "voice.syx"});
  const auto intoFull = [&](const std::string& words) {
    const std::string command = "cd '" + directory.string() + "' && BDA_LIBRARY=library.db '" BDA_PROGRAM "' " + words +
                                " >/dev/full 2>err; echo $? >code";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return Result{std::stoi(read("code")), "", read("err")};
  };
  for (const char* verb : {"copy --json voice:user1:6 voice:user1:7", "rename --json voice:user1:6 Grand",
                           "favourite --json voice:user1:6 on", "remove --json voice:user1:7", "undo --json",
                           "restore --json voice.syx"}) {
    const Result run = intoFull(verb);
    EXPECT_THAT(run, Exits(1)) << verb;
    EXPECT_THAT(run.err, HasSubstr("could not be written; the library is changed")) << verb;
  }
  const Result dry = intoFull("remove --dry-run voice:user1:6");
  EXPECT_THAT(dry, Exits(1));
  EXPECT_THAT(dry.err, Not(HasSubstr("is changed")));
}

}  // namespace
