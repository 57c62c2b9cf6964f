// diff: what two libraries, or files, do not have in common.

#include "Library.h"
#include "Program.h"

using testing::HasSubstr;
using Json = nlohmann::ordered_json;

namespace {

constexpr Editor::BulkAddress kUserVoice{0x0E, 0x0A, 0x05};

class Diff : public Program {
 protected:
  Editor::Library library(const char* name) { return Editor::Library(directory / name); }
};

}  // namespace

TEST_F(Diff, whatIsEqualExitsWith0AndPrintsNothing) {
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice, 1), systemDump(2)});
  ASSERT_THAT(bda({"receive", "-q", "a.syx"}), Exits(0));
  for (const auto& [a, b] :
       {std::pair("library.db", "library.db"), {"library.db", "a.syx"}, {"a.syx", "library.db"}, {"a.syx", "a.syx"}}) {
    const Result run = bda({"diff", a, b});
    EXPECT_THAT(run, Exits(0));
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(Diff, parametersAreNamedByTheirPaths) {
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice, 1)});
  ASSERT_THAT(bda({"receive", "-q", "a.syx"}), Exits(0));
  Json voice = json({"show", "voice:user1:6", "--json"});
  voice["voice"]["element"][3]["wave"][0] = 7;
  voice["voice"]["name"] = "Other";
  write("a.json", voice.dump());
  ASSERT_THAT(bda({"apply", "voice:user1:6", "a.json"}), Exits(0));
  const Result run = bda({"diff", "a.syx", "library.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), testing::SizeIs(3));
  EXPECT_THAT(run.out, HasSubstr("voice:user1:6: voice.element[3].wave[0]: 129 | 7\n"));
  EXPECT_THAT(run.out, HasSubstr("| \"Other\"\n"));
}

TEST_F(Diff, contentsFlagsEditBuffersAndSettingsAreCompared) {
  library("a.db").store(kMulti1, Bytes{1, 2}, "Mine");
  library("b.db").store(kMulti1, Bytes{1, 2, 3}, "Mine");
  library("a.db").store(kUserVoice6, Bytes{1}, "Only here");
  library("b.db").setFavourite(kPresetVoice1, 1);
  ASSERT_THAT(bda({"rename", "master:edit", "Master", "--library", "b.db"}), Exits(0));
  ASSERT_THAT(bda({"settings", "device-number", "4", "--library", "b.db"}), Exits(0));
  ASSERT_THAT(bda({"settings", "mixing-voices", "9", "--library", "b.db"}), Exits(0));
  const Result run = bda({"diff", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.out,
            "file:multi:1: opaque bytes differ: 2 | 3 bytes\n"
            "voice:preset1:1: favourite: 0 | 1\n"
            "voice:user1:6: only in a.db: \"Only here\"\n"
            "master:edit: master.name: \"\" | \"Master\"\n"
            "system: system.utility[51]: 0 | 3\n"
            "setting mixing-voices: 2048 | 9\n");
}

TEST_F(Diff, howALibraryListensIsNotComparedWithAFile) {
  write("a.syx", {systemDump(1)});
  ASSERT_THAT(bda({"receive", "-q", "a.syx"}), Exits(0));
  ASSERT_THAT(bda({"settings", "device-number", "off"}), Exits(0));
  ASSERT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_THAT(bda({"diff", "a.syx", "library.db"}), Exits(0));
}

TEST_F(Diff, aFileIsTakenForAnyDevice) {
  write("a.syx", {dump({0, 6, 0}, Bytes(5, 1), 7)});
  write("b.syx", {dump({0, 6, 0}, Bytes(5, 1), 3)});
  EXPECT_THAT(bda({"diff", "a.syx", "b.syx"}), Exits(0));
}

TEST_F(Diff, whatAFileHoldsInVainIsToldAndIsADifference) {
  write("a.syx", {damaged(blockDump({0, 6, 0}))});
  const Result refused = bda({"diff", "a.syx", "a.syx"});
  EXPECT_THAT(refused, Exits(3));
  EXPECT_THAT(refused.err, HasSubstr("a.syx: message 1 at offset 0: refused: "));
  write("b.syx", {blockDump(kUserVoice)});
  const Result open = bda({"diff", "b.syx", "b.syx"});
  EXPECT_THAT(open, Exits(3));
  EXPECT_THAT(open.err, HasSubstr("voice:user1:6: still open"));
}

TEST_F(Diff, whatDoesNotExistIsNotCreated) {
  removeLibrary();
  write("a.syx", {systemDump(1)});
  EXPECT_THAT(bda({"diff", "a.syx", "none.db"}), Exits(2));
  EXPECT_THAT(bda({"diff", "none.db", "a.syx"}), Exits(2));
  EXPECT_FALSE(exists("none.db"));
  EXPECT_FALSE(exists("library.db"));
}
