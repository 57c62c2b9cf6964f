#include "models/ModelSet.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "ModelMaker.h"

namespace Editor {
namespace {

using Paths = std::vector<std::string>;
using Differences = std::vector<ParameterDifference>;

void change(ArrayGroup& group, std::uint16_t index, std::uint16_t value) { ASSERT_TRUE(group.set(&value, index, 1)); }

std::string kinds(const ModelSet& models) {
  std::string text;
  forEachModel(models,
               [&](const char* key, const auto& /*model*/) { text += std::string(text.empty() ? "" : " ") + key; });
  if (models.voice) text += models.voice->isDrum() ? " (drum)" : " (normal)";
  return text;
}

TEST(ModelSet, AHeaderOpensItsModels) {
  for (const unsigned type : {1u, 2u, 3u, 4u, 10u})
    EXPECT_EQ(kinds(emptySetFor(type)), "voice multi arpeggio (normal)");
  for (const unsigned type : {5u, 6u, 7u, 8u}) EXPECT_EQ(kinds(emptySetFor(type)), "voice multi arpeggio (drum)");
  EXPECT_EQ(kinds(emptySetFor(9, false)), "voice multi arpeggio (normal)");
  EXPECT_EQ(kinds(emptySetFor(9, true)), "voice multi arpeggio (drum)");
  for (const unsigned type : {11u, 12u, 13u}) EXPECT_EQ(kinds(emptySetFor(type)), "multi arpeggio");
  for (const unsigned type : {14u, 15u}) EXPECT_EQ(kinds(emptySetFor(type)), "master");
  for (const unsigned type : {16u, 17u}) EXPECT_EQ(kinds(emptySetFor(type)), "remote");
  for (const unsigned type : {0u, 18u, 125u}) EXPECT_EQ(kinds(emptySetFor(type)), "");
}

TEST(ModelSet, OnlyAPartsBankDecidesOnTheKindOfItsVoice) {
  EXPECT_EQ(kinds(emptySetFor(1, true)), "voice multi arpeggio (normal)");
  EXPECT_EQ(kinds(emptySetFor(5, false)), "voice multi arpeggio (drum)");
}

TEST(ModelSet, AContentHoldsWhatItsHeaderOpens) {
  const auto voice = [](unsigned bank) { return ContentId{ContSrv::ContType_Voice, voiceContentNumber(bank, 0)}; };
  EXPECT_EQ(kinds(emptySetFor(voice(8))), "voice multi arpeggio (normal)");
  EXPECT_EQ(kinds(emptySetFor(voice(12))), "voice multi arpeggio (drum)");
  EXPECT_EQ(kinds(emptySetFor(voice(15))), "voice multi arpeggio (normal)");
  EXPECT_EQ(kinds(emptySetFor(ContentId{ContSrv::ContType_Voice, mixingVoiceNumber(3, 4)})),
            "voice multi arpeggio (normal)");
  EXPECT_EQ(kinds(emptySetFor(ContentId{ContSrv::ContType_Multi, 5})), "multi arpeggio");
  EXPECT_EQ(kinds(emptySetFor(ContentId{kContentPerformance, 255})), "multi arpeggio");
  EXPECT_EQ(kinds(emptySetFor(ContentId{kContentMaster, 0})), "master");
  EXPECT_EQ(kinds(emptySetFor(ContentId{kContentRemote, 0})), "remote");
  EXPECT_EQ(kinds(emptySetFor(ContentId{ContSrv::ContType_Single, 0})), "");
  EXPECT_EQ(kinds(emptySetFor(ContentId{ContSrv::ContType_Multi, 128})), "");
}

TEST(ModelSet, IsStoredUnderTheNameOfItsFirstModel) {
  ModelSet models = emptySetFor(1);
  models.voice->name.assign("Lead");
  models.multi->name.assign("other");
  EXPECT_EQ(nameOf(models), "Lead");
  models = emptySetFor(12);
  models.multi->name.assign("Stage");
  EXPECT_EQ(nameOf(models), "Stage");
  models = emptySetFor(14);
  models.master->name.assign("Split");
  EXPECT_EQ(nameOf(models), "Split");
  models = emptySetFor(16);
  models.remote->name1.assign("Mixer");
  models.remote->name2.assign("other");
  EXPECT_EQ(nameOf(models), "Mixer");
  EXPECT_EQ(nameOf(systemSet()), "");
}

TEST(ModelSet, HasAShape) {
  EXPECT_TRUE(haveSameShape(emptySetFor(1), emptySetFor(4)));
  EXPECT_TRUE(haveSameShape(emptySetFor(1), filled(emptySetFor(1), 5)));
  EXPECT_FALSE(haveSameShape(emptySetFor(1), emptySetFor(5))) << "normal and drum";
  EXPECT_FALSE(haveSameShape(emptySetFor(1), emptySetFor(11)));
  EXPECT_FALSE(haveSameShape(emptySetFor(14), emptySetFor(16)));
  EXPECT_FALSE(haveSameShape(systemSet(), additionalSet()));
}

TEST(DifferingPaths, NamesTheParameterTheNameAndNothingElse) {
  const ModelSet a = emptySetFor(1);
  ModelSet b = a;
  EXPECT_EQ(differingPaths(a, b), Paths{});
  change(b.voice->element[3].params, 12, 1);
  change(b.voice->type, 0, 1);
  b.multi->name.assign("x");
  change(b.multi->part[0].extra, 6, 1);
  EXPECT_EQ(differingPaths(a, b),
            (Paths{"voice.type[0]", "voice.element[3].params[12]", "multi.name", "multi.part[0].extra[6]"}));
}

TEST(DifferingPaths, NamesWhatOnlyOneSideHas) {
  EXPECT_EQ(differingPaths(emptySetFor(1), emptySetFor(11)), Paths{"voice"});
  EXPECT_EQ(differingPaths(emptySetFor(14), emptySetFor(16)), (Paths{"master", "remote"}));
  EXPECT_EQ(differingPaths(emptySetFor(1), emptySetFor(5)), (Paths{"voice.type[0]", "voice.element", "voice.key"}));
}

TEST(DifferencesOf, HaveTheValuesOfBoth) {
  const ModelSet a = emptySetFor(1);
  ModelSet b = a;
  change(b.voice->element[3].params, 12, 7);
  b.multi->name.assign("x\xFC");
  EXPECT_EQ(differencesOf(a, b), (Differences{{"voice.element[3].params[12]", std::int64_t(0), std::int64_t(7)},
                                              {"multi.name", std::string(), std::string("x\xFC")}}));
}

TEST(DifferencesOf, CountWhatOnlyOneSideHas) {
  EXPECT_EQ(differencesOf(emptySetFor(14), emptySetFor(16)),
            (Differences{{"master", std::int64_t(1), std::int64_t(0)}, {"remote", std::int64_t(0), std::int64_t(1)}}));
  EXPECT_EQ(differencesOf(emptySetFor(1), emptySetFor(5)),
            (Differences{{"voice.type[0]", std::int64_t(0), std::int64_t(1)},
                         {"voice.element", std::int64_t(8), std::int64_t(0)},
                         {"voice.key", std::int64_t(0), std::int64_t(73)}}));
}

TEST(NamePathIn, IsThatOfTheNameThatASetIsStoredUnder) {
  EXPECT_EQ(namePathIn(emptySetFor(1)), "voice.name");
  EXPECT_EQ(namePathIn(emptySetFor(12)), "multi.name");
  EXPECT_EQ(namePathIn(emptySetFor(14)), "master.name");
  EXPECT_EQ(namePathIn(emptySetFor(16)), "remote.name1");
  EXPECT_EQ(namePathIn(systemSet()), "");
}

RC_GTEST_PROP(DifferingPaths, AreNoneExactlyForEqualSets, ()) {
  const ModelSet shape = anyShape();
  const ModelSet a = filled(shape, anySeed());
  const ModelSet b = filled(shape, *rc::gen::element(1u, 2u));
  RC_ASSERT(differingPaths(a, a).empty());
  RC_ASSERT(differingPaths(a, b).empty() == (a == b));
  RC_ASSERT(differingPaths(a, b) == differingPaths(b, a));
}

}  // namespace
}  // namespace Editor
