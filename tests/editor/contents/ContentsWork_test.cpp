#include "contents/ContentsWork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "editor/contents/ContentsWorkFixture.h"

namespace Editor {
namespace {

using namespace ContSrv;  // NOLINT(google-build-using-namespace): every name of it is spoken here
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using Content = Library::Content;

// ---- Numbers and names ----------------------------------------------------------------------------------------------

TEST_F(ContentsWorkTest, LoadSaveFlagIsTheEditors) {
  EXPECT_EQ(work.getLoadSaveFlag(), 0);
  work.setLoadSaveFlag(true);
  EXPECT_EQ(work.getLoadSaveFlag(), 1);
  work.setLoadSaveFlag(false);
  EXPECT_EQ(work.getLoadSaveFlag(), 0);
}

TEST_F(ContentsWorkTest, MixingVoicesAreNumberedBySixteens) {
  EXPECT_EQ(work.getMixingVoiceNumber(1, 1, 0), 0x3F8010U);
  EXPECT_EQ(work.getMixingVoiceNumber(1, 127, 15), 0x3F87FFU);
}

TEST_F(ContentsWorkTest, MixingVoicesOfContentZeroAreTheVoicesOfBank15) {
  EXPECT_EQ(work.getMixingVoiceNumber(1, 0, 0), 0x3F3C00U);
  EXPECT_EQ(work.getMixingVoiceNumber(1, 0, 15), 0x3F3C0FU);
  write({4, 0x3F8005}, {1}, "One");
  write({4, 0x3F3C05}, {2}, "Two");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(ContentId{4, 0x3F3C05}));
  EXPECT_EQ(onDisk({4, 0x3F8005}), (Content{"Two", {2}}));
}

TEST_F(ContentsWorkTest, WhatIsNoMixingVoiceHasANumberThatNoContentHas) {
  constexpr unsigned long kBeyond32Bits = 0x100000000;
  for (const auto& [type, number, voice] :
       std::vector<std::tuple<_ContType, unsigned long, unsigned long>>{{4, 0, 0},
                                                                        {1, 128, 0},
                                                                        {1, 0, 16},
                                                                        {1, kBeyond32Bits, 0},
                                                                        {1, 0, kBeyond32Bits},
                                                                        {1, 0, ContentNumber_All}}) {
    std::string name = "untouched";
    std::string path;
    EXPECT_EQ(work.getDataFilePath(ContType_Voice, work.getMixingVoiceNumber(type, number, voice), path),
              ContRes_NoSuchContent);
    EXPECT_EQ(work.getMixingVoiceName(type, number, voice, name), ContRes_NoSuchContent);
    EXPECT_EQ(name, "untouched");
  }
  EXPECT_EQ(work.removeMixingVoice(1, 0, 16), ContRes_NoSuchContent);
  EXPECT_EQ(work.removeMixingVoice(1, kBeyond32Bits, 0), ContRes_NoSuchContent);
  EXPECT_EQ(work.removeMixingVoice(4, 0, 0), ContRes_NoSuchContent);
}

TEST_F(ContentsWorkTest, TheNameOfAnEmptySlotIsEmptyContent) {
  std::string name = "untouched";
  EXPECT_EQ(work.getContentName(1, 7, name), ContRes_EmptyContent);
  EXPECT_EQ(work.getMixingVoiceName(1, 0, 3, name), ContRes_EmptyContent);
  EXPECT_EQ(name, "untouched");
  EXPECT_EQ(work.getContentName(1, 128, name), ContRes_NoSuchContent);
  EXPECT_EQ(work.getContentName(0, 0, name), ContRes_NoSuchContent);
}

TEST_F(ContentsWorkTest, TellsTheNamesOfContentsAndMixingVoices) {
  library.store(kMulti, Bytes{1}, "Multi");
  library.store(kMixingVoice, Bytes{1}, "Mixing");
  std::string name;
  EXPECT_EQ(work.getContentName(1, 7, name), ContRes_Success);
  EXPECT_EQ(name, "Multi");
  EXPECT_EQ(work.getMixingVoiceName(1, 1, 3, name), ContRes_Success);
  EXPECT_EQ(name, "Mixing");
}

TEST_F(ContentsWorkTest, ASynchronousNameIsOnDiskByteForByte) {
  library.store(kVoice, Bytes{1, 2}, "old");
  const std::string name("a\0\xFF", 3);
  EXPECT_EQ(work.setContentName(4, kVoice.number, name, true), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{name, {1, 2}}));
}

