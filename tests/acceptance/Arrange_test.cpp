// copy, move and swap.

#include "Library.h"
#include "Program.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Arrange : public Program {
 protected:
  // A whole voice in our format, by that name.
  void storeVoice(const std::string& place, const std::string& name, std::uint8_t value = 0x41) {
    const Editor::BulkAddress header = *Editor::findName(place);
    const bool isDrum = place.find("drum") == 0;
    write("voice.syx", {unit(header, isDrum ? BDA::List::drumVoice : BDA::List::normalVoice, value)});
    ASSERT_THAT(bda({"receive", "-q", "voice.syx"}), Exits(0));
    ASSERT_THAT(bda({"rename", "-q", place, name}), Exits(0));
  }

  std::string nameAt(const std::string& place) {
    for (const Json& content : objects({"contents", place, "--json"}))
      if (content["stored"]) return content["name"];
    return "-";
  }
  bool isFavourite(const std::string& place) {
    for (const Json& content : objects({"contents", place, "--json"}))
      if (content["favourite"] != 0) return true;
    return false;
  }
};

// ---- What they do ----

TEST_F(Arrange, copyLeavesTheContentWhereItIsAndTakesItsFlagAlong) {
  storeVoice("voice:user1:6", "Piano");
  storeVoice("voice:user2:1", "Old", 0x11);
  ASSERT_THAT(bda({"favourite", "voice:user1:6", "on"}), Exits(0));
  const std::string shown = bda({"show", "voice:user1:6", "--json"}).out;
  const Result run = bda({"copy", "voice:user1:6", "voice:user2:1"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "stored: voice:user2:1 \"Piano\", replaces \"Old\"\nflagged: voice:user2:1: a favourite\n");
  EXPECT_EQ(bda({"show", "voice:user2:1", "--json"}).out, shown);
  EXPECT_EQ(nameAt("voice:user1:6"), "Piano");
  EXPECT_TRUE(isFavourite("voice:user1:6"));
  EXPECT_TRUE(isFavourite("voice:user2:1"));
}

TEST_F(Arrange, moveLeavesAnEmptyPlaceWithoutAFlag) {
  storeVoice("drum:user:1", "Kit");
  ASSERT_THAT(bda({"favourite", "drum:user:1", "on"}), Exits(0));
  EXPECT_THAT(bda({"move", "0E", "28", "00", "0E", "28", "04"}), Exits(0));
  EXPECT_EQ(nameAt("drum:user:1"), "-");
  EXPECT_FALSE(isFavourite("drum:user:1"));
  EXPECT_EQ(nameAt("drum:user:5"), "Kit");
  EXPECT_TRUE(isFavourite("drum:user:5"));
}

TEST_F(Arrange, swapExchangesAndMovesWhereOneSideIsEmpty) {
  storeVoice("voice:user1:1", "A");
  storeVoice("voice:user2:1", "B");
  storeVoice("voice:user2:2", "Alone");
  const Result run = bda({"swap", "voice:user1", "voice:user2"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("126 places hold nothing, left out: voice:user1:3, voice:user1:4, "));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:22 and 106 more\n"));
  EXPECT_EQ(nameAt("voice:user1:1"), "B");
  EXPECT_EQ(nameAt("voice:user2:1"), "A");
  EXPECT_EQ(nameAt("voice:user1:2"), "Alone");
  EXPECT_EQ(nameAt("voice:user2:2"), "-");
}

TEST_F(Arrange, opaqueBytesStayAsTheyAre) {
  library().store(kMulti1, Bytes{1, 2, 3}, "Foreign");
  EXPECT_THAT(bda({"move", "file:multi:1", "file:multi:2"}), Exits(0));
  EXPECT_FALSE(library().content(kMulti1));
  EXPECT_EQ(library().content(kMulti2), (Editor::Library::Content{"Foreign", {1, 2, 3}}));
  const Result run = bda({"copy", "file:multi:2", "multi:edit"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("file:multi:2: its bytes are not in this editor's format"));
}

TEST_F(Arrange, rangesThatOverlapActAsIfAllWereReadFirst) {
  for (const char* number : {"1", "2", "3"}) storeVoice(std::string("voice:user1:") + number, number);
  EXPECT_THAT(bda({"move", "voice:user1:1..3", "voice:user1:2"}), Exits(0));
  EXPECT_EQ(nameAt("voice:user1:1"), "-");
  EXPECT_EQ(nameAt("voice:user1:2"), "1");
  EXPECT_EQ(nameAt("voice:user1:4"), "3");
  EXPECT_THAT(bda({"copy", "voice:user1:2..4", "voice:user1:1..3"}), Exits(0));
  EXPECT_EQ(nameAt("voice:user1:1"), "1");
  EXPECT_EQ(nameAt("voice:user1:3"), "3");
  EXPECT_EQ(nameAt("voice:user1:4"), "3");
}

TEST_F(Arrange, aNormalVoiceFitsBanksEditBufferMixingVoicesAndParts) {
  storeVoice("voice:user1:1", "Piano");
  const std::string voice = bda({"show", "voice:user1:1", "--json"}).out;
  std::string from = "voice:user1:1";
  for (const std::string to : {"voice:edit", "voice:mix:3", "file:mix:7:2", "voice:gm:1", "voice:user3:128"}) {
    EXPECT_THAT(bda({"copy", from, to}), Exits(0)) << to;
    EXPECT_EQ(bda({"show", to, "--json"}).out, voice) << to;
    from = to;
  }
  EXPECT_THAT(bda({"copy", from, "voice:part:4"}), Exits(0));
  EXPECT_EQ(json({"show", "voice:part:4", "--json"})["voice"], Json::parse(voice)["voice"]);
}

TEST_F(Arrange, aPartKeepsTheMultiThatItPlaysIn) {
  write("multi.syx", {unit({0x0E, 0x5F, 0x00}, BDA::List::multi)});
  ASSERT_THAT(bda({"receive", "multi.syx"}), Exits(0));
  storeVoice("voice:user1:1", "Piano");
  const Json multi = json({"show", "multi:edit", "--json"});
  const Result run = bda({"swap", "voice:user1:1", "voice:part:4"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:part:4 takes the voice of voice:user1:1 alone: its multi stays as it is"));
  EXPECT_EQ(json({"show", "multi:edit", "--json"}), multi);
  EXPECT_EQ(json({"show", "voice:user1:1", "--json"})["multi"], multi["multi"]);
}

TEST_F(Arrange, anEditBufferIsAsNewWhenItWasMoved) {
  const std::string fresh = bda({"show", "voice:edit", "--json"}).out;
  storeVoice("voice:edit", "Edited");
  EXPECT_THAT(
      objects({"move", "voice:edit", "voice:user1:1", "--json"}),
      ElementsAre(change("voice:user1:1", "stored", nullptr, "Edited"), change("voice:edit", "stored", "Edited", "")));
  EXPECT_EQ(bda({"show", "voice:edit", "--json"}).out, fresh);
  EXPECT_EQ(nameAt("voice:user1:1"), "Edited");
}

TEST_F(Arrange, aFlagThatFindsNoPlaceIsDroppedAndThatIsTold) {
  storeVoice("voice:user1:1", "Piano");
  ASSERT_THAT(bda({"favourite", "voice:user1:1", "on"}), Exits(0));
  const Result run = bda({"copy", "voice:user1:1", "voice:mix:1"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:mix:1 cannot be a favourite: it gets no flag\n"));
  EXPECT_THAT(bda({"copy", "voice:user1:1", "voice:mix:1"}).err, "nothing changes\n");
}

// ---- What they refuse ----

TEST_F(Arrange, emptyPlacesOfARangeAreLeftOutAndToldAndNothingAtAllIsRefused) {
  storeVoice("voice:user1:2", "Piano");
  storeVoice("voice:user2:1", "Stays");
  const Result run = bda({"copy", "voice:user1:1..2", "voice:user2:1"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("1 place holds nothing, left out: voice:user1:1\n"));
  EXPECT_EQ(nameAt("voice:user2:1"), "Stays");
  EXPECT_EQ(nameAt("voice:user2:2"), "Piano");
  for (const char* verb : {"copy", "move", "swap"}) {
    EXPECT_THAT(bda({verb, "voice:user3:1", "voice:user3:2"}), Exits(3)) << verb;
    EXPECT_THAT(bda({verb, "voice:user3:1..4", "voice:user3:5"}), Exits(3)) << verb;
  }
  EXPECT_THAT(bda({"copy", "voice:user3", "voice:user1"}).err, HasSubstr("voice:user3: nothing is stored there"));
}

TEST_F(Arrange, kindsThatDoNotFitAreRefusedAndNothingChanges) {
  storeVoice("voice:user1:1", "Piano");
  storeVoice("drum:user:1", "Kit");
  const std::string before = bda({"contents", "--json"}).out;
  for (const char* verb : {"copy", "move", "swap"})
    for (const char* to : {"drum:user:1", "drum:edit", "performance:a:1", "file:multi:1", "master:1", "remote:edit"})
      EXPECT_THAT(bda({verb, "voice:user1:1", to}), Exits(3)) << verb << ' ' << to;
  EXPECT_THAT(bda({"copy", "voice:user1:1", "drum:edit"}).err,
              HasSubstr("voice:user1:1: a normal voice does not fit drum:edit, which takes a drum voice"));
  EXPECT_EQ(bda({"contents", "--json"}).out, before);
}

TEST_F(Arrange, mixingVoicesBeyondTheirNumberAreRefusedAndNothingChanges) {
  for (const char* place : {"voice:user1:1", "voice:user1:2"}) storeVoice(place, place);
  ASSERT_THAT(bda({"settings", "mixing-voices", "1"}), Exits(0));
  EXPECT_THAT(bda({"move", "voice:user1:1..2", "voice:mix:1"}), Exits(3));
  EXPECT_EQ(nameAt("voice:user1:1"), "voice:user1:1");
  EXPECT_EQ(nameAt("voice:mix:1"), "-");
  EXPECT_THAT(bda({"move", "voice:user1:1", "voice:mix:1"}), Exits(0));
  EXPECT_THAT(bda({"move", "voice:mix:1", "file:mix:7:1"}), Exits(0));
}

TEST_F(Arrange, whatOverlapsIsNotSwapped) {
  storeVoice("voice:user1:1", "Piano");
  const Result run = bda({"swap", "voice:user1:1..3", "voice:user1:2"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:2 is on both sides: what overlaps cannot be swapped"));
}

// ---- Another library ----

TEST_F(Arrange, copyTakesFromAnotherLibraryAndLeavesItAlone) {
  storeVoice("voice:user1:1", "Theirs");
  std::filesystem::rename(libraryFile(), directory / "other.db");
  const std::string other = read("other.db");
  const Result run = bda({"copy", "voice:user1", "voice:user2", "--from-library", "other.db"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("library.db: no library yet, the first change makes one\n"));
  EXPECT_EQ(nameAt("voice:user2:1"), "Theirs");
  EXPECT_EQ(nameAt("voice:user1:1"), "-");
  EXPECT_TRUE(read("other.db") == other);
  EXPECT_FALSE(exists("other.db-wal"));
}

TEST_F(Arrange, theOtherLibraryMayBeTheSame) {
  storeVoice("voice:user1:1", "Ours");
  EXPECT_THAT(bda({"copy", "voice:user1:1", "voice:user1:2", "--from-library", "library.db"}), Exits(0));
  EXPECT_EQ(nameAt("voice:user1:2"), "Ours");
}

TEST_F(Arrange, anotherLibraryThatIsNotThereOrNoneIsUnusable) {
  removeLibrary();
  write("notes.txt", "notes");
  for (const char* file : {"none.db", "notes.txt"}) {
    const Result run = bda({"copy", "voice:edit", "voice:user1:1", "--from-library", file});
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, HasSubstr(file));
  }
  EXPECT_FALSE(exists("library.db"));
  EXPECT_FALSE(exists("none.db"));
}

// ---- Told, and only told ----

TEST_F(Arrange, eachChangeIsAnObject) {
  storeVoice("voice:user1:1", "A");
  storeVoice("voice:user1:2", "B");
  ASSERT_THAT(bda({"favourite", "voice:user1:1", "on"}), Exits(0));
  EXPECT_THAT(objects({"copy", "voice:user1:1", "voice:user1:2", "--json"}),
              ElementsAre(change("voice:user1:2", "stored", "B", "A"), change("voice:user1:2", "flagged", 0, 1)));
  EXPECT_THAT(objects({"move", "file:voice:user1:1", "voice:mix:1", "--json"}),
              ElementsAre(change("voice:user1:1", "removed", "A", nullptr),
                          change("voice:mix:1", "stored", nullptr, "A"), change("voice:user1:1", "flagged", 1, 0)));
  EXPECT_THAT(objects({"copy", "voice:mix:1", "file:mix:1:1", "--json"}), IsEmpty());
}

TEST_F(Arrange, aDryRunSaysTheSameAndChangesNothing) {
  storeVoice("voice:user1:1", "A");
  storeVoice("voice:user2:1", "B");
  const std::string before = read("library.db");
  for (const char* verb : {"copy", "move", "swap"}) {
    const Result words = bda({verb, "voice:user1:1", "voice:user2:1", "--dry-run"});
    EXPECT_THAT(words, Exits(0));
    EXPECT_THAT(words.out, HasSubstr("would store: voice:user2:1 \"A\", replaces \"B\"\n"));
    EXPECT_EQ(words.err, "");
  }
  const auto told = objects({"move", "voice:user1:1", "voice:user2:1", "--json", "--dry-run"});
  EXPECT_TRUE(read("library.db") == before);
  EXPECT_FALSE(exists("library.db-wal"));
  EXPECT_EQ(objects({"move", "voice:user1:1", "voice:user2:1", "--json"}), told);
  EXPECT_EQ(nameAt("voice:user1:1"), "-");
}

TEST_F(Arrange, aDryRunMakesNoLibrary) {
  removeLibrary();
  const Result run = bda({"copy", "voice:edit", "voice:user1:1", "--dry-run"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "would store: voice:user1:1\n");
  EXPECT_FALSE(exists("library.db"));
}

}  // namespace
