#include "arrange/Arrange.h"

#include "editor/arrange/ArrangeFixture.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Arrange : public ArrangeTest {};

// ---- copy ----

TEST_F(Arrange, aCopyIsTheSameContentByteForByte) {
  store("voice:user1:1", "Piano", 7);
  const Run arranged = copy("voice:user1:1", "voice:user2:3");
  EXPECT_THAT(arranged.changes, ElementsAre(stored("voice:user2:3", nothing, "Piano")));
  EXPECT_EQ(editor.library().content(id("voice:user2:3")), editor.library().content(id("voice:user1:1")));
  EXPECT_EQ(nameAt("voice:user1:1"), "Piano");
}

TEST_F(Arrange, whatIsOverwrittenIsToldByItsName) {
  store("voice:user1:1", "Piano", 7);
  store("voice:user2:3", "Strings");
  EXPECT_THAT(copy("voice:user1:1", "voice:user2:3").changes, ElementsAre(stored("voice:user2:3", "Strings", "Piano")));
}

TEST_F(Arrange, aNameInTheListGoesAlongThoughTheContentCallsItselfOtherwise) {
  store("voice:user1:1", "Inside");
  const Library::Content content = *editor.library().content(id("voice:user1:1"));
  editor.library().store(id("voice:user1:1"), content.bytes, "In the list");
  copy("voice:user1:1", "voice:mix:1");
  EXPECT_EQ(editor.library().content(id("voice:mix:1")), (Library::Content{"In the list", content.bytes}));
}

TEST_F(Arrange, opaqueBytesGoByteForByteBetweenContents) {
  storeOpaque("file:multi:1", "Foreign", {1, 2, 3});
  storeOpaque("voice:user1:1", "Strange", {4, 5});
  copy("file:multi:1", "file:multi:9");
  copy("voice:user1:1", "file:mix:3:5");
  EXPECT_EQ(editor.library().content(id("file:multi:9")), (Library::Content{"Foreign", {1, 2, 3}}));
  EXPECT_EQ(editor.library().content(id("file:mix:3:5")), (Library::Content{"Strange", {4, 5}}));
}

TEST_F(Arrange, opaqueBytesNeverGoToAnEditBuffer) {
  store("voice:edit", "Edited");
  storeOpaque("voice:user1:1", "Strange", {4, 5});
  for (const Kind kind : {Kind::copy, Kind::move, Kind::swap})
    EXPECT_EQ(refusal(kind, "voice:user1:1", "voice:edit"), "voice:user1:1: its bytes are not in this editor's format");
  EXPECT_EQ(nameAt("voice:edit"), "Edited");
  EXPECT_EQ(nameAt("voice:user1:1"), "Strange");
}

TEST_F(Arrange, emptyPlacesOfARangeAreLeftOutAndWhatTheyWouldReplaceStays) {
  store("master:1", "One");
  store("master:3", "Three");
  store("master:12", "Stays");
  const Run arranged = copy("master:1..4", "master:11");
  EXPECT_THAT(arranged.leftOut, ElementsAre("master:2", "master:4"));
  EXPECT_THAT(arranged.changes,
              ElementsAre(stored("master:11", nothing, "One"), stored("master:13", nothing, "Three")));
  EXPECT_EQ(nameAt("master:12"), "Stays");
}

TEST_F(Arrange, nothingAtAllIsRefused) {
  EXPECT_EQ(refusal(Kind::copy, "voice:user1:1", "voice:user1:2"), "voice:user1:1: nothing is stored there");
  EXPECT_EQ(refusal(Kind::move, "remote:1..9", "remote:11"), "remote:1..9: nothing is stored there");
  EXPECT_EQ(refusal(Kind::swap, "master:1", "master:2"), "master:1 and master:2: nothing is stored there");
}