TEST_F(ContentsWorkTest, ANameWithoutSyncIsOnDiskAfterSync) {
  library.store(kVoice, Bytes{1}, "old");
  EXPECT_EQ(work.setContentName(4, kVoice.number, "new", false), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice)->name, "old");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice)->name, "new");
}

TEST_F(ContentsWorkTest, AnEmptySlotTakesNoName) {
  EXPECT_EQ(work.setContentName(4, kVoice.number, "x", true), ContRes_EmptyContent);
  EXPECT_EQ(work.setContentName(4, 0xFFFFFF, "x", true), ContRes_NoSuchContent);
  EXPECT_THAT(other.contents(), IsEmpty());
}

TEST_F(ContentsWorkTest, ThereAreAsManyMixingVoicesAsTheSettingAllows) {
  std::int64_t count = -1;
  std::int64_t maximum = -1;
  EXPECT_EQ(work.getMixingVoiceSumSync(count, maximum), ContRes_Success);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(maximum, 2048);
  library.setMixingVoiceMaximum(3);
  for (const std::uint32_t number : {0x3F3C00u, 0x3F8000u, 0x3F8010u, 0x3F87FFu, 0x3F0800u})
    library.store({4, number}, Bytes{1}, "");
  EXPECT_EQ(work.getMixingVoiceSumSync(count, maximum), ContRes_Success);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(maximum, 3);
}

// ---- Removal --------------------------------------------------------------------------------------------------------

TEST_F(ContentsWorkTest, RemovingAMixingVoiceIsOnDiskAtOnce) {
  library.store({4, 0x3F3C05}, Bytes{1}, "x");
  EXPECT_EQ(work.removeMixingVoice(1, 0, 5), ContRes_Success);
  EXPECT_FALSE(onDisk({4, 0x3F3C05}));
  EXPECT_EQ(work.removeMixingVoice(1, 0, 5), ContRes_DoNothing);
  EXPECT_FALSE(work.abandonPass());
}

TEST_F(ContentsWorkTest, RemovingAllMixingVoicesOfAContentLeavesTheOthers) {
  for (const std::uint32_t number : {0x3F8010u, 0x3F801Fu, 0x3F8020u, 0x3F3C00u})
    library.store({4, number}, Bytes{1}, "");
  EXPECT_EQ(work.removeMixingVoice(1, 1, ContentNumber_All), ContRes_Success);
  EXPECT_EQ(work.removeMixingVoice(1, 1, ContentNumber_All), ContRes_DoNothing);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(ContentId{4, 0x3F3C00}, ContentId{4, 0x3F8020}));
}

TEST_F(ContentsWorkTest, RemovingAllMixingVoicesIsOnePassWithWhatIsWrittenAfterwards) {
  library.store(kMixingVoice, Bytes{1}, "old");
  for (unsigned long n = 0; n < 128; ++n) work.removeMixingVoice(1, n, ContentNumber_All);
  write(kVoice, {2}, "new");
  EXPECT_TRUE(onDisk(kMixingVoice));
  EXPECT_FALSE(onDisk(kVoice));
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_FALSE(onDisk(kMixingVoice));
  EXPECT_TRUE(onDisk(kVoice));
}

TEST_F(ContentsWorkTest, RemovingAMixingVoiceInsideAPassWaitsForSync) {
  library.store(kMixingVoice, Bytes{1}, "old");
  write(kVoice, {2}, "new");
  EXPECT_EQ(work.removeMixingVoice(1, 1, 3), ContRes_Success);
  EXPECT_TRUE(onDisk(kMixingVoice));
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(kVoice));
}

