// history, undo and check, and what a damaged content keeps from whom.

#include <sqlite3.h>

#include "Library.h"
#include "Program.h"
#include "editor/contents/TemporaryLibrary.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class History : public Program {
 protected:
  void store(std::uint8_t value) {
    write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, value)});
    ASSERT_THAT(bda({"receive", "-q", "voice.syx"}), Exits(0));
  }
  void ok(const std::vector<std::string>& words) { ASSERT_THAT(bda(words), Exits(0)) << testing::PrintToString(words); }
  std::vector<Json> history() { return objects({"history", "--json"}); }
  std::string backup() {
    ok({"backup", "-q", "-o", "backup.syx"});
    return read("backup.syx");
  }
  void damage(const std::string& sql) { Editor::PlainDatabase{libraryFile()}(sql); }
};

}  // namespace

// ---- history --------------------------------------------------------------------------------------------------------

TEST_F(History, hasAnEntryForEachRunThatChangedSomethingTheNewestFirst) {
  EXPECT_THAT(history(), IsEmpty());
  store(0x41);
  ok({"rename", "voice:user1:6", "Grand"});
  ok({"favourite", "voice:user1:6", "on"});
  ok({"settings", "mixing-voices", "9"});
  ok({"settings", "device-number", "3"});
  ok({"show", "voice:user1:6"});
  const std::vector<Json> entries = history();
  ASSERT_THAT(entries, SizeIs(5));
  std::vector<std::string> keys;
  for (const auto& [key, value] : entries[0].items()) keys.push_back(key);
  EXPECT_THAT(keys, ElementsAre("entry", "time", "verb", "sources", "changes", "undoes", "undoneBy"));
  const std::string old(20, 'A');
  EXPECT_EQ(entries[4]["entry"], 1);
  EXPECT_EQ(entries[4]["verb"], "receive");
  EXPECT_EQ(entries[4]["sources"], Json::array({"voice.syx"}));
  EXPECT_THAT(entries[4]["time"].get<std::string>(),
              testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"));
  EXPECT_EQ(entries[4]["changes"][0].dump(),
            R"({"content":"voice:user1:6","what":"stored","before":null,"after":")" + old + R"("})");
  EXPECT_EQ(entries[3]["changes"][0].dump(),
            R"({"content":"voice:user1:6","what":"renamed","before":")" + old + R"(","after":"Grand"})");
  EXPECT_EQ(entries[2]["changes"].dump(), R"([{"content":"voice:user1:6","what":"flagged","before":0,"after":1}])");
  EXPECT_EQ(entries[1]["changes"].dump(), R"([{"content":"mixing-voices","what":"set","before":2048,"after":9}])");
  EXPECT_EQ(entries[0]["changes"].dump(), R"([{"content":"system","what":"stored","before":null,"after":""}])");
  EXPECT_EQ(entries[0]["undoes"], nullptr);
  EXPECT_EQ(entries[0]["undoneBy"], nullptr);
  EXPECT_THAT(objects({"history", "--json", "-n", "2"}), SizeIs(2));
  const Result words = bda({"history", "-v", "-n", "1"});
  EXPECT_THAT(words.out,
              AllOf(HasSubstr("   5  "), HasSubstr("settings: 1 stored"), HasSubstr("      stored: system\n")));
  EXPECT_THAT(bda({"history", "-n", "0"}), Exits(1));
}

TEST_F(History, namesItsSourcesAsTheyWereNamed) {
  const std::string name = "a\x1B[31m\nb\"\xFF.syx";
  write(name, {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)});
  ok({"receive", "-q", name});
  EXPECT_EQ(history().front()["sources"], Json::array({"a\x1B[31m\nb\"\uFFFD.syx"}));
  const std::string words = bda({"history"}).out;
  EXPECT_THAT(words, HasSubstr("receive a\\x1B[31m\\x0Ab\""));
  EXPECT_THAT(lines(words), SizeIs(1));
}

