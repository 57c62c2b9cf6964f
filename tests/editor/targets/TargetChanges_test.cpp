// What the history says of targets that are replaced.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bda/platform/CMA/VoiceBanks.h"
#include "editor/history/PrintChange.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TargetChanges : public testing::Test {
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

TEST_F(TargetChanges, aTargetThatIsReplacedIsToldWithItsNames) {
  EXPECT_THAT(store("file:voice:user1:6", named("voice:user1:6", "Piano")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, std::nullopt, "Piano"}));
  EXPECT_THAT(store("voice:user1:6", named("voice:user1:6", "Grand")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, "Piano", "Grand"}));
  EXPECT_THAT(store("master:edit", named("master:edit", "Master")),
              ElementsAre(PlaceChange{"master:edit", What::stored, std::nullopt, "Master"}));
  EXPECT_THAT(store("system", freshTarget(parseTarget("system"), false)),
              ElementsAre(PlaceChange{"system", What::stored, std::nullopt, ""}));
}

TEST_F(TargetChanges, theMultiThatComesWithTheVoiceOfAPartIsToldWhenItIsAnother) {
  store("multi:edit", freshTarget(parseTarget("multi:edit"), false));  // the voices of all parts come with the first
  ModelSet models = loadTarget(editor, parseTarget("voice:part:4"));
  models.voice->name.assign("Voice");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"voice:part:4", What::stored, "", "Voice"}));
  models.multi->name.assign("Multi");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"multi:edit", What::stored, "", "Multi"}));
}

TEST_F(TargetChanges, voicesThatAMultiTakesAlongAreTold) {
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

TEST_F(TargetChanges, whatStaysIsNotTold) {
  store("master:edit", named("master:edit", "Master"));
  EXPECT_THAT(store("master:edit", named("master:edit", "Master")), IsEmpty());
}

}  // namespace
}  // namespace Editor
