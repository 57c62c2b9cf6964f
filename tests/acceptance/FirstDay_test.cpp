// Libraries that do not exist yet, and those in places that cannot be written: who makes one, and who leaves nothing.

#include "Library.h"
#include "Program.h"

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

using Words = std::vector<std::string>;

class FirstDay : public Program {
 protected:
  FirstDay() { removeLibrary(); }

  // With the default library, which is in a directory that does not exist either.
  Result bdaWithDefault(const Words& words) { return bdaWithout("BDA_LIBRARY", words); }
};

TEST_F(FirstDay, readingVerbsTakeTheDefaultLibraryAsAnEmptyOneAndLeaveNothing) {
  for (const Words& words : std::vector<Words>{{"contents"},
                                               {"contents", "--json"},
                                               {"show", "system"},
                                               {"settings"},
                                               {"settings", "device-number"},
                                               {"request", "system:common", "-o", "answer.syx"},
                                               {"screen", "-o", "screen.png"}}) {
    const Result run = bdaWithDefault(words);
    EXPECT_THAT(run, Exits(0)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr("bda/library.db: there is no library yet, it is read as an empty one\n"));
    EXPECT_FALSE(exists("XDG_DATA_HOME")) << testing::PrintToString(words);
  }
  EXPECT_THAT(bdaWithDefault({"show", "voice:user1:1"}), Exits(3));
  EXPECT_FALSE(exists("XDG_DATA_HOME"));
  EXPECT_EQ(bdaWithDefault({"-q", "settings"}).err, "");
}