TEST_F(ContentsWorkTest, RemovingContentsThatAreNotThereIsDoNothing) {
  library.store({1, 1}, Bytes{1}, "");
  library.store({1, 2}, Bytes{1}, "");
  EXPECT_EQ(work.removeContents(1, {0, 1, 2}, false), ContRes_Success);
  EXPECT_EQ(work.removeContents(1, {0, 1, 2}, false), ContRes_DoNothing);
  EXPECT_EQ(work.removeContent(1, 1), ContRes_DoNothing);
  EXPECT_EQ(other.contents().size(), 2U);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), IsEmpty());
}

TEST_F(ContentsWorkTest, SynchronousRemovalIsOnDiskWhenItReturns) {
  library.store({1, 1}, Bytes{1}, "");
  EXPECT_EQ(work.removeContents(1, {1}, true), ContRes_Success);
  EXPECT_THAT(other.contents(), IsEmpty());
}

TEST_F(ContentsWorkTest, RemovingOneContentWaitsForSync) {
  library.store(kMixingVoice, Bytes{1}, "");
  EXPECT_EQ(work.removeContent(4, kMixingVoice.number), ContRes_Success);
  EXPECT_TRUE(onDisk(kMixingVoice));
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_FALSE(onDisk(kMixingVoice));
}

// ---- Passes ---------------------------------------------------------------------------------------------------------

