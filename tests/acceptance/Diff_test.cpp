// diff: what two libraries, or files, do not have in common.

#include "Library.h"
#include "Program.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr Editor::BulkAddress kUserVoice{0x0E, 0x0A, 0x05};

class Diff : public Program {
 protected:
  // Two libraries, b.db with everything that can differ: a voice with another name, one with another parameter and
  // another name, one that is equal, one in each that the other has not, opaque bytes, flags, the rest.
  void fillTwo() {
    for (std::uint8_t number = 0; number < 3; ++number) {
      const std::string file = "voice" + std::to_string(number) + ".syx";
      write(file, {unit({0x0E, 0x0A, number}, BDA::List::normalVoice, number)});
      for (const char* name : {"a.db", "b.db"}) ASSERT_THAT(bda({"receive", "-q", file, "--library", name}), Exits(0));
    }
    for (const char* name : {"a.db", "b.db"})
      ASSERT_THAT(bda({"rename", kRenamed, "Old", "--library", name}), Exits(0));
    ASSERT_THAT(bda({"rename", kRenamed, "New", "--library", "b.db"}), Exits(0));
    Json voice = json({"show", kChanged, "--json", "--library", "a.db"});
    voice["voice"]["element"][3]["wave"][0] = 7;
    voice["voice"]["name"] = "Changed";
    write("a.json", voice.dump());
    ASSERT_THAT(bda({"apply", kChanged, "a.json", "--library", "b.db"}), Exits(0));
    library("a.db").store(kMulti1, Bytes{1, 2}, "Mine");
    library("b.db").store(kMulti1, Bytes{1, 2, 0xF0}, "Mine");
    library("a.db").store(kUserVoice6, Bytes{1}, "Only A");
    library("a.db").setFavourite(kUserVoice6, 1);
    library("b.db").store({4, 0x3F0806}, Bytes{1}, "Only B");
    library("b.db").setFavourite(kPresetVoice1, 1);
    ASSERT_THAT(bda({"rename", "master:edit", "Master", "--library", "b.db"}), Exits(0));
    ASSERT_THAT(bda({"settings", "mixing-voices", "9", "--library", "b.db"}), Exits(0));
  }

  static constexpr const char* kRenamed = "voice:user1:1";
  static constexpr const char* kChanged = "voice:user1:2";
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
  EXPECT_THAT(lines(run.out), ElementsAre(AllOf(StartsWith("voice:user1:6: name: "), HasSubstr("| \"Other\"")),
                                          "voice:user1:6: voice.element[3].wave[0]: 129 | 7"));
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
            "settings: mixing-voices: 2048 | 9\n");
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

// ---- A name ----

TEST_F(Diff, aRenameIsToldOnce) {
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice, 1), unit({0x0E, 0x60, 0x00}, BDA::List::remote, 1)});
  for (const char* name : {"a.db", "b.db"}) ASSERT_THAT(bda({"receive", "-q", "a.syx", "--library", name}), Exits(0));
  for (const char* target : {"voice:user1:6", "remote:1"}) {
    ASSERT_THAT(bda({"rename", target, "Old", "--library", "a.db"}), Exits(0));
    ASSERT_THAT(bda({"rename", target, "New", "--library", "b.db"}), Exits(0));
  }
  const Result run = bda({"diff", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.out,
            "voice:user1:6: renamed: \"Old\" | \"New\"\n"
            "remote:1: renamed: \"Old\" | \"New\"\n");
  EXPECT_EQ(bda({"diff", "--json", "a.db", "b.db"}).out,
            R"({"content":"voice:user1:6","path":"voice.name","a":"Old","b":"New"})"
            "\n"
            R"({"content":"remote:1","path":"remote.name1","a":"Old","b":"New"})"
            "\n"
            R"({"summary":{"equal":0,"different":0,"onlyA":0,"onlyB":0,"renamed":2}})"
            "\n");
}

TEST_F(Diff, aNameThatOnlyTheListKnowsIsARenameToo) {
  library("a.db").store(kMulti1, Bytes{1, 2}, "Old");
  library("b.db").store(kMulti1, Bytes{1, 2}, "N\xFCw\x1B");
  EXPECT_EQ(bda({"diff", "a.db", "b.db"}).out, "file:multi:1: renamed: \"Old\" | \"N\u00FCw\\x1B\"\n");
  EXPECT_THAT(bda({"diff", "--json", "a.db", "b.db"}).out,
              HasSubstr(R"({"content":"file:multi:1","path":"name","a":"Old","b":"N\u00fcw\u001b"})"));
}

TEST_F(Diff, aRenameOfWhatHadTwoNamesIsOneLineWithBoth) {
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice, 1)});
  for (const char* name : {"a.db", "b.db"}) {
    ASSERT_THAT(bda({"receive", "-q", "a.syx", "--library", name}), Exits(0));
    ASSERT_THAT(bda({"rename", "voice:user1:6", "Inside", "--library", name}), Exits(0));
  }
  library("a.db").rename(kUserVoice6, "In the list");
  ASSERT_THAT(bda({"rename", "voice:user1:6", "New", "--library", "b.db"}), Exits(0));
  EXPECT_EQ(bda({"diff", "a.db", "b.db"}).out,
            "voice:user1:6: renamed: \"In the list\" | \"New\" (inside: \"Inside\" | \"New\")\n");
  const Result run = bda({"diff", "--json", "a.db", "b.db"});
  EXPECT_THAT(run.out, HasSubstr(R"("path":"name","a":"In the list","b":"New"})"));
  EXPECT_THAT(run.out, HasSubstr(R"("path":"voice.name","a":"Inside","b":"New"})"));
  EXPECT_THAT(run.out, HasSubstr(R"("renamed":1})"));
}

