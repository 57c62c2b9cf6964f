// What cannot be written: an output, or the library itself.

#include <sqlite3.h>

#include <cstdlib>

#include "Library.h"
#include "Program.h"

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Output : public Program {
 protected:
  // The exit code of the program, whose standard output goes elsewhere.
  std::string codeInto(const std::string& arguments, const std::string& where) {
    const std::string command = "cd " + directory.string() + " && { BDA_LIBRARY=library.db " BDA_PROGRAM " " +
                                arguments + " 2>errors; echo $? >code; } " + where;
    EXPECT_EQ(std::system(command.c_str()), 0);
    return read("code");
  }

  // From now on the library refuses to be written.
  void breakLibrary() {
    sqlite3* library = nullptr;
    ASSERT_EQ(sqlite3_open((directory / "library.db").c_str(), &library), SQLITE_OK);
    const std::string stop = "BEGIN SELECT RAISE(ABORT, 'the disk is worn out'); END;";
    std::string sql;
    for (const char* table : {"content", "live_model"})
      for (const char* change : {"INSERT", "UPDATE", "DELETE"})
        sql += std::string("CREATE TRIGGER no_") + table + change + " BEFORE " + change + " ON " + table + " " + stop;
    EXPECT_EQ(sqlite3_exec(library, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(library);
  }
};

}  // namespace

TEST_F(Output, thatNobodyReadsAnyMoreChangesNoVerdict) {
  std::string many;
  for (int i = 0; i < 3000; ++i) many += text(blockDump({0, 0x40, 0}));
  write("good.syx", many);
  write("broken.syx", many + text(damaged(blockDump({0, 0x40, 0}))));
  EXPECT_EQ(codeInto("list good.syx", "| true"), "0\n");
  EXPECT_EQ(read("errors"), "");
  EXPECT_EQ(codeInto("list broken.syx", "| true"), "3\n");
  EXPECT_EQ(codeInto("receive broken.syx", "| true"), "3\n");
  EXPECT_THAT(read("errors"), HasSubstr("3000 completed, 1 refused"));
  EXPECT_EQ(codeInto("request system names:waveforms:1", "| true"), "0\n");
}

TEST_F(Output, thatCannotBeWrittenIsAnErrorWhateverElseWasFound) {
  write("good.syx", {blockDump({0, 0x40, 0})});
  write("broken.syx", {damaged(blockDump({0, 0x40, 0}))});
  for (const char* file : {"good.syx", "broken.syx"}) {
    EXPECT_EQ(codeInto(std::string("list ") + file, ">/dev/full"), "1\n");
    EXPECT_THAT(read("errors"), HasSubstr("standard output could not be written"));
  }
  EXPECT_EQ(codeInto("request system", ">/dev/full"), "1\n");
}

TEST_F(Output, aLibraryThatFailsIsAnErrorAndNoRefusal) {
  const std::string voice = "voice:user1:6";
  write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  write("voice.json", bda({"show", "--json", voice}).out);
  breakLibrary();
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"rename", voice, "New"},
                                                    {"apply", voice, "voice.json"},
                                                    {"remove", voice},
                                                    {"apply", "voice:edit", "voice.json"},
                                                    {"receive", "a.syx"},
                                                    {"restore", "a.syx"}}) {
    const Result run = bda(arguments);
    EXPECT_THAT(run, Exits(1)) << arguments[0];
    EXPECT_THAT(run.err, HasSubstr("the disk is worn out")) << arguments[0];
  }
  EXPECT_THAT(bda({"contents"}), Exits(0));
}