TEST_F(Arrange, whatOverlapsIsReadFirst) {
  for (const char* place : {"master:1", "master:2", "master:3"}) store(place, place);
  copy("master:1..3", "master:2");
  EXPECT_EQ(nameAt("master:1"), "master:1");
  EXPECT_EQ(nameAt("master:2"), "master:1");
  EXPECT_EQ(nameAt("master:4"), "master:3");
  move("master:2..4", "master:1");
  EXPECT_EQ(nameAt("master:1"), "master:1");
  EXPECT_EQ(nameAt("master:3"), "master:3");
  EXPECT_EQ(nameAt("master:4"), "-");
}

TEST_F(Arrange, ontoItselfNothingChanges) {
  store("voice:mix:1", "Mixing");
  flag("voice:user1:1");
  store("voice:user1:1", "Voice");
  EXPECT_THAT(copy("voice:mix:1", "file:mix:1:1").changes, IsEmpty());
  EXPECT_THAT(move("voice:user1:1..9", "voice:user1:1..9").changes, IsEmpty());
  EXPECT_EQ(nameAt("voice:user1:1"), "Voice");
  EXPECT_EQ(flagAt("voice:user1:1"), 1);
}

// ---- Kinds ----

TEST_F(Arrange, aNormalVoiceFitsEveryPlaceOfOne) {
  store("voice:user1:1", "Voice");
  for (const char* place :
       {"voice:preset1:1", "voice:gm:1", "voice:edit", "voice:mix:1", "file:mix:128:16", "voice:part:3"}) {
    EXPECT_EQ(refusal(Kind::copy, "voice:user1:1", place), "") << place;
    EXPECT_EQ(nameAt(place), "Voice");
    EXPECT_EQ(refusal(Kind::copy, place, "voice:user3:1"), "") << place;
    EXPECT_EQ(nameAt("voice:user3:1"), "Voice");
  }
}

TEST_F(Arrange, theOtherKindsGoBetweenTheirPlacesAndEditBuffers) {
  const std::pair<const char*, const char*> fits[] = {{"drum:user:1", "drum:edit"},
                                                      {"drum:edit", "drum:gm"},
                                                      {"drum:gm", "drum:preset:64"},
                                                      {"performance:a:1", "performance:edit"},
                                                      {"performance:edit", "performance:b:128"},
                                                      {"master:1", "master:edit"},
                                                      {"master:edit", "master:2"},
                                                      {"remote:1", "remote:edit"},
                                                      {"remote:edit", "remote:50"}};
  for (const char* place : {"drum:user:1", "performance:a:1", "master:1", "remote:1"}) store(place, "Name");
  for (const auto& [from, to] : fits) {
    EXPECT_EQ(refusal(Kind::copy, from, to), "") << from;
    EXPECT_EQ(nameAt(to), "Name") << to;
  }
}

TEST_F(Arrange, multisGoBetweenTheirPlacesAndTheEditBuffer) {
  store("multi:edit", "Multi", 9);
  copy("multi:edit", "file:multi:1");
  EXPECT_EQ(nameAt("file:multi:1"), "Multi");
  store("multi:edit", "Other", 1);
  copy("file:multi:1", "multi:edit");
  EXPECT_EQ(nameAt("multi:edit"), "Multi");
  EXPECT_EQ(multiAt("multi:edit"), 9);
}

TEST_F(Arrange, kindsThatDoNotFitAreRefusedBeforeAnythingChanges) {
  for (const char* place : {"voice:user1:1", "drum:user:1", "performance:a:1", "master:1", "remote:1"})
    store(place, place);
  storeOpaque("file:single", "Single", {1});
  storeOpaque("file:multi:1", "Multi", {1});
  const char* const places[] = {"voice:user1:1", "drum:user:1", "file:multi:1", "performance:a:1",
                                "master:1",      "remote:1",    "file:single"};
  const auto before = editor.library().takeChanges();
  for (const char* from : places)
    for (const char* to : places)
      for (const Kind kind : {Kind::copy, Kind::move, Kind::swap})
        if (from != to) {
          EXPECT_THAT(refusal(kind, from, to), HasSubstr("does not fit")) << from << ' ' << to;
        }
  EXPECT_EQ(refusal(Kind::copy, "drum:user:1", "voice:edit"),
            "drum:user:1: a drum voice does not fit voice:edit, which takes a normal voice");
  EXPECT_THAT(editor.library().takeChanges(), IsEmpty());
}

