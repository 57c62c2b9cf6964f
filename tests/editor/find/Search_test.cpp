#include "find/Search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "editor/models/ModelMaker.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ModelSet voiceModels(const char* innerName, std::uint8_t common3 = 0) {
  ModelSet models = emptySetFor(ContentKind::voice);
  models.voice->name.assign(innerName);
  models.voice->common.set(&common3, 3, 0);
  return models;
}

Candidate candidate(const std::string& place, const std::string& name, const ModelSet& models,
                    ContentKind kind = ContentKind::voice) {
  return {place, {}, kind, name, 0, encodeContent(models), {}};
}

Candidate voice(const std::string& place, const std::string& name, std::uint8_t common3 = 0) {
  return candidate(place, name, voiceModels(name.c_str(), common3));
}

Candidate opaque(const std::string& place, std::vector<std::uint8_t> bytes, ContentKind kind = ContentKind::voice) {
  return {place, {}, kind, "Opaque", 0, std::move(bytes), {}};
}

struct SearchTest : testing::Test {
  // The places that are found among these, each with its source when it is not "a".
  std::vector<std::string> find(Wanted wanted, std::vector<Candidate> candidates) {
    found.clear();
    Search search(std::move(wanted), [this](const Found& one) { found.push_back(one); });
    for (Candidate& one : candidates) search.look({"a", true}, std::move(one));
    const std::uint64_t count = search.finish();
    EXPECT_EQ(count, found.size());
    std::vector<std::string> places;
    for (const Found& one : found) places.push_back(one.content.place);
    return places;
  }

  std::vector<Found> found;
};

TEST_F(SearchTest, whatAsksForNothingFindsAll) {
  EXPECT_THAT(find({}, {voice("1", "Piano"), opaque("2", {})}), ElementsAre("1", "2"));
  EXPECT_EQ(found[0].source, "a");
  EXPECT_EQ(found[0].content.name, "Piano");
  EXPECT_EQ(found[0].hash, "");
  EXPECT_FALSE(found[0].group);
  EXPECT_FALSE(found[0].likeness);
}

TEST_F(SearchTest, allThatIsAskedHasToFit) {
  Wanted wanted;
  wanted.names = {NamePattern("grand"), NamePattern("*piano")};
  wanted.kind = ContentKind::voice;
  wanted.onlyFavourites = true;
  wanted.conditions = {Condition("voice.common[3]>4"), Condition("voice.common[3]<6")};
  Candidate fits = voice("fits", "Grand Piano", 5);
  Candidate otherName = voice("name", "Piano", 5);
  Candidate otherKind = candidate("kind", "Grand Piano", voiceModels("", 5), ContentKind::mix);
  Candidate otherValue = voice("value", "Grand Piano", 6);
  for (Candidate* const one : {&fits, &otherName, &otherKind, &otherValue}) one->favourite = 1;
  const Candidate noFavourite = voice("flag", "Grand Piano", 5);
  EXPECT_THAT(find(wanted, {otherName, otherKind, otherValue, noFavourite, fits}), ElementsAre("fits"));
}

TEST_F(SearchTest, namesAreThoseOfTheListAndNeedNoModels) {
  Wanted wanted;
  wanted.names = {NamePattern("list")};
  EXPECT_THAT(find(wanted, {candidate("1", "In the list", voiceModels("Inside")),
                            candidate("2", "Other", voiceModels("In the list"))}),
              ElementsAre("1"));
  wanted.names = {NamePattern("opaque")};
  EXPECT_THAT(find(wanted, {opaque("3", {1})}), ElementsAre("3"));
}

TEST_F(SearchTest, aConditionNeverHoldsForOpaqueBytes) {
  Wanted wanted;
  wanted.conditions = {Condition("voice.common[3]!=77")};
  EXPECT_THAT(find(wanted, {opaque("1", {1}), voice("2", "")}), ElementsAre("2"));
}

TEST_F(SearchTest, whatIsFoundIsToldAtOnceUnlessItHasToWait) {
  std::size_t told = 0;
  Search search({}, [&](const Found&) { ++told; });
  search.look({"a"}, voice("1", "Piano"));
  EXPECT_EQ(told, 1u);
}

TEST_F(SearchTest, theHashIsThatOfContents) {
  const ContentId id{4, 0x3F0805};
  Wanted wanted;
  wanted.hashes = true;
  find(wanted, {voice("1", "Piano", 3), voice("2", "Organ", 3), opaque("3", {1, 2})});
  EXPECT_EQ(found[0].hash, fingerprintOf(id, encodeContent(voiceModels("Any", 3))).hash);
  EXPECT_EQ(found[1].hash, found[0].hash);
  EXPECT_EQ(found[2].hash, fingerprintOf(id, std::vector<std::uint8_t>{1, 2}).hash);
}

// ---- Compared with another ----

TEST_F(SearchTest, theSameIsEqualButForEveryName) {
  ModelSet otherNames = voiceModels("Other", 3);
  otherNames.multi->name.assign("Of the multi");
  Wanted wanted;
  wanted.sameAs = voice("1", "Piano", 3);
  EXPECT_THAT(find(wanted, {candidate("2", "Organ", otherNames), voice("3", "Piano", 4),
                            candidate("4", "Piano", voiceModels("Piano", 3), ContentKind::mix), opaque("5", {3})}),
              ElementsAre("2"));
}