TEST_F(ContentsWorkTest, APassWithoutContentsNeedsNoLibrary) {
  plain("BEGIN IMMEDIATE");
  EXPECT_EQ(work.requestOverWriteConfig(0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
}

TEST_F(ContentsWorkTest, ARequestToOverwriteBeginsAPass) {
  EXPECT_EQ(work.requestOverWriteConfig(1), ContRes_Success);
  EXPECT_TRUE(work.abandonPass());
}

TEST_F(ContentsWorkTest, AnAbandonedPassLeavesNothing) {
  library.store(kVoice, Bytes{1}, "old");
  library.takeChanges();
  write(kVoice, {2}, "new");
  work.removeContent(4, kVoice.number);
  DataFile* const open = work.openDataFile(pathOf(kMulti), OpenMode_Write);
  EXPECT_TRUE(work.abandonPass());
  EXPECT_FALSE(work.abandonPass());
  EXPECT_EQ(work.closeDataFile(open, 0), ContRes_Failure);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  EXPECT_THAT(library.takeChanges(), IsEmpty());
}

TEST_F(ContentsWorkTest, APassEndsWithItsWork) {
  {
    ContentsWork shortLived(library);
    EXPECT_EQ(shortLived.removeContents(1, {1}, false), ContRes_DoNothing);
  }
  EXPECT_EQ(work.requestOverWriteConfig(1), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
}

TEST_F(ContentsWorkTest, APassIsPartOfTheEditorsTransaction) {
  {
    Library::Transaction message(library);
    write(kVoice, {1}, "x");
    EXPECT_EQ(work.sync(), ContRes_Success);
    EXPECT_THAT(library.takeChanges(), IsEmpty());
    EXPECT_FALSE(onDisk(kVoice));
    write(kMulti, {1}, "x");
    EXPECT_TRUE(work.abandonPass());
    message.commit();
  }
  EXPECT_THAT(other.contents(), ElementsAre(kVoice));
  EXPECT_THAT(library.takeChanges(), ElementsAre(Change{What::stored, contentAt(kVoice)}));
}

TEST_F(ContentsWorkTest, APassMayOutliveTheEditorsTransaction) {
  {
    Library::Transaction message(library);
    write(kVoice, {1}, "x");
  }
  EXPECT_TRUE(work.abandonPass());
  write(kMulti, {1}, "x");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(kMulti));
}

TEST_F(ContentsWorkTest, ChangesAreListedAfterTheirPassOnly) {
  library.store(kMixingVoice, Bytes{1}, "old");
  library.takeChanges();
  write(kVoice, {1}, "x");
  work.removeContent(4, kMixingVoice.number);
  EXPECT_THAT(library.takeChanges(), IsEmpty());
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(library.takeChanges(),
              ElementsAre(Change{What::stored, contentAt(kVoice)}, Change{What::removed, contentAt(kMixingVoice)}));
}

// ---- A library that fails -------------------------------------------------------------------------------------------

TEST_F(ContentsWorkTest, ALockedLibraryIsAStoreError) {
  library.store(kVoice, Bytes{1}, "old");
  plain("BEGIN IMMEDIATE");
  EXPECT_EQ(work.openDataFile(pathOf(kVoice), OpenMode_Write), nullptr);
  EXPECT_EQ(work.removeContents(4, {kVoice.number}, false), ContRes_StoreError);
  EXPECT_EQ(work.sync(), ContRes_StoreError);
  EXPECT_THAT(work.takeError(), HasSubstr("is locked by another program"));
  EXPECT_EQ(work.takeError(), "");
  EXPECT_EQ(work.removeMixingVoice(1, 0, 0), ContRes_StoreError);
  EXPECT_EQ(work.setContentName(4, kVoice.number, "new", true), ContRes_StoreError);
  EXPECT_EQ(work.setContentFavoriteFlag(4, kVoice.number, 1, false), ContRes_StoreError);
  EXPECT_FALSE(work.abandonPass());
  plain("COMMIT");
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  EXPECT_EQ(work.setContentName(4, kVoice.number, "new", true), ContRes_Success);
}

// As a full disk does: the statement fails and SQLite ends the transaction.
TEST_F(ContentsWorkTest, AFailureTakesTheWholePassBack) {
  library.store(kVoice, Bytes{1}, "old");
  library.takeChanges();
  for (const char* effect : {"ROLLBACK", "ABORT", "FAIL"}) {
    plain(std::string("DROP TRIGGER IF EXISTS full; CREATE TRIGGER full BEFORE INSERT ON content WHEN new.type = 1 "
                      "BEGIN SELECT RAISE(") +
          effect + ", 'disk full'); END");
    write(kVoice, {2}, "new");
    DataFile* const opened = work.openDataFile(pathOf(kMulti), OpenMode_Write);
    Data* const data = opened->openData();
    const std::uint8_t byte = 2;
    EXPECT_EQ(data->write(&byte, 1), 1);
    EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_StoreError);
    EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
    EXPECT_EQ(work.openDataFile(pathOf(kOtherVoice), OpenMode_Write), nullptr);
    EXPECT_EQ(work.removeContent(4, kVoice.number), ContRes_StoreError);
    EXPECT_EQ(work.requestOverWriteConfig(4), ContRes_StoreError);
    EXPECT_EQ(work.requestOverWriteConfig(0), ContRes_StoreError);
    EXPECT_EQ(work.sync(), ContRes_StoreError);
    EXPECT_THAT(work.takeError(), HasSubstr("disk full"));
    EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
    EXPECT_THAT(other.contents(), ElementsAre(kVoice));
    EXPECT_THAT(library.takeChanges(), IsEmpty());
  }
  write(kOtherVoice, {1}, "works again");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_TRUE(onDisk(kOtherVoice));
}

TEST_F(ContentsWorkTest, ADamagedLibraryIsAStoreErrorInEveryOperation) {
  library.store(kVoice, Bytes{1}, "x");
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Read);
  plain("DROP TABLE content; DROP TABLE favourite; DROP TABLE setting");
  std::string name = "untouched";
  std::int64_t count = 0;
  std::int64_t maximum = 0;
  ContentInformation information;
  EXPECT_EQ(work.getContentName(4, kVoice.number, name), ContRes_StoreError);
  EXPECT_EQ(work.getMixingVoiceName(1, 0, 0, name), ContRes_StoreError);
  EXPECT_EQ(work.getMixingVoiceSumSync(count, maximum), ContRes_StoreError);
  EXPECT_EQ(work.openDataFile(pathOf(kVoice), OpenMode_Read), nullptr);
  EXPECT_EQ(work.getContentInformation(4, kVoice.number, information), ContRes_StoreError);
  EXPECT_EQ(work.takeError(), file.string() + ": no such table: content");  // the first of them
  for (const auto& operation : std::vector<std::function<_ContResult()>>{
           [&] { return work.removeMixingVoice(1, 0, 0); },
           [&] { return work.removeMixingVoice(1, 0, ContentNumber_All); },
           [&] { return work.removeContents(4, {1}, false); },
           [&] { return work.removeContents(4, {1}, true); },
           [&] { return work.removeContent(4, 1); },
           [&] { return work.setContentName(4, kVoice.number, "x", false); },
           [&] { return work.setContentName(4, kVoice.number, "x", true); },
           [&] { return work.setContentFavoriteFlag(4, 1, 1, true); },
       }) {
    EXPECT_EQ(operation(), ContRes_StoreError);
    EXPECT_NE(work.takeError(), "");
    work.abandonPass();
  }
  EXPECT_EQ(name, "untouched");
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Failure);  // dropped with the pass
}