// ---- move and swap ----

TEST_F(Arrange, whatIsMovedLeavesItsPlaceEmpty) {
  store("voice:user1:1", "Piano");
  EXPECT_THAT(move("voice:user1:1", "voice:user1:2").changes,
              ElementsAre(removed("voice:user1:1", "Piano"), stored("voice:user1:2", nothing, "Piano")));
  EXPECT_EQ(nameAt("voice:user1:1"), "-");
  EXPECT_EQ(nameAt("voice:user1:2"), "Piano");
}

TEST_F(Arrange, aMoveMakesRoomInABank) {
  store("remote:1", "A");
  store("remote:3", "C");
  const Run arranged = move("remote:1..3", "remote:2");
  EXPECT_THAT(arranged.leftOut, ElementsAre("remote:2"));
  EXPECT_EQ(nameAt("remote:1"), "-");
  EXPECT_EQ(nameAt("remote:2"), "A");
  EXPECT_EQ(nameAt("remote:3"), "-");
  EXPECT_EQ(nameAt("remote:4"), "C");
}

TEST_F(Arrange, aSwapExchangesAndMovesWhereOneSideIsEmpty) {
  store("master:1", "A");
  store("master:11", "B");
  store("master:2", "Alone");
  store("master:13", "Lonely");
  const Run arranged = swap("master:1..4", "master:11");
  EXPECT_THAT(arranged.leftOut, ElementsAre("master:4"));
  EXPECT_THAT(arranged.changes,
              UnorderedElementsAre(stored("master:1", "A", "B"), stored("master:11", "B", "A"),
                                   removed("master:2", "Alone"), stored("master:12", nothing, "Alone"),
                                   stored("master:3", nothing, "Lonely"), removed("master:13", "Lonely")));
}

// ---- Favourite flags ----

TEST_F(Arrange, aFlagIsCopiedWithItsContent) {
  store("voice:user1:1", "Piano");
  flag("voice:user1:1", 3);
  EXPECT_THAT(copy("voice:user1:1", "voice:user1:2").changes,
              ElementsAre(stored("voice:user1:2", nothing, "Piano"), flagged("voice:user1:2", 0, 3)));
  EXPECT_EQ(flagAt("voice:user1:1"), 3);
  store("voice:user1:3", "Plain", 7);
  EXPECT_THAT(copy("voice:user1:3", "voice:user1:2").changes,
              ElementsAre(stored("voice:user1:2", "Piano", "Plain"), flagged("voice:user1:2", 3, 0)));
}

TEST_F(Arrange, aMovedFavouriteLeavesNoFlag) {
  store("drum:user:1", "Kit");
  flag("drum:user:1");
  move("drum:user:1", "drum:gm");
  EXPECT_EQ(flagAt("drum:user:1"), 0);
  EXPECT_EQ(flagAt("drum:gm"), 1);
}

TEST_F(Arrange, flagsAreSwappedWithTheContents) {
  store("voice:user1:1", "A");
  store("voice:user1:2", "B");
  flag("voice:user1:1");
  swap("voice:user1:1", "voice:user1:2");
  EXPECT_EQ(flagAt("voice:user1:1"), 0);
  EXPECT_EQ(flagAt("voice:user1:2"), 1);
}