TEST_F(SearchTest, opaqueOnesAreTheSameWhenTheirBytesAre) {
  Wanted wanted;
  wanted.sameAs = opaque("1", {1, 2});
  EXPECT_THAT(find(wanted, {opaque("2", {1, 2}), opaque("3", {1, 2, 3}), opaque("4", {1, 2}, ContentKind::drum),
                            voice("5", "")}),
              ElementsAre("2"));
}

TEST_F(SearchTest, theContentItselfIsLeftOutInItsLibraryAndNowhereElse) {
  for (const bool isLike : {false, true}) {
    Wanted wanted;
    (isLike ? wanted.like : wanted.sameAs) = voice("1", "Piano");
    std::vector<std::string> sources;
    Search search(wanted, [&](const Found& one) { sources.push_back(one.source); });
    search.look({"its own", true}, voice("1", "Piano"));
    search.look({"another", false}, voice("1", "Piano"));
    search.finish();
    EXPECT_THAT(sources, ElementsAre("another"));
  }
}

TEST_F(SearchTest, likenessIsTheShareOfEqualNumbersAndTheNearestComesFirst) {
  ModelSet far = emptySetFor(ContentKind::voice);
  fill(far, 1);
  ModelSet near = voiceModels("Anything", 9);
  const std::uint16_t wave = 300;
  near.voice->element[7].wave.set(&wave, 0, 0);
  Wanted wanted;
  wanted.like = voice("1", "Piano");
  EXPECT_THAT(find(wanted, {candidate("far", "", far), candidate("near", "", near), voice("one", "", 1),
                            voice("same", "Other"), candidate("mix", "", near, ContentKind::mix), opaque("o", {1})}),
              ElementsAre("same", "one", "near", "far"));
  const auto all = double(valuesOf(near).numbers.size());
  EXPECT_DOUBLE_EQ(*found[0].likeness, 1.0);
  EXPECT_DOUBLE_EQ(*found[1].likeness, (all - 1) / all);
  EXPECT_DOUBLE_EQ(*found[2].likeness, (all - 2) / all);
  EXPECT_LT(*found[3].likeness, 0.5);
}

TEST_F(SearchTest, thoseThatAreEquallyLikeStayInTheirOrder) {
  Wanted wanted;
  wanted.like = voice("1", "Piano");
  EXPECT_THAT(find(wanted, {voice("b", "", 1), voice("a", "", 2), voice("c", "", 3)}), ElementsAre("b", "a", "c"));
}

TEST_F(SearchTest, anOpaqueOneIsLikeThoseWithItsBytesOnly) {
  Wanted wanted;
  wanted.like = opaque("1", {1, 2});
  EXPECT_THAT(find(wanted, {opaque("2", {1, 3}), opaque("3", {1, 2}), voice("4", "")}), ElementsAre("3"));
  EXPECT_EQ(found[0].likeness, 1.0);
}

// ---- Duplicates ----

TEST_F(SearchTest, duplicatesAreGroupedInTheOrderInWhichTheyFirstCome) {
  Wanted wanted;
  wanted.duplicates = true;
  EXPECT_THAT(find(wanted, {voice("a1", "", 1), voice("once", "", 2), opaque("b1", {1}), voice("a2", "Other", 1),
                            opaque("b2", {1}), opaque("drum", {1}, ContentKind::drum), voice("a3", "", 1)}),
              ElementsAre("a1", "a2", "a3", "b1", "b2"));
  std::vector<std::uint64_t> groups;
  for (const Found& one : found) groups.push_back(one.group.value_or(0));
  EXPECT_THAT(groups, ElementsAre(1, 1, 1, 2, 2));
}

TEST_F(SearchTest, opaqueBytesAreNoDuplicateOfAContentThatIsEncodedAlike) {
  Candidate cut = voice("cut", "");
  cut.bytes[4] = 9;  // a version that nobody knows
  Wanted wanted;
  wanted.duplicates = true;
  EXPECT_THAT(find(wanted, {voice("whole", ""), cut}), IsEmpty());
}

TEST_F(SearchTest, onlyWhatFitsEverythingElseIsGrouped) {
  Wanted wanted;
  wanted.duplicates = true;
  wanted.names = {NamePattern("piano")};
  EXPECT_THAT(find(wanted, {voice("1", "Piano"), voice("2", "Organ")}), IsEmpty());
  EXPECT_THAT(find(wanted, {voice("1", "Piano"), voice("2", "Organ"), voice("3", "Piano 2")}), ElementsAre("1", "3"));
}

TEST_F(SearchTest, theNearestGroupComesFirst) {
  ModelSet far = voiceModels("", 8);
  const std::uint8_t value = 9;
  far.voice->common.set(&value, 4, 0);
  Wanted wanted;
  wanted.duplicates = true;
  wanted.like = voice("1", "");
  EXPECT_THAT(find(wanted, {candidate("far 1", "", far), voice("near 1", "", 1), candidate("far 2", "", far),
                            voice("near 2", "", 1)}),
              ElementsAre("near 1", "near 2", "far 1", "far 2"));
  EXPECT_EQ(found[0].group, 1u);
  EXPECT_EQ(found[3].group, 2u);
}

}  // namespace
}  // namespace Editor
