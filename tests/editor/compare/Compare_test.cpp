#include "compare/Compare.h"

#include <gmock/gmock.h>

#include "contents/ContentFormat.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using Kind = Difference::Kind;
using Parameters = std::vector<ParameterDifference>;

constexpr ContentId kVoice{4, 0x3F0805};
constexpr ContentId kMulti{1, 0};
constexpr std::int64_t kNone = 0;
constexpr std::int64_t kOne = 1;

class Compare : public testing::Test {
 protected:
  static void store(EmbeddedEditor& editor, ContentId id, const std::string& name, const std::string& innerName,
                    std::uint16_t parameter = 0) {
    ModelSet models = emptySetFor(id);
    nameIn(models)->assign(innerName);
    models.multi->common.set(&parameter, 3, 0);
    editor.library().store(id, encodeContent(models), name);
  }

  Comparison compare(Reception reception = Reception::compared) {
    differences.clear();
    return compareLibraries(first, second, reception,
                            [&](const Difference& difference) { differences.push_back(difference); });
  }

  static void setSystem(EmbeddedEditor& editor, std::uint16_t parameter) {
    const std::uint8_t value = 4;
    ModelSet system = editor.tools().liveSystem();
    system.system->utility.set(&value, parameter, 0);
    ASSERT_TRUE(editor.tools().replaceSystem(system));
  }

  const TemporaryDirectory directory;
  EmbeddedEditor first{directory / "first.db"};
  EmbeddedEditor second{directory / "second.db"};
  std::vector<Difference> differences;
};

TEST_F(Compare, whatIsEqualIsCountedAndNotVisited) {
  for (EmbeddedEditor* const editor : {&first, &second}) {
    store(*editor, kVoice, "Voice", "Voice");
    editor->library().store(kMulti, std::vector<std::uint8_t>{1}, "Opaque");
    editor->library().setFavourite(kVoice, 1);
  }
  const Comparison comparison = compare();
  EXPECT_THAT(differences, IsEmpty());
  EXPECT_EQ(comparison.equal, 2u);
  EXPECT_TRUE(comparison.isEqual());
}

TEST_F(Compare, whatNamesSayAlikeIsOneEntryWithThePathOfTheModels) {
  store(first, kVoice, "Old", "Old");
  store(second, kVoice, "New", "New");
  EXPECT_EQ(compare().renamed, 1u);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].kind, Kind::renamed);
  EXPECT_EQ(differences[0].target, "voice:user1:6");
  EXPECT_EQ(differences[0].names, (Parameters{{"voice.name", std::string("Old"), std::string("New")}}));
  EXPECT_THAT(differences[0].parameters, IsEmpty());
}

TEST_F(Compare, eitherNameAloneIsARename) {
  store(first, kVoice, "Old", "Same");
  store(second, kVoice, "New", "Same");
  store(first, kMulti, "Same", "Old");
  store(second, kMulti, "Same", "New");
  EXPECT_EQ(compare().renamed, 2u);
  ASSERT_THAT(differences, SizeIs(2));
  EXPECT_EQ(differences[0].names, (Parameters{{"multi.name", std::string("Old"), std::string("New")}}));
  EXPECT_EQ(differences[1].names, (Parameters{{"name", std::string("Old"), std::string("New")}}));
}

TEST_F(Compare, namesThatSayOtherThingsAreTwoEntries) {
  store(first, kVoice, "Old", "Inside");
  store(second, kVoice, "New", "New");
  EXPECT_EQ(compare().renamed, 1u);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].names, (Parameters{{"name", std::string("Old"), std::string("New")},
                                              {"voice.name", std::string("Inside"), std::string("New")}}));
}

TEST_F(Compare, aNameBesideOtherDifferencesIsNoRename) {
  store(first, kVoice, "Old", "Old", 1);
  store(second, kVoice, "New", "New", 2);
  const Comparison comparison = compare();
  EXPECT_EQ(comparison.renamed, 0u);
  EXPECT_EQ(comparison.different, 1u);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].kind, Kind::different);
  EXPECT_THAT(differences[0].names, SizeIs(1));
  EXPECT_EQ(differences[0].parameters, (Parameters{{"multi.common[3]", kOne, std::int64_t(2)}}));
}