TEST_F(History, tellsPartsByTheirNumbers) {
  store(0x41);
  write("names", "voice:part:11 Eleventh\nvoice:part:2 Second\nvoice:part:1 First\n");
  ok({"rename", "--from", "names"});
  std::vector<std::string> renamed;
  const Json newest = history()[0];
  for (const Json& change : newest["changes"])
    if (change["what"] == "renamed") renamed.push_back(change["content"]);
  EXPECT_THAT(renamed, ElementsAre("voice:part:1", "voice:part:2", "voice:part:11"));
}

TEST_F(History, ofADefaultLibraryThatDoesNotExistIsEmpty) {
  EXPECT_THAT(bdaWithout("BDA_LIBRARY", {"history"}), Exits(0));
  EXPECT_THAT(bda({"history", "--library", "none.db"}), Exits(2));
  EXPECT_THAT(bda({"undo", "--library", "none.db"}), Exits(3));
  EXPECT_FALSE(exists("none.db"));
}

TEST_F(History, aRunThatIsRefusedLeavesNoEntry) {
  store(0x41);
  Bytes cut = unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1);
  cut[cut.size() - 2] ^= 1;
  write("broken.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 2), cut});
  EXPECT_THAT(bda({"restore", "broken.syx"}), Exits(3));
  EXPECT_THAT(bda({"remove", "voice:user1:6", "voice:user1:7"}), Exits(3));
  EXPECT_THAT(history(), SizeIs(1));
}

TEST_F(History, isKeptAsTheSettingsSay) {
  for (const char* name : {"a", "b", "c", "d"}) ok({"rename", "drum:edit", name});
  EXPECT_THAT(bda({"settings", "history", "2", "--dry-run"}).out, HasSubstr("of the history are gone\n"));
  EXPECT_THAT(bda({"settings", "history", "2"}).err, HasSubstr("of the history are gone\n"));
  EXPECT_THAT(history(), SizeIs(2));
  ok({"settings", "history", "off"});
  EXPECT_EQ(bda({"settings", "history"}).out, "off\n");
  ok({"rename", "drum:edit", "e"});
  EXPECT_EQ(history()[0]["entry"], 4);
  for (const char* value : {"0", "100001", "many"}) EXPECT_THAT(bda({"settings", "history", value}), Exits(1));
  for (const char* value : {"0", "off"}) EXPECT_THAT(bda({"settings", "history-size", value}), Exits(1));
  ok({"settings", "history-size", "1"});
  EXPECT_EQ(bda({"settings", "history-size"}).out, "1\n");
}

TEST_F(History, isNeitherInABackupNorADifference) {
  store(0x41);
  const std::string before = backup();
  std::filesystem::copy_file(libraryFile(), directory / "other.db");
  ok({"settings", "history", "7"});
  ok({"settings", "history-size", "7"});
  EXPECT_EQ(backup(), before);
  ok({"diff", "library.db", "other.db"});
}

// ---- undo -----------------------------------------------------------------------------------------------------------

TEST_F(History, undoingAllOfItGivesTheFirstLibraryByteForByte) {
  store(0x41);
  const std::string first = backup();
  store(0x22);
  ok({"rename", "voice:user1:6", "Other"});
  write("system.syx", {systemDump(1)});
  ok({"receive", "-q", "system.syx"});
  ok({"remove", "voice:user1:6"});
  write("first.syx", first);
  ok({"restore", "-q", "first.syx"});
  ok({"favourite", "voice:user1:6", "on"});
  const std::size_t changes = history().size() - 1;
  EXPECT_EQ(changes, 6U);
  for (std::size_t i = 0; i < changes; ++i) ok({"undo"});
  EXPECT_EQ(backup(), first);
  ok({"undo"});
  EXPECT_THAT(bda({"undo"}), Exits(3));
  EXPECT_THAT(bda({"undo"}).err, HasSubstr("nothing to undo"));
}

TEST_F(History, anUndoTellsEachChangeAndIsAnEntryItself) {
  store(0x41);
  ok({"rename", "voice:user1:6", "Grand"});
  const Json change = json({"undo", "--json"});
  EXPECT_EQ(change.dump(), R"({"content":"voice:user1:6","what":"renamed","before":"Grand","after":")" +
                               std::string(20, 'A') + R"("})");
  EXPECT_EQ(history()[0]["verb"], "undo");
  EXPECT_EQ(history()[0]["undoes"], 2);
  EXPECT_EQ(history()[1]["undoneBy"], 3);
  ok({"undo", "3"});
  EXPECT_EQ(json({"show", "voice:user1:6", "--json"})["voice"]["name"], "Grand");
  EXPECT_EQ(history()[2]["undoneBy"], nullptr);
}