// ---- Favourites -----------------------------------------------------------------------------------------------------

TEST_F(ContentsWorkTest, ARunOfFavouriteFlagsIsOneTransaction) {
  for (std::uint32_t i = 0; i < 127; ++i)
    EXPECT_EQ(work.setContentFavoriteFlag(4, i, std::uint8_t(i + 1), false), ContRes_Success);
  EXPECT_THAT(other.favourites(), IsEmpty());
  EXPECT_EQ(work.setContentFavoriteFlag(4, 127, 128, true), ContRes_Success);
  EXPECT_EQ(other.favourites().size(), 128U);
  for (std::uint32_t i = 0; i < 128; ++i) EXPECT_EQ(other.favourite({4, i}), i + 1);
  EXPECT_FALSE(work.abandonPass());
}

TEST_F(ContentsWorkTest, AFailedRunOfFavouriteFlagsLeavesNone) {
  plain(
      "CREATE TRIGGER full BEFORE INSERT ON favourite WHEN new.number = 2 BEGIN SELECT RAISE(ABORT, 'disk full'); "
      "END");
  EXPECT_EQ(work.setContentFavoriteFlag(4, 1, 1, false), ContRes_Success);
  EXPECT_EQ(work.setContentFavoriteFlag(4, 2, 1, false), ContRes_StoreError);
  EXPECT_THAT(other.favourites(), IsEmpty());
  // No last flag comes; the next run is a new one.
  EXPECT_EQ(work.setContentFavoriteFlag(4, 3, 1, true), ContRes_Success);
  EXPECT_THAT(other.favourites(), ElementsAre(std::pair(ContentId{4, 3}, Library::Flag(1))));
}

TEST_F(ContentsWorkTest, AnEmptySlotStillTellsItsFavouriteFlag) {
  ContentInformation information;
  EXPECT_EQ(work.getContentInformation(4, kVoice.number, information), ContRes_EmptyContent);
  EXPECT_EQ(information.favoriteFlag, 0);
  EXPECT_EQ(work.setContentFavoriteFlag(4, kVoice.number, 0x81, true), ContRes_Success);
  EXPECT_EQ(work.getContentInformation(4, kVoice.number, information), ContRes_EmptyContent);
  EXPECT_EQ(information.favoriteFlag, 0x81);
  library.store(kVoice, Bytes{1}, "x");
  information.favoriteFlag = 0;
  EXPECT_EQ(work.getContentInformation(4, kVoice.number, information), ContRes_Success);
  EXPECT_EQ(information.favoriteFlag, 0x81);
}

TEST_F(ContentsWorkTest, FavouriteFlagsSurviveTheRemovalOfTheContent) {
  library.store(kVoice, Bytes{1}, "x");
  EXPECT_EQ(work.setContentFavoriteFlag(4, kVoice.number, 1, true), ContRes_Success);
  EXPECT_EQ(work.removeContents(4, {kVoice.number}, true), ContRes_Success);
  ContentInformation information;
  EXPECT_EQ(work.getContentInformation(4, kVoice.number, information), ContRes_EmptyContent);
  EXPECT_EQ(information.favoriteFlag, 1);
}

TEST_F(ContentsWorkTest, FlagsPastTheEndOfABankAreKeptToo) {
  EXPECT_EQ(work.setContentFavoriteFlag(4, 0x3F0A80, 1, true), ContRes_Success);
  EXPECT_EQ(other.favourite({4, 0x3F0A80}), 1);
}

}  // namespace
}  // namespace Editor
