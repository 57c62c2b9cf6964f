#include "wire/SendPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acceptance/Library.h"
#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SendPlanTest : public testing::Test {
 protected:
  static std::vector<Bytes> voice(BulkAddress header, std::uint8_t value = 1) {
    return unitOf(header, BDA::List::normalVoice, value);
  }
  static std::vector<Bytes> file(BulkAddress address) { return {fileDump(address, "Some", {1, 2, 3})}; }
  static SendPlan planOf(const std::vector<std::vector<Bytes>>& all) {
    BatchBuilder builder;
    for (const std::vector<Bytes>& messages : all)
      for (const Bytes& message : messages) builder.add(message);
    return SendPlan(builder.finish());
  }
  static std::vector<std::optional<std::size_t>> groupsOf(const SendPlan& plan) {
    std::vector<std::optional<std::size_t>> groups;
    for (const Send::Unit& unit : plan.units) groups.push_back(unit.group);
    return groups;
  }

  const std::vector<Bytes> multi = unitOf({0x0E, 0x5F, 0x00}, BDA::List::multi, 0);
  const std::vector<Bytes> part3 = voice({0x0E, 0x30, 0x02});
  const std::vector<Bytes> user6 = voice({0x0E, 0x0A, 0x05});
  const std::vector<Bytes> trigger{writeTrigger()};
  const std::vector<Bytes> wiping{dump({0x11, 0x01, 0x00})};
};

TEST_F(SendPlanTest, namesWhatAUnitOverwritesBesideItsOwnPlace) {
  EXPECT_THAT(planOf({user6}).further, IsEmpty());
  EXPECT_THAT(planOf({part3}).effects, ElementsAre("overwrites: voice:part:3"));
  EXPECT_THAT(planOf({part3}).further, ElementsAre("overwrites: multi:edit (with voice:part:3)"));
  EXPECT_THAT(planOf({multi}).further, ElementsAre("overwrites: voice:part:1..16 (with multi:edit)"));
  EXPECT_THAT(planOf({part3, multi}).further, ElementsAre("overwrites: voice:part:1..16 (with multi:edit)"));
}

TEST_F(SendPlanTest, whatGoesToOnePlaceIsLeftOutTogether) {
  const std::optional<std::size_t> none;
  EXPECT_THAT(groupsOf(planOf({user6, voice({0x0E, 0x0A, 0x06})})), ElementsAre(none, none));
  const auto twice = groupsOf(planOf({user6, voice({0x0E, 0x0A, 0x06}), user6}));
  EXPECT_TRUE(twice[0] && twice[0] == twice[2] && !twice[1]);
  const auto ofMulti = groupsOf(planOf({part3, user6, multi}));
  EXPECT_TRUE(ofMulti[0] && ofMulti[0] == ofMulti[2] && !ofMulti[1]);
  const auto parts = groupsOf(planOf({part3, voice({0x0E, 0x30, 0x03})}));
  EXPECT_TRUE(parts[0] && parts[0] == parts[1]);
  const auto inBothForms = groupsOf(planOf({user6, file({0x0C, 0x0A, 0x05}), trigger}));
  EXPECT_TRUE(inBothForms[0] && inBothForms[0] == inBothForms[1]);
}

TEST_F(SendPlanTest, anEmptyMixingVoiceIsOneUnitOfItsPlace) {
  const std::vector<Bytes> empty{dump({0x0E, 0x31, 0x41}), dump({0x0F, 0x31, 0x41})};
  const std::vector<Bytes> stored = voice({0x0E, 0x31, 0x01});
  const SendPlan plan = planOf({empty, stored, {dump({0x0F, 0x31, 0x42})}, {dump({0x0E, 0x31, 0x43})}});
  EXPECT_THAT(plan.places, ElementsAre("voice:mix:2", "voice:mix:2", "voice:mix:3", "0E 31 43"));
  EXPECT_THAT(plan.effects, ElementsAre("removes: voice:mix:2", "overwrites: voice:mix:2", "removes: voice:mix:3",
                                        "changes nothing: 0E 31 43"));
  EXPECT_EQ(plan.units[0].messages, empty);
  EXPECT_TRUE((plan.units[0].asked == BulkAddress{0x0E, 0x31, 0x01}));
  EXPECT_TRUE(plan.units[0].group && plan.units[0].group == plan.units[1].group);
  EXPECT_FALSE(plan.units[3].asked);
}

TEST_F(SendPlanTest, fileDumpsShareTheTriggerThatWritesThem) {
  const SendPlan plan =
      planOf({file({0x0C, 0x0A, 0x05}), file({0x0C, 0x0A, 0x06}), trigger, file({0x0C, 0x0A, 0x07}), trigger});
  ASSERT_EQ(plan.units.size(), 3u);
  for (const Send::Unit& unit : plan.units) ASSERT_TRUE(unit.trigger && !unit.trigger->removesOthers);
  EXPECT_EQ(plan.units[0].trigger->number, plan.units[1].trigger->number);
  EXPECT_NE(plan.units[0].trigger->number, plan.units[2].trigger->number);
  EXPECT_EQ(plan.messages, 5u);
}

TEST_F(SendPlanTest, aTriggerStandsWhereTheFileHasIt) {
  const SendPlan plan = planOf({file({0x0C, 0x0A, 0x05}), user6, trigger, user6});
  ASSERT_EQ(plan.units.size(), 3u);
  EXPECT_EQ(plan.units[0].trigger->behind, 1u);
  // It stores the voice before that is removed.
  const SendPlan removing =
      planOf({file({0x0C, 0x31, 0x00}), {dump({0x0E, 0x31, 0x40})}, trigger, {dump({0x0F, 0x31, 0x40})}});
  EXPECT_THAT(removing.effects,
              ElementsAre("overwrites: voice:mix:1", "changes nothing: 0E 31 40", "removes: voice:mix:1"));
  EXPECT_EQ(removing.units[0].trigger->behind, 1u);
}

TEST_F(SendPlanTest, nothingBeforeATriggerThatRemovesVoicesIsLeftOutNorAMixingVoiceBehindIt) {
  const SendPlan plan =
      planOf({user6, file({0x0C, 0x31, 0x05}), wiping, voice({0x0E, 0x0A, 0x06}), file({0x0C, 0x31, 0x06}), trigger});
  ASSERT_EQ(plan.units.size(), 4u);
  EXPECT_TRUE(plan.units[0].isNeverLeftOut);
  EXPECT_TRUE(plan.units[1].isNeverLeftOut);
  EXPECT_TRUE(plan.units[1].trigger->removesOthers);
  EXPECT_FALSE(plan.units[2].isNeverLeftOut);
  EXPECT_TRUE(plan.units[3].isNeverLeftOut);
  EXPECT_THAT(plan.further, ElementsAre("removes: all mixing voices"));
}

TEST_F(SendPlanTest, aTriggerByItselfSaysWhatItDoesAndAScreenIsOneUnit) {
  EXPECT_THAT(planOf({trigger}).effects, ElementsAre("writes the file dumps that the instrument holds"));
  const SendPlan screen = planOf({{dump(kScreen, {1}), dump(kScreenData, {2}), dump(kScreenData, {3})}});
  EXPECT_THAT(screen.effects, ElementsAre("shows: screen"));
  EXPECT_EQ(screen.units[0].messages.size(), 3u);
  EXPECT_FALSE(screen.units[0].asked);
}

}  // namespace
}  // namespace Editor