TEST_F(Compare, anotherNameInTheModelsIsAParameter) {
  for (EmbeddedEditor* const editor : {&first, &second}) store(*editor, kVoice, "Voice", "Voice");
  ModelSet models = emptySetFor(kVoice);
  models.voice->name.assign("Voice");
  models.multi->name.assign("Of the multi");
  second.library().store(kVoice, encodeContent(models));
  EXPECT_EQ(compare().different, 1u);
  EXPECT_EQ(differences.at(0).parameters, (Parameters{{"multi.name", std::string(), std::string("Of the multi")}}));
}

TEST_F(Compare, opaqueBytesAreComparedWhole) {
  using Bytes = std::vector<std::uint8_t>;
  first.library().store(kVoice, Bytes{1, 2}, "Opaque");
  store(second, kVoice, "Opaque", "Opaque");
  EXPECT_EQ(compare().different, 1u);
  EXPECT_EQ(differences.at(0).parameters,
            (Parameters{{"bytes", Bytes{1, 2}, second.library().content(kVoice)->bytes}}));
}

TEST_F(Compare, whatOnlyOneHasTakesItsFlagAlong) {
  store(first, kVoice, "Mine", "Mine");
  first.library().setFavourite(kVoice, 1);
  store(second, kMulti, "Yours", "Yours");
  const Comparison comparison = compare();
  EXPECT_EQ(comparison.onlyInFirst, 1u);
  EXPECT_EQ(comparison.onlyInSecond, 1u);
  EXPECT_EQ(comparison.others, 0u);
  ASSERT_THAT(differences, SizeIs(2));
  EXPECT_EQ(differences[0].kind, Kind::onlyInSecond);
  EXPECT_EQ(differences[0].name, "Yours");
  EXPECT_EQ(differences[1].kind, Kind::onlyInFirst);
  EXPECT_EQ(differences[1].name, "Mine");
  EXPECT_EQ(differences[1].favourite, 1);
}

TEST_F(Compare, theFlagOfAnEmptyPlaceIsNoContent) {
  first.library().setFavourite(kVoice, 1);
  Comparison comparison = compare();
  EXPECT_EQ(comparison.others, 1u);
  EXPECT_FALSE(comparison.isEqual());
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_FALSE(differences[0].isContent);
  EXPECT_EQ(differences[0].parameters, (Parameters{{"favourite", kOne, kNone}}));

  store(second, kVoice, "Yours", "Yours");  // and no favourite there
  comparison = compare();
  EXPECT_EQ(comparison.onlyInSecond, 1u);
  EXPECT_EQ(comparison.others, 0u);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].favourite, 0);
  EXPECT_EQ(differences[0].emptyFavourite, 1);
}

TEST_F(Compare, whatIsNoContentIsNotCountedAsOne) {
  setSystem(second, 3);
  ModelSet master = second.tools().live(EditBuffer::master);
  master.master->name.assign("Master");
  ASSERT_TRUE(second.tools().replaceLive(EditBuffer::master, 0, master));
  second.library().setMixingVoiceMaximum(9);
  const Comparison comparison = compare();
  EXPECT_EQ(comparison.equal + comparison.different + comparison.renamed, 0u);
  EXPECT_EQ(comparison.others, 3u);
  ASSERT_THAT(differences, SizeIs(3));
  EXPECT_EQ(differences[0].target, "master:edit");
  EXPECT_EQ(differences[0].parameters, (Parameters{{"master.name", std::string(), std::string("Master")}}));
  EXPECT_EQ(differences[1].target, "system");
  EXPECT_EQ(differences[1].parameters, (Parameters{{"system.utility[3]", kNone, std::int64_t(4)}}));
  EXPECT_EQ(differences[2].target, "settings");
  EXPECT_EQ(differences[2].parameters, (Parameters{{"mixing-voices", std::int64_t(2048), std::int64_t(9)}}));
}

TEST_F(Compare, howALibraryListensCountsOnlyWhenAsked) {
  setSystem(second, SystemModel::kReceiveBulk);
  setSystem(second, SystemModel::kDeviceNumber);
  second.library().setMixingVoiceMaximum(9);
  EXPECT_TRUE(compare(Reception::ignored).isEqual());
  EXPECT_EQ(compare(Reception::compared).others, 2u);
}

TEST_F(Compare, aDifferenceIsVisitedBeforeTheNextContentIsRead) {
  store(first, kVoice, "Mine", "Mine");
  store(first, kMulti, "Mine", "Mine");
  struct Enough {};
  int visited = 0;
  EXPECT_THROW(compareLibraries(first, second, Reception::compared,
                                [&](const Difference&) {
                                  ++visited;
                                  throw Enough();
                                }),
               Enough);
  EXPECT_EQ(visited, 1);
}

}  // namespace
}  // namespace Editor