TEST_F(Arrange, aPlaceWithoutFlagsDropsItAndThatIsTold) {
  store("voice:user1:1", "Piano");
  flag("voice:user1:1");
  EXPECT_THAT(copy("voice:user1:1", "voice:mix:1").droppedFlags,
              ElementsAre(Arranged::Note{"voice:user1:1", "voice:mix:1"}));
  EXPECT_EQ(flagAt("voice:mix:1"), 0);
  EXPECT_EQ(flagAt("voice:user1:1"), 1);
  EXPECT_THAT(move("voice:user1:1", "voice:edit").droppedFlags,
              ElementsAre(Arranged::Note{"voice:user1:1", "voice:edit"}));
  EXPECT_EQ(flagAt("voice:user1:1"), 0);
}

TEST_F(Arrange, whatComesFromWhereNoFlagCanStandLeavesThatOfThePlace) {
  store("voice:user1:1", "Piano");
  flag("voice:user1:1");
  store("voice:edit", "Edited", 7);
  EXPECT_THAT(copy("voice:edit", "voice:user1:1").changes, ElementsAre(stored("voice:user1:1", "Piano", "Edited")));
  EXPECT_EQ(flagAt("voice:user1:1"), 1);
  swap("voice:user1:1", "voice:edit");
  EXPECT_EQ(flagAt("voice:user1:1"), 1);
  swap("voice:edit", "voice:user1:1");
  EXPECT_EQ(flagAt("voice:user1:1"), 1);
}

// ---- Edit buffers ----

TEST_F(Arrange, anEditBufferThatWasNeverStoredIsCopiedAsNew) {
  copy("voice:edit", "voice:user1:1");
  EXPECT_EQ(loadTarget(editor, at("voice:user1:1")), freshTarget(at("voice:edit"), false));
}

TEST_F(Arrange, anEditBufferIsAsNewWhenItWasMoved) {
  store("drum:edit", "Kit");
  EXPECT_THAT(move("drum:edit", "drum:user:1").changes,
              ElementsAre(stored("drum:user:1", nothing, "Kit"), stored("drum:edit", "Kit", "")));
  EXPECT_EQ(loadTarget(editor, at("drum:edit")), freshTarget(at("drum:edit"), true));
}

TEST_F(Arrange, theNameInsideIsThatOfAnEditBuffer) {
  store("voice:user1:1", "Inside");
  editor.library().rename(id("voice:user1:1"), "In the list");
  EXPECT_THAT(copy("voice:user1:1", "voice:edit").changes, ElementsAre(stored("voice:edit", nothing, "Inside")));
}

TEST_F(Arrange, aVoiceOfAPartIsTakenWithItsMultiAndGivenWithoutOne) {
  store("multi:edit", "Multi", 5);
  store("voice:user1:1", "Piano", 9);
  const Run arranged = copy("voice:user1:1", "voice:part:4");
  EXPECT_THAT(arranged.changes, ElementsAre(stored("voice:part:4", "", "Piano")));
  EXPECT_THAT(arranged.voicesAlone, ElementsAre(Arranged::Note{"voice:user1:1", "voice:part:4"}));
  EXPECT_EQ(multiAt("multi:edit"), 5);
  EXPECT_THAT(move("voice:part:4", "voice:user1:2").changes,
              ElementsAre(stored("voice:user1:2", nothing, "Piano"), stored("voice:part:4", "Piano", "")));
  EXPECT_EQ(multiAt("voice:user1:2"), 5);
  EXPECT_EQ(nameAt("voice:part:4"), "");
  EXPECT_EQ(nameAt("multi:edit"), "Multi");
}

TEST_F(Arrange, partsAreSwappedWithoutTheirMulti) {
  store("multi:edit", "Multi", 5);
  copy("voice:edit", "voice:part:1");
  store("voice:user1:1", "Piano");
  copy("voice:user1:1", "voice:part:2");
  EXPECT_THAT(swap("voice:part:1", "voice:part:2").voicesAlone, IsEmpty());
  EXPECT_EQ(nameAt("voice:part:1"), "Piano");
  EXPECT_EQ(nameAt("voice:part:2"), "");
  EXPECT_EQ(multiAt("multi:edit"), 5);
}