TEST_F(History, aConflictNamesThePlaceAndChangesNothingWithoutForce) {
  store(0x41);
  ok({"rename", "voice:user1:6", "Grand"});
  ok({"rename", "voice:user1:6", "Upright"});
  const Result refused = bda({"undo", "2"});
  EXPECT_THAT(refused, Exits(3));
  EXPECT_THAT(refused.err,
              AllOf(HasSubstr("voice:user1:6: no longer holds what entry 2 left there"), HasSubstr("--force")));
  EXPECT_THAT(history(), SizeIs(3));
  EXPECT_THAT(bda({"undo", "2", "--force", "--dry-run"}), Exits(0));
  EXPECT_THAT(history(), SizeIs(3));
  ok({"undo", "2", "--force"});
  EXPECT_EQ(json({"show", "voice:user1:6", "--json"})["voice"]["name"], std::string(20, 'A'));
  EXPECT_THAT(bda({"undo", "99"}), Exits(3));
  for (const char* entry : {"none", "0", "-1", "18446744073709551616"}) {
    const Result undo = bda({"undo", "--", entry});
    EXPECT_THAT(undo, Exits(1)) << entry;
    EXPECT_THAT(undo.err, HasSubstr("expected a number from 1 to 9223372036854775807")) << entry;
  }
}

// One that counts as undone because of its newest undo is not put back over it.
TEST_F(History, whatIsUndoneCannotBeUndoneOnceMore) {
  store(0x41);
  store(0x42);
  for (const char* entry : {"2", "3", "2"}) ok({"undo", entry});
  EXPECT_EQ(history()[1]["undoneBy"], nullptr) << "entry 4, the undo of 3";
  const std::string before = backup();
  for (const std::vector<std::string>& words : {std::vector<std::string>{"undo", "3"},
                                                {"undo", "3", "--force"},
                                                {"undo", "2"},
                                                {"undo", "2", "--force"},
                                                {"undo", "2", "--force", "--dry-run"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err,
                HasSubstr(words[1] == "3" ? "entry 3 is already undone, by 4" : "entry 2 is already undone, by 5"));
    EXPECT_THAT(history(), SizeIs(5));
  }
  EXPECT_EQ(backup(), before);
  ok({"undo"});
  EXPECT_EQ(history()[0]["undoes"], 1);
}

TEST_F(History, allPlacesOfAConflictAreToldWithV) {
  std::string names[2];
  for (int i = 1; i <= 25; ++i) {
    write("voice.syx", {unit({0x0E, 0x0A, std::uint8_t(i)}, BDA::List::normalVoice, 0x41)});
    ok({"receive", "-q", "voice.syx"});
    for (int round = 0; round < 2; ++round)
      names[round] += "voice:user1:" + std::to_string(i + 1) + (round == 0 ? " One\n" : " Two\n");
  }
  for (const std::string& table : names) {
    write("names", table);
    ok({"rename", "-q", "--from", "names"});
  }
  const auto conflicts = [&](const std::vector<std::string>& words) {
    std::size_t count = 0;
    for (const std::string& line : lines(bda(words).err)) count += line.find("voice:user1:") == 0;
    return count;
  };
  EXPECT_EQ(conflicts({"undo", "26"}), 20U);
  EXPECT_THAT(bda({"undo", "26"}).err, AllOf(HasSubstr("and 5 more"), HasSubstr("all with -v")));
  EXPECT_EQ(conflicts({"undo", "26", "-v"}), 25U);
  for (const char* verb : {"copy", "move", "swap", "undo", "remove", "rename"})
    EXPECT_THAT(bda({"help", verb}).out, HasSubstr("--verbose")) << verb;
}

TEST_F(History, anUndoThatIsImpossibleNamesTheWayOn) {
  store(0x41);
  write("other.syx", {unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1)});
  ok({"receive", "-q", "other.syx"});
  damage("UPDATE content SET checksum = checksum + 1 WHERE number = 0x3F0806");
  ok({"remove", "voice:user1:7"});
  const Result stuck = bda({"undo"});
  EXPECT_THAT(stuck, Exits(3));
  EXPECT_THAT(stuck.err, HasSubstr("entry 3 is not undone, nothing is changed: bda undo 2 takes back the next one"));
}

