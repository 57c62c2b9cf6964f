// What a damaged edit buffer, or damaged system settings, keep from whom, and how they become whole again.

#include "Library.h"
#include "Program.h"
#include "editor/contents/TemporaryLibrary.h"

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr Editor::BulkAddress kVoiceEdit{0x0E, 0x0F, 0x00};

class Damaged : public Program {
 protected:
  // A voice, an edit buffer and the system settings; then the live models under that key are damaged.
  void fill(const std::string& key) {
    write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
    write("edit.syx", {unit(kVoiceEdit, BDA::List::normalVoice, 0x42)});
    write("multi.syx", {unit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1)});
    write("system.syx", {systemDump(1)});
    for (const char* file : {"voice.syx", "edit.syx", "multi.syx", "system.syx"})
      ok({"receive", "-q", file, "--any-device"});
    ok({"settings", "-q", "device-number", "1"});
    ok({"backup", "-q", "-o", "whole.syx"});
    std::filesystem::copy_file(libraryFile(), directory / "whole.db");
    Editor::PlainDatabase{libraryFile()}(
        "UPDATE live_model SET bytes = CAST(substr(bytes, 1, 40) || x'5577' || substr(bytes, 43) AS BLOB) WHERE key = "
        "'" +
        key + "'");
    ASSERT_THAT(bda({"check"}).out, HasSubstr("damaged"));
  }
  void ok(const std::vector<std::string>& words) { ASSERT_THAT(bda(words), Exits(0)) << testing::PrintToString(words); }
  std::string damagedPlaces() {
    std::string all;
    for (const std::string& line : lines(bda({"check"}).out))
      if (line.find(": damaged") != std::string::npos && line.find("table change") == std::string::npos)
        all += line.substr(0, line.find(": damaged")) + " ";
    return all;
  }
};

}  // namespace

TEST_F(Damaged, anEditBufferKeepsNoVerbFromTheOthers) {
  fill("voice");
  const Result contents = bda({"contents", "--lines"});
  EXPECT_THAT(contents, Exits(3));
  EXPECT_THAT(contents.out, AllOf(HasSubstr("voice:user1:6"), HasSubstr("multi:edit"), Not(HasSubstr("voice:edit"))));
  EXPECT_THAT(contents.err, HasSubstr("voice:edit: left out: it is damaged"));
  ok({"show", "voice:user1:6"});
  ok({"rename", "voice:user1:6", "Grand"});
  ok({"settings", "device-number", "1"});
  ok({"copy", "voice:user1:6", "voice:user1:7"});
  ok({"receive", "-q", "voice.syx"});
  ok({"undo"});
  write("a.json", bda({"show", "--json", "voice:user1:7"}).out);
  ok({"apply", "voice:user1:7", "a.json"});
  const Result backup = bda({"backup", "-o", "rest.syx"});
  EXPECT_THAT(backup, Exits(3));
  EXPECT_THAT(backup.err, HasSubstr("voice:edit: not in the backup"));
  EXPECT_THAT(bda({"list", "rest.syx"}).out, AllOf(HasSubstr("user1:7"), Not(HasSubstr("voice edit"))));
  EXPECT_THAT(bda({"find", "--edit-buffers"}).err, HasSubstr("voice:edit: left out: it is damaged"));
  EXPECT_EQ(damagedPlaces(), "voice:edit ") << "nothing of all that may have touched it";
}

TEST_F(Damaged, anEditBufferIsNeverTakenForANewOne) {
  fill("voice");
  for (const std::vector<std::string>& words : {std::vector<std::string>{"show", "voice:edit"},
                                                {"show", "--json", "voice:edit"},
                                                {"request", "-o", "a.syx", "voice:edit"},
                                                {"copy", "voice:edit", "voice:user1:9"},
                                                {"swap", "voice:edit", "voice:user1:6"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3)) << words[0];
    EXPECT_THAT(run.err, HasSubstr("voice:edit")) << words[0];
    EXPECT_THAT(run.err, HasSubstr("damaged")) << words[0];
    EXPECT_THAT(run.out, IsEmpty()) << words[0];
  }
  EXPECT_EQ(damagedPlaces(), "voice:edit ");
  const Result diff = bda({"diff", "whole.db", libraryFile()});
  EXPECT_THAT(diff, Exits(3));
  EXPECT_EQ(diff.out, "voice:edit: not compared: good | damaged\n");
}

TEST_F(Damaged, anEditBufferIsWholeAgainWhenItIsReplaced) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"receive", "edit.syx"},
                                                {"restore", "whole.syx"},
                                                {"copy", "voice:user1:6", "voice:edit"},
                                                {"copy", "--from-library", "whole.db", "voice:edit", "voice:edit"},
                                                {"apply", "voice:edit", "a.json"},
                                                {"remove", "voice:edit"}}) {
    removeLibrary();
    std::filesystem::remove(directory / "whole.db");
    fill("voice");
    write("a.json", bda({"show", "--json", "voice:user1:6"}).out);
    ok(words);
    EXPECT_EQ(damagedPlaces(), "") << testing::PrintToString(words);
  }
}

TEST_F(Damaged, aMultiKeepsItsPartsAndIsReplacedWithThem) {
  fill("multi");
  const Result show = bda({"show", "voice:part:3"});
  EXPECT_THAT(show, Exits(3));
  EXPECT_EQ(show.out, "");
  ok({"receive", "-q", "voice.syx"});
  const Editor::MidLo part = Editor::headerOf(Editor::EditBuffer::partVoice, 2);
  write("part.syx", {unit({0x0E, part.mid, part.lo}, BDA::List::normalVoice, 2)});
  EXPECT_THAT(bda({"receive", "part.syx"}), Exits(3)) << "its effects would go into the multi";
  EXPECT_EQ(damagedPlaces(), "multi:edit ");
  ok({"receive", "-q", "multi.syx"});
  EXPECT_EQ(damagedPlaces(), "");
  ok({"show", "voice:part:3"});
}