TEST_F(Arrange, theBankOfAPartSaysWhatFitsIt) {
  makeDrums(4);
  store("drum:user:1", "Kit");
  store("voice:user1:1", "Piano");
  EXPECT_THAT(refusal(Kind::copy, "voice:user1:1", "voice:part:4"), HasSubstr("which takes a drum voice"));
  EXPECT_THAT(refusal(Kind::copy, "drum:user:1", "voice:part:3"), HasSubstr("which takes a normal voice"));
  EXPECT_EQ(refusal(Kind::copy, "drum:user:1", "voice:part:4"), "");
  EXPECT_EQ(nameAt("voice:part:4"), "Kit");
  move("voice:part:4", "drum:user:2");
  EXPECT_EQ(nameAt("drum:user:2"), "Kit");
  EXPECT_TRUE(editor.tools().live(EditBuffer::partVoice, 3).voice->isDrum());
}

TEST_F(Arrange, voicesThatAMultiTakesAlongAreTold) {
  copy("multi:edit", "file:multi:1");
  makeDrums(4);
  store("drum:user:1", "Kit");
  copy("drum:user:1", "voice:part:4");
  EXPECT_THAT(copy("file:multi:1", "multi:edit").changes,
              ElementsAre(stored("voice:part:4", "Kit", ""), stored("multi:edit", "", "")));
}

// ---- Room, other libraries, failures ----

TEST_F(Arrange, newMixingVoicesNeedRoom) {
  editor.library().setMixingVoiceMaximum(2);
  for (const char* place : {"voice:user1:1", "voice:user1:2", "voice:mix:1"}) store(place, place);
  EXPECT_EQ(refusal(Kind::copy, "voice:user1:1..2", "voice:mix:2"),
            "there is no room for so many mixing voices: 3 would be stored, 2 are possible");
  EXPECT_EQ(nameAt("voice:mix:2"), "-");
  EXPECT_EQ(refusal(Kind::copy, "voice:user1:1..2", "voice:mix:1"), "");
  editor.library().setMixingVoiceMaximum(0);
  EXPECT_EQ(refusal(Kind::move, "voice:mix:1..2", "file:mix:7:1"), "");
  EXPECT_EQ(refusal(Kind::swap, "file:mix:7:1", "voice:user1:9"), "");
  EXPECT_THAT(refusal(Kind::move, "voice:user1:9", "file:mix:7:1"), HasSubstr("no room"));
}

TEST_F(Arrange, aCopyOfAnotherLibraryTakesWhatStandsThere) {
  storeTarget(other, at("voice:user1:1"), models("voice:user1:1", "Theirs"));
  other.library().setFavourite(id("voice:user1:1"), 1);
  store("voice:user1:1", "Ours", 7);
  const Arrangement arrangement = parseArrangement(Kind::copy, "voice:user1:1..3", "voice:user1:1");
  const Run arranged = run(arrangement, other);
  EXPECT_THAT(arranged.changes, ElementsAre(stored("voice:user1:1", "Ours", "Theirs"), flagged("voice:user1:1", 0, 1)));
  EXPECT_THAT(arranged.leftOut, ElementsAre("voice:user1:2", "voice:user1:3"));
  EXPECT_EQ(other.library().contentName(id("voice:user1:1")), "Theirs");
}

TEST_F(Arrange, theVoiceOfAPartOfAnotherLibraryComesWithTheMultiThere) {
  ASSERT_TRUE(other.tools().replaceLive(EditBuffer::multi, 0, models("multi:edit", "Theirs", 8)));
  arrange(editor, parseArrangement(Kind::copy, "voice:part:1", "voice:user1:1"), other);
  EXPECT_EQ(multiAt("voice:user1:1"), 8);
}

}  // namespace
}  // namespace Editor