TEST_F(History, theWayOnPassesOverWhatIsDamagedToo) {
  for (const int value : {0x41, 0x42, 0x43, 0x44}) store(std::uint8_t(value));
  damage("UPDATE change SET held_checksum = held_checksum + 1 WHERE entry > 2");
  EXPECT_THAT(bda({"undo"}).err,
              HasSubstr("entry 4 is not undone, nothing is changed: bda undo 2 takes back the next"));
  damage("UPDATE change SET held_checksum = held_checksum + 1 WHERE entry = 2");
  EXPECT_THAT(bda({"undo", "3"}).err, HasSubstr("entry 3 is not undone, nothing is changed: bda undo 1 takes back"));
  damage("UPDATE entry SET time = -1 WHERE number = 1");
  const Result stuck = bda({"undo"});
  EXPECT_THAT(stuck, Exits(3));
  EXPECT_THAT(stuck.err, HasSubstr("entry 4 is not undone, nothing is changed\n"));
}

// ---- check, and what is damaged -------------------------------------------------------------------------------------

TEST_F(History, checkNamesWhatIsDamagedAndTheOthersAreGood) {
  store(0x41);
  ok({"restore", "-q", "voice.syx"});
  write("other.syx", {unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1)});
  ok({"receive", "-q", "other.syx"});
  EXPECT_THAT(bda({"check"}), Exits(0));
  EXPECT_EQ(bda({"check"}).out, "");
  damage(
      "UPDATE content SET bytes = CAST(substr(bytes, 1, 90) || x'55' || substr(bytes, 92) AS BLOB) WHERE number = "
      "0x3F0805");
  const Result run = bda({"check", "--json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, AllOf(HasSubstr(R"({"content":"voice:user1:6","state":"damaged","reason":)"),
                             HasSubstr(R"({"content":"voice:user1:7","state":"good"})"),
                             HasSubstr(R"({"table":"content","state":"good"})")));
  const Result words = bda({"check"});
  EXPECT_THAT(words.out, HasSubstr("voice:user1:6: damaged"));
  EXPECT_EQ(lines(words.err).back(), "2 contents and live models, 0 opaque, 1 damaged");
}

TEST_F(History, checkCountsWhatIsDamagedInTablesApart) {
  store(0x41);
  store(0x42);
  ok({"move", "voice:user1:6", "voice:user1:7"});
  EXPECT_EQ(lines(bda({"check"}).err).back(), "1 content or live model, 0 opaque, 0 damaged");
  damage("UPDATE change SET held_name = x'4141' WHERE held_name IS NOT NULL");
  const Result run = bda({"check"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.err).back(),
              testing::MatchesRegex("1 content or live model, 0 opaque, 0 damaged; damaged in tables: change [0-9]+, "
                                    "entry [0-9]+"));
}

TEST_F(History, aDamagedContentKeepsNoVerbFromTheOthers) {
  store(0x41);
  write("other.syx", {unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1)});
  ok({"receive", "-q", "other.syx"});
  damage(
      "UPDATE content SET bytes = CAST(substr(bytes, 1, 90) || x'55' || substr(bytes, 92) AS BLOB) WHERE number = "
      "0x3F0805");
  const Result contents = bda({"contents", "--json"});
  EXPECT_THAT(contents, Exits(3));
  EXPECT_THAT(contents.out, HasSubstr("voice:user1:7"));
  EXPECT_THAT(contents.err, HasSubstr("voice:user1:6: it is damaged"));
  const Result show = bda({"show", "voice:user1"});
  EXPECT_THAT(show, Exits(3));
  EXPECT_THAT(show.out, AllOf(HasSubstr("voice:user1:7:"), Not(HasSubstr("voice:user1:6:"))));
  const Result backup = bda({"backup", "-o", "backup.syx"});
  EXPECT_THAT(backup, Exits(3));
  EXPECT_THAT(backup.err, HasSubstr("voice:user1:6: not in the backup"));
  EXPECT_THAT(bda({"list", "backup.syx"}).out, AllOf(HasSubstr("user1:7"), Not(HasSubstr("user1:6"))));
  store(0x22);  // what comes anew is whole again, what the history keeps of it is not
  EXPECT_THAT(bda({"contents"}), Exits(0));
  EXPECT_EQ(lines(bda({"check"}).out),
            std::vector<std::string>{"table change: damaged: entry 3: what voice:user1:6 held before does not fit its "
                                     "checksum"});
  for (const char* force : {"--json", "--force"}) {
    const Result undo = bda({"undo", force});
    EXPECT_THAT(undo, Exits(3));
    EXPECT_THAT(undo.err, HasSubstr("voice:user1:6: what it held before is damaged"));
  }
  EXPECT_THAT(bda({"contents"}), Exits(0));
}

