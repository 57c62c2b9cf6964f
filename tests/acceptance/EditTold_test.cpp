// What rename, favourite, remove and apply say of their changes, or would change; banks, ranges and tables.

#include "Library.h"
#include "Program.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Words = std::vector<std::string>;

class EditTold : public Program {
 protected:
  EditTold() {
    write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
    EXPECT_THAT(bda({"receive", "-q", "voice.syx"}), Exits(0));
    EXPECT_THAT(bda({"rename", "-q", "voice:user1:6", "Piano"}), Exits(0));
  }
};

TEST_F(EditTold, eachVerbTellsItsChangesAsObjectsAndADryRunTheSame) {
  const std::string shown = bda({"show", "voice:user1:6", "--json"}).out;
  write("voice.json", shown);
  write("system.json", bda({"show", "system", "--json"}).out);
  const struct {
    Words words;
    Json told;
  } verbs[] = {{{"rename", "voice:user1:6", "Grand"}, change("voice:user1:6", "renamed", "Piano", "Grand")},
               {{"rename", "drum:edit", "Kit"}, change("drum:edit", "renamed", "", "Kit")},
               {{"favourite", "file:voice:user1:6", "on"}, change("voice:user1:6", "flagged", 0, 1)},
               {{"favourite", "voice:user1:6", "off"}, change("voice:user1:6", "flagged", 1, 0)},
               {{"apply", "voice:user1:6", "voice.json"}, change("voice:user1:6", "stored", "Grand", "Piano")},
               {{"apply", "voice:user1:7", "voice.json"}, change("voice:user1:7", "stored", nullptr, "Piano")},
               {{"apply", "system", "system.json"}, change("system", "stored", nullptr, "")},
               {{"remove", "voice:user1:7"}, change("voice:user1:7", "removed", "Piano", nullptr)}};
  for (const auto& [verb, told] : verbs) {
    Words words = verb;
    words.insert(words.end(), {"--json", "--dry-run"});
    const std::string before = read("library.db");
    EXPECT_THAT(objects(words), ElementsAre(told)) << testing::PrintToString(words);
    EXPECT_TRUE(read("library.db") == before) << testing::PrintToString(words);
    words.pop_back();
    EXPECT_THAT(objects(words), ElementsAre(told)) << testing::PrintToString(words);
  }
}

TEST_F(EditTold, restoreTellsWhatItChangedAsTheHistoryDoes) {
  write("dump.syx",
        {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42), unit({0x0E, 0x70, 0x00}, BDA::List::master, 0x43)});
  const std::vector<Json> told = objects({"restore", "dump.syx", "--json", "--dry-run"});
  EXPECT_THAT(told, ElementsAre(change("voice:user1:6", "stored", "Piano", std::string(20, 'B')),
                                change("master:1", "stored", nullptr, std::string(20, 'C'))));
  EXPECT_EQ(library().contentName(kUserVoice6), "Piano");
  EXPECT_EQ(objects({"restore", "dump.syx", "--json"}), told);
  EXPECT_THAT(objects({"restore", "dump.syx", "--json"}), IsEmpty());
  EXPECT_EQ(json({"history", "--json", "-n", "1"})["changes"], Json(told));
  ASSERT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_THAT(objects({"restore", "dump.syx", "--json", "--any-device", "--dry-run"}), IsEmpty());
  EXPECT_THAT(objects({"restore", "dump.syx", "--json", "--any-device"}), IsEmpty());
  EXPECT_EQ(bda({"settings", "receive-bulk"}).out, "off\n");
}

TEST_F(EditTold, aDryRunSaysInWordsWhatWouldHappen) {
  EXPECT_EQ(bda({"rename", "voice:user1:6", "Grand", "--dry-run"}).out,
            "would rename: voice:user1:6 \"Piano\" to \"Grand\"\n");
  EXPECT_EQ(bda({"favourite", "voice:user1:6", "on", "--dry-run"}).out, "would flag: voice:user1:6: a favourite\n");
  EXPECT_EQ(bda({"remove", "voice:user1:6", "--dry-run"}).out, "would remove: voice:user1:6 \"Piano\"\n");
  EXPECT_EQ(library().contentName(kUserVoice6), "Piano");
  EXPECT_EQ(library().favourite(kUserVoice6), 0);
}

TEST_F(EditTold, ofManyChangesTwentyOfAKindHaveALine) {
  {
    Editor::Library many(libraryFile());
    for (std::uint32_t number = 0; number < 25; ++number) many.store({1, number}, Bytes{1}, "Name");
  }
  const std::vector<std::string> removed = lines(bda({"remove", "file:multi:1..25"}).err);
  ASSERT_THAT(removed, testing::SizeIs(21));
  EXPECT_EQ(removed[19], "removed: file:multi:20 \"Name\"");
  EXPECT_EQ(removed[20], "and 5 more removed: all with -v");
  EXPECT_THAT(lines(bda({"undo", "-v"}).err), testing::SizeIs(25 + 1));
  EXPECT_THAT(lines(bda({"remove", "file:multi", "--dry-run"}).out), testing::SizeIs(25));
}

