// rename, favourite, remove, and the names of waveforms and arpeggios.

#include <tuple>

#include "Library.h"
#include "Program.h"

using testing::HasSubstr;

namespace {

class Edit : public Program {
 protected:
  void storeVoice() {
    write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
    ASSERT_THAT(bda({"receive", "-q", "voice.syx"}), Exits(0));
  }
};

}  // namespace

// ---- rename ----

TEST_F(Edit, renameChangesTheNameOfTheContentAndThatInside) {
  storeVoice();
  Json before = json({"show", "voice:user1:6", "--json"});
  EXPECT_THAT(bda({"rename", "0E", "0A", "05", "Grand Piano"}), Exits(0));
  EXPECT_EQ(library().contentName(kUserVoice6), "Grand Piano");
  before["voice"]["name"] = "Grand Piano";
  EXPECT_EQ(json({"show", "voice:user1:6", "--json"}), before);
}

TEST_F(Edit, aNameMayBeginWithADashBehindTwoOfThem) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"rename", "drum:edit", "--", "-x"},
                                                {"rename", "--", "drum:edit", "-x"},
                                                {"rename", "0E", "2F", "00", "-v", "--", "-x"}}) {
    ASSERT_THAT(bda({"rename", "drum:edit", "before"}), Exits(0));
    EXPECT_THAT(bda(words), Exits(0)) << testing::PrintToString(words);
    EXPECT_EQ(json({"show", "drum:edit", "--json"})["voice"]["name"], "-x");
  }
}

TEST_F(Edit, aNameWithBlanksOutsideOfQuotesIsExplained) {
  const Result run = bda({"rename", "0E", "70", "00", "Foo", "Bar"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("a name with blanks stands in quotes"));
  EXPECT_THAT(bda({"rename", "write", "X"}).err, HasSubstr("11 00 00 (write trigger) is no target"));
}

TEST_F(Edit, renameKeepsOpaqueBytes) {
  library().store(kMulti1, Bytes{1, 2, 3}, "Old");
  EXPECT_THAT(bda({"rename", "file:multi:1", "New"}), Exits(0));
  EXPECT_EQ(library().content(kMulti1)->name, "New");
  EXPECT_EQ(library().content(kMulti1)->bytes, (Bytes{1, 2, 3}));
}

TEST_F(Edit, editBuffersHaveNamesToo) {
  for (const auto& [target, model, name] : {std::tuple("performance:edit", "multi", "name"),
                                            {"drum:edit", "voice", "name"},
                                            {"voice:part:4", "voice", "name"},
                                            {"master:edit", "master", "name"},
                                            {"remote:edit", "remote", "name1"}}) {
    Json models = json({"show", target, "--json"});
    EXPECT_THAT(bda({"rename", target, "My Name"}), Exits(0));
    models[model][name] = "My Name";
    EXPECT_EQ(json({"show", target, "--json"}), models);
  }
}

TEST_F(Edit, renameIsRefusedWithAReasonAndChangesNothing) {
  storeVoice();
  library().store({14, 0}, Bytes{1}, "");
  const std::string before = bda({"show", "voice:user1:6", "--json"}).out;
  const struct {
    const char* target;
    const char* name;
    const char* why;
  } refused[] = {{"voice:user1:7", "New", "voice:user1:7: nothing is stored there"},
                 {"voice:user1:6", "123456789012345678901", "has 21 characters, a name here has at most 20"},
                 {"remote:edit", "12345678901234", "has 14 characters, a name here has at most 13"},
                 {"voice:user1:6", "\xC3\xA9t\xC3\xA9", "has a character that cannot be carried"},
                 {"multi:edit", "New", "multi:edit: no message carries a name for it"},
                 {"file:single", "New", "file:single: no message carries a name for it"}};
  for (const auto& [target, name, why] : refused) {
    const Result run = bda({"rename", target, name});
    EXPECT_THAT(run, Exits(3)) << target;
    EXPECT_THAT(run.err, HasSubstr(why));
  }
  EXPECT_EQ(bda({"show", "voice:user1:6", "--json"}).out, before);
  EXPECT_THAT(bda({"rename", "system", "New"}), Exits(1));
  EXPECT_THAT(bda({"rename", "voice:user1:6"}), Exits(1));
}

// ---- favourite ----

TEST_F(Edit, aFavouriteIsMadeAndUnmade) {
  storeVoice();
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "on"}), Exits(0));
  EXPECT_EQ(library().favourite(kUserVoice6), 1);
  EXPECT_THAT(bda({"favourite", "0E0A05", "off"}), Exits(0));
  EXPECT_EQ(library().favourite(kUserVoice6), 0);
}

TEST_F(Edit, aPlaceWithoutContentIsNoFavouriteButCanLoseItsFlag) {
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "on"}).err, HasSubstr("voice:user1:6: nothing is stored there"));
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "off"}), Exits(3));
  library().setFavourite(kUserVoice6, 1);
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "off"}), Exits(0));
  EXPECT_EQ(library().favourite(kUserVoice6), 0);
}