TEST_F(History, aSettingThatIsOffIsOffInItsChangeToo) {
  EXPECT_EQ(json({"settings", "history", "off", "--json"}), change("history", "set", 1000, "off"));
  EXPECT_EQ(json({"settings", "history", "7", "--json"}), change("history", "set", "off", 7));
}

// ---- Libraries of version 1 -----------------------------------------------------------------------------------------

TEST_F(History, aLibraryOfVersion1IsReadAsItIsAndMigratedByItsFirstChange) {
  std::filesystem::remove(libraryFile());
  Editor::makeOldLibrary(libraryFile());
  const std::string old = read("library.db");
  ok({"contents"});
  ok({"history"});
  ok({"check"});
  EXPECT_THAT(bda({"undo"}), Exits(3));
  EXPECT_EQ(read("library.db"), old);
  EXPECT_FALSE(exists("library.db.v1"));
  const Result first = bda({"rename", "voice:user1:6", "Grand"});
  EXPECT_THAT(first, Exits(0));
  EXPECT_THAT(first.err, HasSubstr("the first change brings it to this one, and leaves a copy as"));
  EXPECT_THAT(bda({"rename", "voice:user1:6", "Piano"}).err, Not(HasSubstr("the first change")));
  ok({"undo"});
  EXPECT_EQ(read("library.db.v1"), old);
  EXPECT_EQ(history()[2]["changes"].dump(),
            R"([{"content":"voice:user1:6","what":"renamed","before":"Piano","after":"Grand"}])");
  ok({"undo"});
  ok({"diff", "library.db", "library.db.v1"});
}

TEST_F(History, aLibraryOfVersion1StaysOneToTheByteWhereNothingChanges) {
  write("mix.syx", {fileDump({0x0C, 0x14, 0x02}, "Mix", {1, 2, 3}), dump({0x11, 0x01, 0x00}, {})});
  std::filesystem::remove(libraryFile());
  Editor::makeOldLibrary(libraryFile());
  Editor::PlainDatabase{libraryFile()}("INSERT INTO contents VALUES(4, " +
                                       std::to_string(Editor::mixingVoiceNumber(2, 4)) +
                                       ", CAST('Mix' AS BLOB), x'010203'); DELETE FROM live");
  ok({"backup", "-q", "-o", "all.syx"});
  const std::string old = read("library.db");
  for (const std::vector<std::string>& words : {std::vector<std::string>{"rename", "voice:user1:6", "Piano"},
                                                {"restore", "all.syx"},
                                                {"restore", "mix.syx"},
                                                {"receive", "all.syx"},
                                                {"receive", "mix.syx"},
                                                {"favourite", "voice:user1:6", "on"},
                                                {"settings", "mixing-voices", "7"},
                                                {"settings", "history", "1000"}}) {
    ok(words);
    EXPECT_TRUE(read("library.db") == old) << testing::PrintToString(words);
    EXPECT_FALSE(exists("library.db.v1")) << testing::PrintToString(words);
  }
  ok({"settings", "history", "5"});
  EXPECT_TRUE(read("library.db.v1") == old) << "what the history does not record is a change all the same";
  EXPECT_EQ(bda({"settings", "history"}).out, "5\n");
}
