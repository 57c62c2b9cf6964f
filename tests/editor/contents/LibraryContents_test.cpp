#include "contents/Library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdint>
#include <functional>
#include <vector>

#include <rapidcheck.h>

#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using Content = Library::Content;
using Kind = LibraryError::Kind;

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

#if SIZE_MAX > UINT32_MAX  // elsewhere nothing has such a size
TEST_F(LibraryTest, BytesThatSQLiteCannotCountAreRefusedAndNotCut) {
  // Of 4 GiB and 16 bytes an int keeps the 16. No page of them is ever touched.
  constexpr std::size_t kSize = (std::size_t{1} << 32) + 16;
  void* const pages = ::mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  const std::span<const std::uint8_t> huge(static_cast<const std::uint8_t*>(pages), kSize);
  Library library(file);
  library.store(kVoice, Bytes{1}, "old");
  library.storeLive("system", Bytes{1});
  for (const auto& store : std::vector<std::function<void()>>{[&] { library.store(kVoice, huge, "new"); },
                                                              [&] { library.store(kMulti, huge, "new"); },
                                                              [&] { library.storeLive("system", huge); }}) {
    const auto error = errorOf(store);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), Kind::Failed);
  }
  EXPECT_EQ(library.content(kVoice), (Content{"old", {1}}));
  EXPECT_THAT(library.contents(), ElementsAre(kVoice));
  EXPECT_EQ(library.live("system"), Bytes{1});
  library.store(kVoice, Bytes{2}, "new");
  EXPECT_EQ(library.content(kVoice), (Content{"new", {2}}));
  ::munmap(pages, kSize);
}
#endif

// Cut to the bits that it has room for it would be that of another content, or no flag at all.
TEST_F(LibraryTest, ANumberOutOfRangeIsDamage) {
  madeLibrary(file);
  Library library(file);
  PlainDatabase plain(file);
  const auto isDamage = [&](const std::function<void()>& operation) {
    const auto error = errorOf(operation);
    return error && error->kind() == Kind::Damaged;
  };
  for (const char* const numbers : {"4, 4298901509", "4294967300, 4144133", "4, -1", "-1, 1"}) {
    plain(std::string("DELETE FROM content; INSERT INTO content VALUES(") + numbers + ", x'', x'01', 0)");
    EXPECT_TRUE(isDamage([&] { library.contents(); })) << numbers;
  }
  plain("DELETE FROM content; INSERT INTO content VALUES(4, 4299096064, x'', x'01', 0)");  // 3F8000 and 4 GiB
  EXPECT_TRUE(isDamage([&] { library.mixingVoiceCount(); }));
  for (const char* const flag : {"256", "-1"}) {
    plain(std::string("DELETE FROM favourite; INSERT INTO favourite VALUES(4, 1, ") + flag + ")");
    EXPECT_EQ(errorOf([&] { library.favourite({4, 1}); })->kind(), Kind::DamagedPlace) << flag;
    EXPECT_TRUE(isDamage([&] { library.favourites(); })) << flag;
  }
}

TEST_F(LibraryTest, StoringReplacesNameAndBytes) {
  Library library(file);
  library.store(kVoice, Bytes{1, 2}, "old");
  library.store(kVoice, Bytes{3}, "");
  EXPECT_EQ(library.content(kVoice), (Content{"", {3}}));
  EXPECT_THAT(library.contents(), ElementsAre(kVoice));
}

TEST_F(LibraryTest, BytesAloneLeaveTheNameThatIsThere) {
  Library library(file);
  library.store(kVoice, Bytes{1, 2}, "old");
  library.store(kSameMixingVoice, Bytes{1}, "mix");
  library.takeChanges();
  library.store(kVoice, Bytes{3});
  library.store(kBank15Voice, Bytes{4});
  EXPECT_EQ(library.content(kVoice), (Content{"old", {3}}));
  EXPECT_EQ(library.content(kSameMixingVoice), (Content{"mix", {4}}));
  EXPECT_THAT(library.takeChanges(),
              ElementsAre(Change{What::stored, contentAt(kVoice)}, Change{What::stored, contentAt(kBank15Voice)}));
}

TEST_F(LibraryTest, BytesAloneAreAContentWithTheEmptyName) {
  Library library(file);
  library.store(kVoice, Bytes{1});
  EXPECT_EQ(library.content(kVoice), (Content{"", {1}}));
  library.store(kMulti, Bytes{1}, "old");
  EXPECT_TRUE(library.remove(kMulti));
  library.store(kMulti, Bytes{2});
  EXPECT_EQ(library.content(kMulti), (Content{"", {2}}));
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