TEST_F(FirstDay, readingVerbsRefuseALibraryThatWasNamed) {
  for (const Words& words : std::vector<Words>{{"contents"},
                                               {"show", "system"},
                                               {"settings"},
                                               {"request", "system:common", "-o", "answer.syx"},
                                               {"screen", "-o", "screen.png"},
                                               {"backup", "-o", "backup.syx"},
                                               {"diff", "library.db", "library.db"}}) {
    const Result byVariable = bda(words);
    EXPECT_THAT(byVariable, Exits(2)) << testing::PrintToString(words);
    EXPECT_THAT(byVariable.err, HasSubstr("library.db: "));
    Words named = words;
    named.insert(named.end(), {"--library", "typo.db"});
    EXPECT_THAT(bda(named), Exits(2)) << testing::PrintToString(words);
  }
  EXPECT_THAT(files(), IsEmpty());
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(FirstDay, backupRefusesTheDefaultOneTooAndKeepsTheFile) {
  write("good.syx", "a good backup");
  const Result run = bdaWithDefault({"backup", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, EndsWith("bda/library.db: there is no such library\n"));
  EXPECT_EQ(read("good.syx"), "a good backup");
  EXPECT_FALSE(exists("XDG_DATA_HOME"));
}

// A full disk or a copy that broke off leaves such a file: a backup of it would replace a good one.
TEST_F(FirstDay, anEmptyFileIsReadAsAnEmptyLibraryAndIsNoneToBackUp) {
  write("library.db", "");
  write("good.syx", "a good backup");
  EXPECT_THAT(bda({"backup", "-o", "good.syx"}), Exits(2));
  EXPECT_EQ(read("good.syx"), "a good backup");
  const Result run = bda({"contents"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("library.db: there is nothing in it yet"));
  EXPECT_EQ(read("library.db"), "");
}

TEST_F(FirstDay, whatNeedsAContentIsRefusedAndMakesNone) {
  for (const Words& words : std::vector<Words>{{"rename", "voice:user1:1", "Name"},
                                               {"rename", "voice:edit", "Name"},
                                               {"favourite", "voice:user1:1", "on"},
                                               {"favourite", "voice:user1:1", "off"},
                                               {"remove", "voice:user1:1"},
                                               {"move", "voice:edit", "voice:user1:1"},
                                               {"swap", "voice:edit", "voice:user1:1"},
                                               {"copy", "voice:user1:1", "voice:user1:2"}}) {
    EXPECT_THAT(bda(words), Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(bdaWithDefault(words), Exits(3)) << testing::PrintToString(words);
    Words rehearsed = words;
    rehearsed.emplace_back("--dry-run");
    EXPECT_THAT(bda(rehearsed), Exits(3)) << testing::PrintToString(words);
  }
  EXPECT_FALSE(exists("library.db"));
  EXPECT_FALSE(exists("XDG_DATA_HOME"));
}

TEST_F(FirstDay, wrongUsageMakesNone) {
  for (const Words& words : std::vector<Words>{{"settings", "device-number", "17"},
                                               {"settings", "no-such", "1"},
                                               {"request", "no:such"},
                                               {"apply", "no:such", "file.json"},
                                               {"receive", "--port", "2", "file.syx"}}) {
    EXPECT_THAT(bda(words), Exits(1)) << testing::PrintToString(words);
  }
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(FirstDay, theFirstChangeMakesOne) {
  write("request.syx", {request(Editor::systemAddresses().front())});
  write("broken.syx", {damaged(blockDump({0x0E, 0x0A, 0x05}))});
  EXPECT_THAT(bda({"receive", "request.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "broken.syx"}), Exits(3));
  EXPECT_THAT(bda({"restore", "broken.syx"}), Exits(3));
  EXPECT_THAT(bda({"restore", "request.syx"}), Exits(0));
  write("trigger.syx", {dump(Editor::kWriteTrigger)});
  EXPECT_THAT(bda({"receive", "trigger.syx"}), Exits(0));
  EXPECT_FALSE(exists("library.db"));
  write("voice.syx", text(unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)));
  const Result dryRun = bda({"restore", "--dry-run", "voice.syx"});
  EXPECT_THAT(dryRun, Exits(0));
  EXPECT_THAT(dryRun.out, HasSubstr("would store: voice:user1:6"));
  EXPECT_THAT(bda({"settings", "device-number", "1"}), Exits(0)) << "as it is";
  EXPECT_FALSE(exists("library.db"));
  const Result first = bda({"receive", "voice.syx"});
  EXPECT_THAT(first, Exits(0));
  EXPECT_THAT(first.err, HasSubstr("library.db: no library yet, the first change makes one\n"));
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("voice:user1:6"));
  EXPECT_EQ(bda({"settings", "device-number", "3"}).err, "set: device-number: 3, was 1\n");
}

TEST_F(FirstDay, eachVerbThatStoresMakesOne) {
  write("voice.syx", text(unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)));
  write("system.json", bdaWithDefault({"show", "system", "--json"}).out);
  for (const Words& words : std::vector<Words>{{"receive", "voice.syx"},
                                               {"restore", "voice.syx"},
                                               {"apply", "system", "system.json"},
                                               {"copy", "voice:edit", "voice:user1:1"},
                                               {"settings", "receive-bulk", "off"}}) {
    EXPECT_THAT(bda(words), Exits(0)) << testing::PrintToString(words);
    EXPECT_TRUE(exists("library.db")) << testing::PrintToString(words);
    removeLibrary();
  }
}

TEST_F(FirstDay, readingLeavesALibraryAsItIs) {
  write("voice.syx", text(unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)));
  ASSERT_THAT(bda({"receive", "voice.syx"}), Exits(0));
  const std::string before = read("library.db");
  for (const Words& words : std::vector<Words>{{"contents"},
                                               {"show", "voice:user1:6"},
                                               {"settings"},
                                               {"diff", "library.db", "voice.syx"},
                                               {"restore", "--dry-run", "voice.syx"},
                                               {"backup", "-o", "backup.syx"}}) {
    const Result run = bda(words);
    EXPECT_TRUE(run.code == 0 || run.code == 3) << run.code << run.err;
    EXPECT_TRUE(read("library.db") == before) << testing::PrintToString(words);
    EXPECT_FALSE(exists("library.db-wal")) << testing::PrintToString(words);
    EXPECT_FALSE(exists("library.db-shm")) << testing::PrintToString(words);
  }
}

}  // namespace