TEST_F(Edit, favouriteTakesListsBanksAndRangesAsOneChange) {
  for (const std::uint32_t number : {0U, 2U, 5U}) library().store({4, 0x3F0800 + number}, Bytes{1}, "Voice");
  library().setFavourite({4, 0x3F0803}, 1);  // of an empty place
  ASSERT_THAT(bda({"favourite", "voice:user1:1", "on"}), Exits(0));
  const std::vector<Json> told{change("voice:user1:3", "flagged", 0, 1), change("voice:user1:6", "flagged", 0, 1)};
  EXPECT_EQ(objects({"favourite", "voice:user1:1..4", "voice:user1:6", "on", "--json", "--dry-run"}), told);
  EXPECT_EQ(library().favourite({4, 0x3F0802}), 0);
  EXPECT_EQ(objects({"favourite", "voice:user1:1..4", "voice:user1:6", "on", "--json"}), told);
  EXPECT_EQ(json({"history", "--json", "-n", "1"})["changes"], Json(told));
  EXPECT_THAT(bda({"favourite", "voice:user1:6..7", "on"}).err, HasSubstr("1 place holds nothing and has no flag\n"));
  const Result off = bda({"favourite", "voice:user1", "off"});
  EXPECT_THAT(off, Exits(0));
  EXPECT_THAT(off.err, HasSubstr("voice:user1: 124 places hold nothing and have no flag\n"));
  EXPECT_TRUE(library().favourites().empty());
  EXPECT_THAT(bda({"undo"}), Exits(0));
  EXPECT_EQ(library().favourites().size(), 4u);
}

TEST_F(Edit, favouriteTakesAllThatAreNamedOrNone) {
  storeVoice();
  const Result empty = bda({"favourite", "voice:user1:6", "voice:user2:1..3", "on"});
  EXPECT_THAT(empty, Exits(3));
  EXPECT_THAT(empty.err, HasSubstr("voice:user2:1..3: nothing is stored there"));
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "master", "on"}), Exits(3));
  EXPECT_EQ(library().favourite(kUserVoice6), 0);
  EXPECT_THAT(bda({"favourite", "on"}), Exits(1));
}

TEST_F(Edit, whereOnePlaceIsTakenABankOrARangeIsNone) {
  storeVoice();
  write("a.json", "{}");
  for (const char* several : {"voice:user1", "voice:user1:1..6", "voice:user1:1-6"})
    for (const std::vector<std::string>& words : {std::vector<std::string>{"rename", several, "Name"},
                                                  {"apply", several, "a.json"},
                                                  {"find", "--like", several}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(1));
      EXPECT_THAT(run.err, HasSubstr("expected one place, not a bank or a range")) << words.front();
    }
}

TEST_F(Edit, whatNoBlockOfFavouritesHoldsIsRefused) {
  library().store(kMulti1, Bytes{1}, "Multi");
  const Result run = bda({"favourite", "file:multi:1", "on"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("only preset, GM and user voices and drum voices can be favourites"));
  EXPECT_THAT(bda({"favourite", "voice:edit", "on"}), Exits(1));
  EXPECT_THAT(bda({"favourite", "voice:user1:6", "yes"}), Exits(1));
}

// ---- remove ----

TEST_F(Edit, removeTakesAllThatAreNamedAndLeavesTheirFlags) {
  library().store(kUserVoice6, Bytes{1}, "Voice");
  library().store(kMulti1, Bytes{1}, "Multi");
  library().setFavourite(kUserVoice6, 1);
  EXPECT_THAT(bda({"remove", "0E", "0A", "05", "file:multi:1", "file:voice:user1:6"}), Exits(0));
  EXPECT_TRUE(library().contents().empty());
  EXPECT_EQ(library().favourite(kUserVoice6), 1);
}

TEST_F(Edit, removeTakesNothingWhenOneIsNotThere) {
  library().store(kUserVoice6, Bytes{1}, "Voice");
  const Result run = bda({"remove", "voice:user1:6", "master:1"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("master:1: nothing is stored there"));
  EXPECT_EQ(library().contents().size(), 1u);
  EXPECT_THAT(bda({"remove", "voice:edit"}), Exits(1));
}

// ---- Names of waveforms and arpeggios ----

TEST_F(Edit, aFileOfNamesReplacesTheBuiltInOnes) {
  write("mine.txt", "# mine\nwaveform 2 Hammer\narpeggio 1 Stairs\n");
  const auto waveforms = [&](const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"request", "names:waveforms:1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return bda(arguments).out;
  };
  EXPECT_THAT(waveforms({}), HasSubstr("Sine"));
  EXPECT_THAT(waveforms({"--names", "mine.txt"}), HasSubstr("Hammer"));
  EXPECT_THAT(waveforms({"--names", "mine.txt"}), testing::Not(HasSubstr("Sine")));
  EXPECT_THAT(bda({"request", "names:arpeggios:1", "--names", "mine.txt"}).out, HasSubstr("Stairs"));
  write("library.db.names", "waveform 1 Beside\n");
  EXPECT_THAT(waveforms({}), HasSubstr("Beside"));
}

TEST_F(Edit, aFileOfNamesThatIsWrongIsNoConcernOfOtherVerbs) {
  write("library.db.names", "nonsense\n");
  EXPECT_THAT(bda({"settings"}), Exits(0));
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"request", "names:waveforms:1"}), Exits(2));
}

TEST_F(Edit, aFileOfNamesThatIsWrongIsRefusedWithItsLine) {
  write("long.txt", "waveform 1 Sine\nwaveform 2 " + std::string(29, 'x') + "\n");
  const Result run = bda({"request", "names:waveforms:1", "--names", "long.txt"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("long.txt: line 2: the name has 29 characters, at most 28 are possible"));
  EXPECT_THAT(bda({"request", "names:waveforms:1", "--names", "none.txt"}), Exits(2));
}
