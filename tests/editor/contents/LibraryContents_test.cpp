#include "contents/Library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rapidcheck.h>

#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using Content = Library::Content;

TEST_F(LibraryTest, KeepsAnyNameAndAnyBytes) {
  Library library(file);
  EXPECT_TRUE(rc::check([&](const std::string& name, const Bytes& bytes) {
    library.store(kVoice, bytes, name);
    RC_ASSERT(library.content(kVoice) == (Content{name, bytes}));
    RC_ASSERT(library.contentName(kVoice) == name);
  }));
}

TEST_F(LibraryTest, KeepsZerosAndBytesAbove7F) {
  Library library(file);
  const std::string name("a\0b\xFF\x80", 5);
  library.store(kVoice, Bytes{0, 255, 0, 128}, name);
  EXPECT_EQ(library.content(kVoice), (Content{name, {0, 255, 0, 128}}));
}

TEST_F(LibraryTest, StoringReplacesNameAndBytes) {
  Library library(file);
  library.store(kVoice, Bytes{1, 2}, "old");
  library.store(kVoice, Bytes{3}, "");
  EXPECT_EQ(library.content(kVoice), (Content{"", {3}}));
  EXPECT_THAT(library.contents(), ElementsAre(kVoice));
}

TEST_F(LibraryTest, ListsContentsByTypeAndNumber) {
  Library library(file);
  for (const ContentId id : {ContentId{14, 0}, ContentId{4, 9}, ContentId{1, 127}, ContentId{4, 8}})
    library.store(id, Bytes{1}, "");
  EXPECT_THAT(library.contents(), ElementsAre(ContentId{1, 127}, ContentId{4, 8}, ContentId{4, 9}, ContentId{14, 0}));
}

TEST_F(LibraryTest, RenamesWhatIsThereAndNothingElse) {
  Library library(file);
  library.store(kVoice, Bytes{1}, "old");
  EXPECT_TRUE(library.rename(kVoice, "new"));
  EXPECT_FALSE(library.rename(kMulti, "new"));
  EXPECT_EQ(library.content(kVoice), (Content{"new", {1}}));
  EXPECT_FALSE(library.content(kMulti));
}

TEST_F(LibraryTest, TheTwoNumbersOfAMixingVoiceAreOneContent) {
  Library library(file);
  library.store(kSameMixingVoice, Bytes{1}, "Mix");
  library.setFavourite(kSameMixingVoice, 1);
  EXPECT_EQ(library.content(kBank15Voice), (Content{"Mix", {1}}));
  EXPECT_EQ(library.favourite(kBank15Voice), 1);
  EXPECT_THAT(library.contents(), ElementsAre(kBank15Voice));
  library.store(kBank15Voice, Bytes{2}, "Mix");
  EXPECT_EQ(library.mixingVoiceCount(), 1);
  EXPECT_TRUE(library.rename(kSameMixingVoice, "Again"));
  EXPECT_TRUE(library.remove(kSameMixingVoice));
  EXPECT_THAT(library.contents(), IsEmpty());
}

TEST_F(LibraryTest, CountsMixingVoicesOfBothRangesOnce) {
  Library library(file);
  library.store({4, 0x3F3C00}, Bytes{1}, "");
  library.store({4, 0x3F3C0F}, Bytes{1}, "");
  library.store({4, 0x3F8000}, Bytes{1}, "");  // the first one again
  library.store({4, 0x3F8010}, Bytes{1}, "");
  library.store({4, 0x3F87FF}, Bytes{1}, "");
  EXPECT_EQ(library.mixingVoiceCount(), 4);
  for (const std::uint32_t number : {0x3F3B7Fu, 0x3F3C10u, 0x3F0800u, 0x000000u})
    library.store({4, number}, Bytes{1}, "");
  library.store({1, 5}, Bytes{1}, "");
  EXPECT_EQ(library.mixingVoiceCount(), 4);
}

TEST_F(LibraryTest, AFavouriteFlagSurvivesTheRemovalOfItsContent) {
  Library library(file);
  library.store(kVoice, Bytes{1}, "x");
  library.setFavourite(kVoice, 1);
  EXPECT_TRUE(library.remove(kVoice));
  EXPECT_FALSE(library.remove(kVoice));
  EXPECT_EQ(library.favourite(kVoice), 1);
}

TEST_F(LibraryTest, KeepsAFavouriteFlagAsItCame) {
  Library library(file);
  for (unsigned flag = 0; flag <= 255; ++flag) library.setFavourite({4, flag}, std::uint8_t(flag));
  for (unsigned flag = 0; flag <= 255; ++flag) EXPECT_EQ(library.favourite({4, flag}), flag);
  EXPECT_EQ(library.favourites().size(), 255U);
  library.setFavourite({4, 255}, 0);
  EXPECT_EQ(library.favourites().size(), 254U);
}

TEST_F(LibraryTest, KeepsLiveModelsByKey) {
  Library library(file);
  EXPECT_FALSE(library.live("system"));
  library.storeLive("system", Bytes{1});
  library.storeLive("part:3", Bytes{});
  library.storeLive("system", Bytes{2});
  EXPECT_EQ(library.live("system"), Bytes{2});
  EXPECT_EQ(library.live("part:3"), Bytes{});
  EXPECT_THAT(library.liveKeys(), ElementsAre("part:3", "system"));
}

TEST_F(LibraryTest, AnUnsetSettingHasNoValue) {
  Library library(file);
  EXPECT_EQ(library.setting("anything"), std::nullopt);
  library.set("anything", -1);
  library.set("anything", 77);
  EXPECT_EQ(library.setting("anything"), 77);
}

}  // namespace
}  // namespace Editor
