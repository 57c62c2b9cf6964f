#include "targets/CarryCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "models/ModelJson.h"

using Editor::checkCarried;
using Editor::ModelSet;
using Editor::parseTarget;
using Editor::Target;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// The shape that the target's models have, all values 0.
ModelSet fresh(const Target& target, bool drum = false) {
  ModelSet models;
  if (target.kind == Target::Kind::system)
    models.system.emplace();
  else
    models = Editor::emptySetFor(Editor::headerTypeOf({target.header->mid, target.header->lo}), drum);
  return models;
}

void set(Editor::ArrayGroup& group, std::size_t index, std::uint16_t value) {
  std::vector<std::uint16_t> values = group.values();
  values.at(index) = value;
  ASSERT_TRUE(group.assign(values));
}

}  // namespace

TEST(CarryCheck, freshModelsOfEveryTargetAreCarried) {
  for (const char* name :
       {"system", "voice:user1:6", "voice:edit", "drum:user:4", "drum:edit", "voice:part:4", "voice:mix:3",
        "multi:edit", "performance:a:1", "performance:edit", "master:1", "master:edit", "remote:1", "remote:edit"}) {
    const Target target = parseTarget(name);
    const Editor::CarryCheck check = checkCarried(target, fresh(target));
    EXPECT_EQ(check.refusal, "") << name;
    EXPECT_EQ(check.unchecked, "") << name;
  }
}

TEST(CarryCheck, aDrumVoiceOfAPartIsCarried) {
  const Target target = parseTarget("voice:part:4");
  ModelSet models = fresh(target, true);
  ASSERT_TRUE(models.multi->part[3].bankProgram.assign({0x3F, 0x20, 0}));
  set(models.voice->key[72].params, 0, 1);
  EXPECT_EQ(checkCarried(target, models).refusal, "");
  set(models.voice->key[72].params, 0, 0xFF);
  EXPECT_THAT(checkCarried(target, models).refusal, StartsWith("voice.key[72].params[0]: 255 cannot be carried"));
}

// Which sends 1 for 1 and 0 for all else.
TEST(CarryCheck, aSwitchIsOnOrOff) {
  const Target target = parseTarget("master:1");
  ModelSet models = fresh(target);
  set(models.master->zone[0].params, 12, 1);
  EXPECT_EQ(checkCarried(target, models).refusal, "");
  for (const int value : {2, 0x7E, 0x81, 0xFF}) {
    set(models.master->zone[0].params, 12, std::uint16_t(value));
    EXPECT_EQ(checkCarried(target, models).refusal,
              "master.zone[0].params[12]: " + std::to_string(value) + " cannot be carried, it would arrive as 0");
  }
}

TEST(CarryCheck, theLowBitsOfAPerformancesLastArpeggioParameterAreRefused) {
  const Target target = parseTarget("performance:a:1");
  ModelSet models = fresh(target);
  set(models.arpeggio->common, 5, 1);
  EXPECT_EQ(checkCarried(target, models).refusal, "arpeggio.common[5]: 1 cannot be carried, it would arrive as 0");
}

TEST(CarryCheck, anEightBitValueInASevenBitFieldIsRefusedByItsPath) {
  const Target target = parseTarget("system");
  ModelSet models = fresh(target);
  set(models.system->masterEq, 1, 0x80);
  EXPECT_EQ(checkCarried(target, models).refusal, "system.masterEq[1]: 128 cannot be carried, it would arrive as 0");
  set(models.system->masterEq, 1, 0x7F);
  EXPECT_EQ(checkCarried(target, models).refusal, "");
}

TEST(CarryCheck, parametersThatNoBlockHoldsMayHaveAnyValue) {
  const Target target = parseTarget("system");
  ModelSet models = fresh(target);
  set(models.system->utility, 0, 0xFF);
  EXPECT_EQ(checkCarried(target, models).refusal, "");
}

TEST(CarryCheck, theDeviceNumberHasToBeOne) {
  const Target target = parseTarget("system");
  ModelSet models = fresh(target);
  for (const int value : {0, 15, 16, 17}) {
    set(models.system->utility, 51, std::uint16_t(value));
    EXPECT_EQ(checkCarried(target, models).refusal, "") << value;
  }
  set(models.system->utility, 51, 18);
  EXPECT_THAT(checkCarried(target, models).refusal, StartsWith("system.utility[51]: 18 is no device number"));
}

TEST(CarryCheck, theReceiveSwitchAndTheDeviceOffDoNotHinderIt) {
  const Target target = parseTarget("system");
  ModelSet models = fresh(target);
  set(models.system->utility, 50, 0);
  set(models.system->utility, 51, 17);
  set(models.system->masterEq, 1, 0x80);
  EXPECT_THAT(checkCarried(target, models).refusal, StartsWith("system.masterEq[1]"));
}

TEST(CarryCheck, aReceiveSwitchThatIsNotOnAndADeviceNumberOfNoMessageAreLeftOut) {
  const Target target = parseTarget("system");
  ModelSet models = fresh(target);
  for (const int isOn : {0, 77}) {
    set(models.system->utility, 50, std::uint16_t(isOn));
    EXPECT_THAT(checkCarried(target, models).leftOut, ElementsAre("system.utility[50]")) << isOn;
  }
  set(models.system->utility, 50, 1);
  for (const int device : {16, 17}) {
    set(models.system->utility, 51, std::uint16_t(device));
    EXPECT_THAT(checkCarried(target, models).leftOut, ElementsAre("system.utility[51]")) << device;
  }
  set(models.system->utility, 51, 15);
  EXPECT_THAT(checkCarried(target, models).leftOut, IsEmpty());
}

TEST(CarryCheck, namesBeyondAsciiAreRefused) {
  for (const char* name : {"voice:user1:6", "drum:edit", "voice:part:1"}) {
    const Target target = parseTarget(name);
    ModelSet models = fresh(target);
    ASSERT_TRUE(models.voice->name.assign("\xE9t\xE9"));
    EXPECT_THAT(checkCarried(target, models).refusal, StartsWith("voice.name: ")) << name;
    ASSERT_TRUE(models.voice->name.assign("Piano"));
    EXPECT_EQ(checkCarried(target, models).refusal, "") << name;
  }
}

TEST(CarryCheck, aVoiceThatAPartCannotPlayIsRefused) {
  const Target target = parseTarget("multi:edit");
  ModelSet models = fresh(target);
  ASSERT_TRUE(models.multi->part[2].bankProgram.assign({0x3F, 0x28, 0x20}));  // that bank has 32 voices
  EXPECT_THAT(checkCarried(target, models).refusal,
              StartsWith("multi.part[2].bankProgram[0]: 63 cannot be carried, it would arrive as 0"));
}

TEST(CarryCheck, whatLeavesAsAFileDumpAloneIsNotBoundByBlocks) {
  const Target target = parseTarget("file:multi:3");
  ModelSet models = Editor::emptySetFor(target.content);
  set(models.multi->common, 0, 0xFF);
  EXPECT_EQ(checkCarried(target, models).refusal, "");
}