TEST_F(Damaged, ofTheVoicesOfAMultiThatIsDamagedTheTrueReasonIsSaid) {
  fill("multi");
  const std::string why = "the multi that it plays in is damaged";
  for (const std::vector<std::string>& words : {std::vector<std::string>{"show", "voice:part:3"},
                                                {"show", "voice:part"},
                                                {"request", "-o", "a.syx", "voice:part:3"},
                                                {"copy", "voice:part:3", "voice:user1:9"},
                                                {"find", "--edit-buffers"},
                                                {"backup", "-o", "rest.syx"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr(why)) << testing::PrintToString(words);
    for (const std::string& line : lines(run.err)) {
      if (line.find("voice:part") == std::string::npos) continue;
      EXPECT_THAT(line, Not(AnyOf(HasSubstr("it is damaged"), HasSubstr("stored there"))));
    }
  }
  const Result contents = bda({"contents", "--lines"});
  EXPECT_THAT(contents.out, HasSubstr("voice:part:3")) << "its name is read without the multi";
  EXPECT_THAT(contents.err, AllOf(HasSubstr("multi:edit: left out: it is damaged"), HasSubstr("(1 damaged)")));
  EXPECT_EQ(bda({"diff", "whole.db", libraryFile()}).out, "multi:edit: not compared: good | damaged\n");
  EXPECT_THAT(bda({"remove", "voice:part:3"}), Exits(1)) << "the voice is whole";
  EXPECT_EQ(damagedPlaces(), "multi:edit ");
}

TEST_F(Damaged, systemSettingsCountAsNewAndAreNotChangedInPart) {
  fill("system");
  const Result block = bda({"receive", "system.syx"});
  EXPECT_THAT(block, Exits(3));
  EXPECT_THAT(block.err, AllOf(HasSubstr("the system settings are damaged and count as new"), HasSubstr("14 refused")));
  const Result setting = bda({"settings", "device-number", "6"});
  EXPECT_THAT(setting, Exits(3));
  EXPECT_THAT(setting.err, HasSubstr("bda remove system"));
  ok({"receive", "-q", "voice.syx"});
  ok({"restore", "-q", "voice.syx"});
  EXPECT_EQ(damagedPlaces(), "system ") << "a restore without them does not touch them";
  ok({"restore", "-q", "whole.syx"});
  EXPECT_EQ(damagedPlaces(), "");
  EXPECT_THAT(bda({"diff", "whole.db", libraryFile()}), Exits(0));
}

TEST_F(Damaged, systemSettingsAreAsNewOnceRemovedAndWholeOnesAreNotRemoved) {
  fill("system");
  EXPECT_THAT(bda({"remove", "voice:edit"}), Exits(1));
  ok({"remove", "system"});
  EXPECT_THAT(bda({"contents"}).out, Not(HasSubstr("system")));
  EXPECT_EQ(damagedPlaces(), "");
  const Result undo = bda({"undo"});
  EXPECT_THAT(undo, Exits(3));
  EXPECT_THAT(undo.err, HasSubstr("system: what it held before is damaged"));
  EXPECT_THAT(bda({"remove", "system"}), Exits(1));
}

TEST_F(Damaged, aContentIsComparedWithNothingAndKeepsNoArrangementOfOthers) {
  fill("voice");
  ok({"remove", "voice:edit"});
  ok({"copy", "voice:user1:6", "voice:user1:7"});
  std::filesystem::remove(directory / "whole.db");
  std::filesystem::copy_file(libraryFile(), directory / "whole.db");
  Editor::PlainDatabase{libraryFile()}(
      "UPDATE content SET bytes = CAST(substr(bytes, 1, 90) || x'55' || substr(bytes, 92) AS BLOB) WHERE number = "
      "0x3F0805");
  const Result diff = bda({"diff", "--json", "whole.db", libraryFile()});
  EXPECT_THAT(diff, Exits(3));
  EXPECT_THAT(diff.out, HasSubstr(R"({"content":"voice:user1:6","path":"damaged","a":0,"b":1})"));
  const Result copy = bda({"copy", "voice:user1:6..7", "voice:user2:1"});
  EXPECT_THAT(copy, Exits(3));
  EXPECT_THAT(copy.err, AllOf(HasSubstr("voice:user1:6: left out: it is damaged"), HasSubstr("stored: voice:user2:2")));
  ok({"copy", "voice:user1:7", "voice:user1:6"});
  EXPECT_EQ(damagedPlaces(), "");
}

TEST_F(Damaged, aDryRunOfARestoreSaysNothingOfWhatItLeavesAsItIs) {
  fill("system");
  Editor::PlainDatabase{libraryFile()}("UPDATE content SET bytes = x'0102'");
  const Result run = bda({"restore", "--dry-run", "edit.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("nothing would change"));
}

TEST_F(Damaged, thatSomethingIsDamagedIsSaidOnce) {
  fill("system");
  const std::string why = "what is stored there is damaged: bytes that do not fit their checksum\n";
  EXPECT_THAT(bda({"show", "system"}).err, HasSubstr("bda: system: " + why));
  EXPECT_THAT(bda({"request", "system:common"}).err,
              HasSubstr("system:common (00 00 00, system common): no answer: " + why));
  EXPECT_THAT(bda({"backup", "-o", "rest.syx"}).err, HasSubstr("system:common: not in the backup: " + why));
  EXPECT_THAT(bda({"receive", "system.syx", "--any-device"}).err, HasSubstr("refused: system common: " + why));
}