TEST_F(EditTold, aDryRunRefusesWhatTheVerbRefuses) {
  for (const Words& words : std::vector<Words>{{"rename", "voice:user1:7", "Name"},
                                               {"favourite", "voice:user1:7", "on"},
                                               {"remove", "voice:user1:6", "master:1"}}) {
    Words rehearsed = words;
    rehearsed.emplace_back("--dry-run");
    EXPECT_THAT(bda(rehearsed), Exits(3)) << testing::PrintToString(words);
  }
}

TEST_F(EditTold, whatIsAFavouriteAlreadyIsNoChange) {
  ASSERT_THAT(bda({"favourite", "voice:user1:6", "on"}), Exits(0));
  EXPECT_THAT(objects({"favourite", "voice:user1:6", "on", "--json"}), IsEmpty());
  EXPECT_EQ(bda({"favourite", "voice:user1:6", "on"}).err, "nothing changes\n");
}

// ---- remove ----

TEST_F(EditTold, removeTakesBanksAndRangesAndTellsEmptyPlaces) {
  library().store(kMulti1, Bytes{1}, "One");
  library().store(kMulti2, Bytes{1}, "Two");
  const Result run = bda({"remove", "voice:user1:1..8", "file:multi"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:1..8: 7 places hold nothing\n"));
  EXPECT_THAT(run.err, HasSubstr("file:multi: 126 places hold nothing\n"));
  EXPECT_THAT(run.err, HasSubstr("removed: file:multi:2 \"Two\"\n"));
  EXPECT_THAT(library().contents(), IsEmpty());
}

TEST_F(EditTold, removeTakesNothingWhenARangeOrASinglePlaceIsEmpty) {
  for (const Words& words : std::vector<Words>{{"remove", "voice:user1:1..5"},
                                               {"remove", "voice:user1:6", "voice:user2"},
                                               {"remove", "voice:user1", "voice:user2:1"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr("nothing is stored there; nothing is removed"));
  }
  EXPECT_EQ(library().contentName(kUserVoice6), "Piano");
  EXPECT_THAT(bda({"remove", "voice:part"}), Exits(1));
}

TEST_F(EditTold, whatIsNamedTwiceIsRemovedOnce) {
  EXPECT_THAT(objects({"remove", "voice:user1:6", "voice:user1", "0C0A05", "--json"}),
              ElementsAre(change("voice:user1:6", "removed", "Piano", nullptr)));
}

// ---- Tables of names ----

TEST_F(EditTold, aTableRenamesAllThatItNames) {
  library().store(kMulti1, Bytes{1}, "One");
  write("names.txt", "# mine\nvoice:user1:6 Grand Piano\nfile:multi:1 First\nmaster:edit Stage\n");
  EXPECT_THAT(objects({"rename", "--from", "names.txt", "--json"}),
              ElementsAre(change("file:multi:1", "renamed", "One", "First"),
                          change("voice:user1:6", "renamed", "Piano", "Grand Piano"),
                          change("master:edit", "renamed", "", "Stage")));
  EXPECT_EQ(library().contentName(kUserVoice6), "Grand Piano");
  EXPECT_EQ(json({"show", "voice:user1:6", "--json"})["voice"]["name"], "Grand Piano");
  EXPECT_EQ(json({"show", "master:edit", "--json"})["master"]["name"], "Stage");
  EXPECT_THAT(bda({"rename", "--from", "-"}, "voice:user1:6 Again\n"), Exits(0));
  EXPECT_EQ(library().contentName(kUserVoice6), "Again");
}

TEST_F(EditTold, aTableRenamesAllOrNothing) {
  const struct {
    const char* line;
    int code;
    const char* why;
  } bad[] = {{"voice:user1:7 Name", 3, "names.txt: line 2: voice:user1:7: nothing is stored there"},
             {"master:edit 123456789012345678901", 3, "names.txt: line 2: master:edit: "},
             {"multi:edit Name", 3, "names.txt: line 2: multi:edit: no message carries a name for it"},
             {"voice:usr1:6 Name", 2, "names.txt: line 2: "},
             {"system Name", 2, "names.txt: line 2: system has no name"},
             {"voice:user1:6 Twice", 2, "names.txt: line 2: voice:user1:6 occurs twice"},
             {"master:edit \"Grand\"", 2, "names.txt: line 2: a name stands here without quotes"},
             {"master:edit", 2, "names.txt: line 2: expected a name behind master:edit"}};
  for (const auto& [line, code, why] : bad) {
    write("names.txt", std::string("voice:user1:6 New\n") + line + "\n");
    const Result run = bda({"rename", "--from", "names.txt"});
    EXPECT_THAT(run, Exits(code)) << line;
    EXPECT_THAT(run.err, HasSubstr(why));
    EXPECT_EQ(library().contentName(kUserVoice6), "Piano");
  }
  EXPECT_THAT(bda({"rename", "--from", "none.txt"}), Exits(2));
}

}  // namespace
