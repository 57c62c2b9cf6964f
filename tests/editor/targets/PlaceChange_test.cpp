#include "targets/PlaceChange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bda/platform/CMA/VoiceBanks.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using What = PlaceChange::What;

class PlaceChanges : public testing::Test {
 protected:
  static ModelSet named(const std::string& place, const std::string& name) {
    ModelSet models = freshTarget(parseTarget(place), false);
    nameIn(models)->assign(name);
    return models;
  }
  std::vector<PlaceChange> store(const std::string& place, const ModelSet& models) {
    return storeTarget(editor, parseTarget(place), models);
  }

  EmbeddedEditor editor;
};

TEST_F(PlaceChanges, aTargetThatIsReplacedIsToldWithItsNames) {
  EXPECT_THAT(store("file:voice:user1:6", named("voice:user1:6", "Piano")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, std::nullopt, "Piano"}));
  EXPECT_THAT(store("voice:user1:6", named("voice:user1:6", "Grand")),
              ElementsAre(PlaceChange{"voice:user1:6", What::stored, "Piano", "Grand"}));
  EXPECT_THAT(store("master:edit", named("master:edit", "Master")),
              ElementsAre(PlaceChange{"master:edit", What::stored, "", "Master"}));
  EXPECT_THAT(store("system", freshTarget(parseTarget("system"), false)),
              ElementsAre(PlaceChange{"system", What::stored, std::nullopt, std::nullopt}));
}

TEST_F(PlaceChanges, theMultiThatComesWithTheVoiceOfAPartIsToldWhenItIsAnother) {
  ModelSet models = loadTarget(editor, parseTarget("voice:part:4"));
  models.voice->name.assign("Voice");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"voice:part:4", What::stored, "", "Voice"}));
  models.multi->name.assign("Multi");
  EXPECT_THAT(store("voice:part:4", models), ElementsAre(PlaceChange{"voice:part:4", What::stored, "Voice", "Voice"},
                                                         PlaceChange{"multi:edit", What::stored, "", "Multi"}));
}

TEST_F(PlaceChanges, voicesThatAMultiTakesAlongAreTold) {
  ModelSet part = loadTarget(editor, parseTarget("voice:part:4"));
  part.voice->name.assign("Voice");
  store("voice:part:4", part);
  ModelSet multi = loadTarget(editor, parseTarget("multi:edit"));
  constexpr unsigned kUserDrums = 12;
  multi.multi->part[3].bankProgram.set(&CMA::voiceBankSelTable[kUserDrums].msb, 0, 0);
  multi.multi->part[3].bankProgram.set(&CMA::voiceBankSelTable[kUserDrums].lsb, 1, 0);
  EXPECT_THAT(store("multi:edit", multi), ElementsAre(PlaceChange{"multi:edit", What::stored, "", ""},
                                                      PlaceChange{"voice:part:4", What::stored, "Voice", ""}));
}

TEST_F(PlaceChanges, whatStayedIsNotTold) {
  const LiveSnapshot snapshot(editor.tools());
  std::vector<PlaceChange> changes;
  snapshot.addOthers(editor.tools(), changes);
  EXPECT_THAT(changes, IsEmpty());
}

}  // namespace
}  // namespace Editor