// ---- The three forms ----

TEST_F(Diff, theLastLineCountsContents) {
  fillTwo();
  const Result run = bda({"diff", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.err), ElementsAre("contents: 1 equal, 2 different, 1 only in a.db, 1 only in b.db, 1 renamed; "
                                          "besides contents: 3 different"));
  EXPECT_EQ(bda({"-q", "diff", "a.db", "b.db"}).err, "");
  EXPECT_EQ(bda({"diff", "a.db", "a.db"}).err, "no difference; contents: 5 equal\n");
  write("a.syx", {systemDump(1)});
  EXPECT_EQ(bda({"diff", "a.syx", "a.syx"}).err, "no difference; contents: none\n");
}

TEST_F(Diff, briefSaysWhichAndNotInWhat) {
  fillTwo();
  const Result run = bda({"diff", "--brief", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.out,
            "file:multi:1: different\n"
            "voice:preset1:1: different\n"
            "voice:user1:1: renamed: \"Old\" | \"New\"\n"
            "voice:user1:2: different\n"
            "voice:user1:6: only in a.db: \"Only A\", a favourite\n"
            "voice:user1:7: only in b.db: \"Only B\"\n"
            "master:edit: different\n"
            "settings: different\n");
  EXPECT_EQ(run.err, bda({"diff", "a.db", "b.db"}).err);
  EXPECT_THAT(bda({"diff", "--brief", "a.db", "a.db"}), Exits(0));
}

TEST_F(Diff, jsonHasAnObjectForEachValueAndEndsWithTheCounts) {
  fillTwo();
  const Json old = json({"show", kChanged, "--json", "--library", "a.db"});
  const Result run = bda({"diff", "--json", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(lines(run.out), ElementsAre(R"({"content":"file:multi:1","path":"bytes","a":"01 02","b":"01 02 F0"})",
                                          R"({"content":"voice:preset1:1","path":"favourite","a":0,"b":1})",
                                          R"({"content":"voice:user1:1","path":"voice.name","a":"Old","b":"New"})",
                                          R"({"content":"voice:user1:2","path":"voice.name","a":)" +
                                              old["voice"]["name"].dump(-1, ' ', true) + R"(,"b":"Changed"})",
                                          R"({"content":"voice:user1:2","path":"voice.element[3].wave[0]","a":)" +
                                              old["voice"]["element"][3]["wave"][0].dump() + R"(,"b":7})",
                                          R"({"content":"voice:user1:6","path":null,"a":"Only A","b":null})",
                                          R"({"content":"voice:user1:7","path":null,"a":null,"b":"Only B"})",
                                          R"({"content":"master:edit","path":"master.name","a":"","b":"Master"})",
                                          R"({"content":"settings","path":"mixing-voices","a":2048,"b":9})",
                                          R"({"summary":{"equal":1,"different":2,"onlyA":1,"onlyB":1,"renamed":1}})"));
  const Result equal = bda({"-q", "diff", "--json", "a.db", "a.db"});
  EXPECT_THAT(equal, Exits(0));
  EXPECT_EQ(equal.out, R"({"summary":{"equal":5,"different":0,"onlyA":0,"onlyB":0,"renamed":0}})"
                       "\n");
}

TEST_F(Diff, briefAndJsonAreTwoForms) {
  write("a.syx", {systemDump(1)});
  EXPECT_THAT(bda({"diff", "--brief", "--json", "a.syx", "a.syx"}), Exits(1));
}

TEST_F(Diff, theFlagOfAContentThatBothHaveIsADifferenceOfIt) {
  for (const char* name : {"a.db", "b.db"}) library(name).store(kUserVoice6, Bytes{1}, "Mine");
  library("b.db").setFavourite(kUserVoice6, 1);
  const Result run = bda({"diff", "--json", "a.db", "b.db"});
  EXPECT_THAT(lines(run.out), ElementsAre(R"({"content":"voice:user1:6","path":"favourite","a":0,"b":1})",
                                          R"({"summary":{"equal":0,"different":1,"onlyA":0,"onlyB":0,"renamed":0}})"));
}

TEST_F(Diff, theFlagOfAnEmptyPlaceIsADifferenceAndNoContent) {
  library("a.db").setFavourite(kUserVoice6, 1);
  library("b.db").setMixingVoiceMaximum(2048);
  const Result run = bda({"diff", "--json", "a.db", "b.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), ElementsAre(R"({"content":"voice:user1:6","path":"favourite","a":1,"b":0})",
                                          R"({"summary":{"equal":0,"different":0,"onlyA":0,"onlyB":0,"renamed":0}})"));
}

TEST_F(Diff, whatOnlyOneHasIsOneLineWhateverTheFlagOfThePlace) {
  library("a.db").setFavourite(kUserVoice6, 1);
  library("b.db").store(kUserVoice6, Bytes{1}, "Mine");
  EXPECT_THAT(lines(bda({"diff", "--json", "a.db", "b.db"}).out),
              ElementsAre(R"({"content":"voice:user1:6","path":null,"a":null,"b":"Mine"})",
                          R"({"summary":{"equal":0,"different":0,"onlyA":0,"onlyB":1,"renamed":0}})"));
  for (const char* form : {"-v", "--brief"}) {
    const Result run = bda({"diff", form, "b.db", "a.db"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_EQ(run.out, "voice:user1:6: only in b.db: \"Mine\"; the empty place is a favourite\n");
    EXPECT_EQ(run.err, "contents: 1 only in b.db\n");
  }
  library("b.db").setFavourite(kUserVoice6, 1);
  EXPECT_EQ(bda({"diff", "b.db", "a.db"}).out, "voice:user1:6: only in b.db: \"Mine\", a favourite\n");
}
