#include "targets/TargetModels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bda/platform/CMA/VoiceBanks.h"
#include "editor/history/PrintChange.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TargetModels : public testing::Test {
 protected:
  static ModelSet named(const std::string& place, const std::string& name) {
    ModelSet models = freshTarget(parseTarget(place), false);
    nameIn(models)->assign(name);
    return models;
  }
  std::vector<PlaceChange> store(const std::string& place, const ModelSet& models) {
    Library::Transaction transaction(editor.library());
    editor.library().beginRun({"apply"});
    storeTarget(editor, parseTarget(place), models);
    std::vector<PlaceChange> changes = changesOfRun(editor.library());
    transaction.commit();
    return changes;
  }

  EmbeddedEditor editor;
};

TEST_F(TargetModels, aTargetThatIsReplacedIsToldWithItsNames) {
  EXPECT_THAT(store("file:voice:user1:6", named("voice:user1:6", "Piano")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, std::nullopt, "Piano"}));
  EXPECT_THAT(store("voice:user1:6", named("voice:user1:6", "Grand")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, "Piano", "Grand"}));
  EXPECT_THAT(store("master:edit", named("master:edit", "Master")),
              ElementsAre(PlaceChange{"master:edit", What::stored, std::nullopt, "Master"}));
  EXPECT_THAT(store("system", freshTarget(parseTarget("system"), false)),
              ElementsAre(PlaceChange{"system", What::stored, std::nullopt, ""}));
}

TEST_F(TargetModels, theMultiThatComesWithTheVoiceOfAPartIsToldWhenItIsAnother) {
  store("multi:edit", freshTarget(parseTarget("multi:edit"), false));  // the voices of all parts come with the first
  ModelSet models = loadTarget(editor, parseTarget("voice:part:4"));
  models.voice->name.assign("Voice");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"voice:part:4", What::stored, "", "Voice"}));
  models.multi->name.assign("Multi");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"multi:edit", What::stored, "", "Multi"}));
}

TEST_F(TargetModels, voicesThatAMultiTakesAlongAreTold) {
  ModelSet part = loadTarget(editor, parseTarget("voice:part:4"));
  part.voice->name.assign("Voice");
  store("voice:part:4", part);
  ModelSet multi = loadTarget(editor, parseTarget("multi:edit"));
  constexpr unsigned kUserDrums = 12;
  multi.multi->part[3].bankProgram.set(&CMA::voiceBankSelTable[kUserDrums].msb, 0, 0);
  multi.multi->part[3].bankProgram.set(&CMA::voiceBankSelTable[kUserDrums].lsb, 1, 0);
  EXPECT_THAT(store("multi:edit", multi), ElementsAre(PlaceChange{"voice:part:4", What::stored, "Voice", ""},
                                                      PlaceChange{"multi:edit", What::stored, "", ""}));
}

TEST_F(TargetModels, whatStaysIsNotTold) {
  store("master:edit", named("master:edit", "Master"));
  EXPECT_THAT(store("master:edit", named("master:edit", "Master")), IsEmpty());
}

TEST_F(TargetModels, allThatAWordNamesIsLoadedButForEmptyPlacesOfARange) {
  store("voice:user1:6", named("voice:user1:6", "Piano"));
  editor.library().store({4, 0x3F0806}, std::vector<std::uint8_t>{1, 2, 3}, "Opaque");
  Held torn = heldOf("Torn", std::vector<std::uint8_t>{1, 2, 3});
  ++torn.checksum;
  editor.library().putBack(contentAt({4, 0x3F0807}), torn);
  std::vector<std::string> told;
  const TargetVisitor visitor{
      .loaded = [&](const Target& target,
                    const ModelSet& models) { told.push_back(target.name + " " + nameOf(models)); },
      .refused = [&](const TargetError& error) { told.push_back(std::string("refused ") + error.what()); },
      .damaged = [&](const Target& target) { told.push_back("damaged " + target.name); }};
  EXPECT_EQ(loadTargets(editor, parseTargets("voice:user1:5..9"), visitor), 2u);
  EXPECT_THAT(told, ElementsAre("voice:user1:6 Piano", testing::StartsWith("refused voice:user1:7: "),
                                testing::StartsWith("refused voice:user1:8: it is damaged")));
  told.clear();
  EXPECT_EQ(loadTargets(editor, parseTargets("voice:user1:5"), visitor), 0u);
  EXPECT_THAT(told, ElementsAre("refused voice:user1:5: nothing is stored there")) << "it alone was asked for";
}

TEST_F(TargetModels, liveModelsThatWereNeverStoredAreDropped) {
  store("voice:edit", named("voice:edit", "Edit"));
  std::vector<Target> targets{parseTarget("voice:edit"), parseTarget("master:edit"), parseTarget("system"),
                              parseTarget("voice:user1:6")};
  dropUnstored(editor, targets);
  ASSERT_EQ(targets.size(), 2u);
  EXPECT_EQ(targets[0].name, "voice:edit");
  EXPECT_EQ(targets[1].name, "voice:user1:6");
}

}  // namespace
}  // namespace Editor
