#include "contents/ContentsWork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "editor/contents/ContentsWorkFixture.h"
#include "support/Allocations.h"

namespace Editor {
namespace {

using namespace ContSrv;  // NOLINT(google-build-using-namespace): every name of it is spoken here
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using Content = Library::Content;

TEST_F(ContentsWorkTest, AFileOfAnEmptySlotCannotBeRead) {
  EXPECT_EQ(work.openDataFile(pathOf(kVoice), OpenMode_Read), nullptr);
  EXPECT_EQ(work.takeError(), "");
}

TEST_F(ContentsWorkTest, APathNamesItsContentAndNothingElseIsAPath) {
  EXPECT_NE(pathOf(kVoice), pathOf(kMulti));
  for (const char* path : {"", "4", "4/", "/5", "4/5 ", " 4/5", "4/-1", "1/128", "0/0", "14/1", "4/4294967296", "../x"})
    for (const _OpenMode mode : {OpenMode_Read, OpenMode_Write})
      EXPECT_EQ(work.openDataFile(path, mode), nullptr) << path;
  EXPECT_EQ(work.openDataFile(pathOf(kVoice), _OpenMode(2)), nullptr);
  std::string path;
  EXPECT_EQ(work.getDataFilePath(0, 0, path), ContRes_NoSuchContent);
  EXPECT_EQ(work.getDataFilePath(4, 0xCCCCCCCC, path), ContRes_NoSuchContent);
}

TEST_F(ContentsWorkTest, WhatWasWrittenIsOnDiskAfterSyncOnly) {
  library.store(kVoice, Bytes{1}, "old");
  write(kVoice, {2, 0, 255}, "new");
  write(kMulti, {3}, "multi");
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  EXPECT_FALSE(onDisk(kMulti));
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"new", {2, 0, 255}}));
  EXPECT_EQ(onDisk(kMulti), (Content{"multi", {3}}));
}

TEST_F(ContentsWorkTest, AFileIsReadAsItWasWritten) {
  Bytes bytes(10000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = std::uint8_t(i * 7);
  library.store(kVoice, bytes, "x");
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Read);
  ASSERT_NE(opened, nullptr);
  Data* const data = opened->openData();
  ASSERT_EQ(data->getSize(), 10000);
  Bytes read(10000);
  EXPECT_EQ(data->read(read.data(), 6000), 6000);
  EXPECT_EQ(data->read(read.data() + 6000, 6000), 4000);
  EXPECT_EQ(data->read(read.data(), 1), 0);
  EXPECT_EQ(read, bytes);
  EXPECT_EQ(opened->closeData(data), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
}

TEST_F(ContentsWorkTest, AFileWrittenInPiecesIsOne) {
  DataFile* const opened = work.openDataFile(pathOf(kSingle), OpenMode_Write);
  Data* const data = opened->openData();
  const Bytes bytes{1, 2, 3, 4, 5};
  EXPECT_EQ(data->write(bytes.data(), 2), 2);
  EXPECT_EQ(data->write(bytes.data() + 2, 3), 3);
  EXPECT_EQ(data->write(nullptr, 0), 0);
  EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kSingle), (Content{"", bytes}));
}

TEST_F(ContentsWorkTest, ClosingDataWithSyncPutsItOnDisk) {
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
  Data* const data = opened->openData();
  const std::uint8_t byte = 9;
  EXPECT_EQ(data->write(&byte, 1), 1);
  EXPECT_EQ(opened->closeData(data), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"", {9}}));
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
}

TEST_F(ContentsWorkTest, AFileThatIsClosedWithItsDataOpenIsWritten) {
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
  const std::uint8_t byte = 9;
  EXPECT_EQ(opened->openData()->write(&byte, 1), 1);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_TRUE(onDisk(kVoice));
}

TEST_F(ContentsWorkTest, OpeningForWritingChangesNothing) {
  library.store(kVoice, Bytes{1}, "old");
  library.takeChanges();
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
  Data* const data = opened->openData();
  EXPECT_EQ(work.setContentName(4, kVoice.number, "new", false), ContRes_Success);
  EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  EXPECT_THAT(library.takeChanges(), IsEmpty());
}

TEST_F(ContentsWorkTest, AFailedWriteLeavesOldBytesAndName) {
  library.store(kVoice, Bytes{1}, "old");
  const std::uint8_t byte = 2;
  const auto fails = [&](Data& data) {
    return std::vector<std::int64_t>{data.write(nullptr, 1), data.write(&byte, -1),
                                     data.write(&byte, std::numeric_limits<std::int64_t>::max())};
  };
  for (const bool failFirst : {true, false}) {
    DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
    Data* const data = opened->openData();
    EXPECT_EQ(work.setContentName(4, kVoice.number, "new", false), ContRes_Success);
    if (!failFirst) {
      EXPECT_EQ(data->write(&byte, 1), 1);
    }
    EXPECT_THAT(fails(*data), ElementsAre(0, 0, 0));
    EXPECT_EQ(data->write(&byte, 1), 0);  // nothing good comes after a failure
    EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_Success);
    EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
    EXPECT_EQ(work.sync(), ContRes_Success);
    EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  }
}

TEST_F(ContentsWorkTest, OneFailedFileDoesNotStopTheOthers) {
  write(kVoice, {1}, "good");
  DataFile* const opened = work.openDataFile(pathOf(kMulti), OpenMode_Write);
  EXPECT_EQ(opened->openData()->write(nullptr, 1), 0);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  write(kOtherVoice, {2}, "good");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(kVoice, kOtherVoice));
}

TEST_F(ContentsWorkTest, AContentThatIsWrittenAndNotNamedKeepsItsName) {
  library.store(kVoice, Bytes{1}, "old");
  write(kVoice, {2});
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {2}}));
  write(kVoice, {3}, "new");
  write(kVoice, {4});
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"new", {4}}));
  write(kVoice, {5}, "");
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"", {5}}));
}

TEST_F(ContentsWorkTest, AContentForWhichNoNameWasSetHasTheEmptyName) {
  write(kVoice, {1});
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"", {1}}));
  std::string name = "something";
  EXPECT_EQ(work.getContentName(4, kVoice.number, name), ContRes_Success);
  EXPECT_EQ(name, "");
}

TEST_F(ContentsWorkTest, ANameGoesWithTheContentThatIsRemoved) {
  library.store(kMixingVoice, Bytes{1}, "old");
  EXPECT_EQ(work.removeMixingVoice(1, 1, ContentNumber_All), ContRes_Success);
  write(kMixingVoice, {2});
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kMixingVoice), (Content{"", {2}}));
}

TEST_F(ContentsWorkTest, ANameThatTheLibraryRefusesLeavesEverythingAsItWas) {
  library.store(kVoice, Bytes{1}, "old");
  plain(
      "CREATE TRIGGER full BEFORE INSERT ON content WHEN new.name = CAST('new' AS BLOB) "
      "BEGIN SELECT RAISE(ABORT, 'disk full'); END");
  write(kOtherVoice, {1}, "good");
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
  Data* const data = opened->openData();
  EXPECT_EQ(work.setContentName(4, kVoice.number, "new", false), ContRes_Success);  // not before the bytes
  const std::uint8_t byte = 2;
  EXPECT_EQ(data->write(&byte, 1), 1);
  EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_StoreError);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_StoreError);
  EXPECT_EQ(onDisk(kVoice), (Content{"old", {1}}));
  EXPECT_THAT(other.contents(), ElementsAre(kVoice));
}

// Every allocation fails once, alone and with all that follow it.
TEST_F(ContentsWorkTest, WhenStorageRunsOutAContentIsTheOldOneOrTheNewOne) {
  const Content before{"an old name that needs storage", {1}};
  const Content after{"a new name that needs storage", Bytes(1000, 2)};
  const std::string path = pathOf(kVoice);
  const auto replace = [&] {
    DataFile* const opened = work.openDataFile(path, OpenMode_Write);
    if (opened == nullptr) return;
    Data* const data = opened->openData();
    work.setContentName(4, kVoice.number, after.name, false);
    data->write(after.bytes.data(), std::int64_t(after.bytes.size()));
    opened->closeDataWithoutSync(data);
    work.closeDataFile(opened, 0);
    work.removeContent(4, kMixingVoice.number);
    work.sync();
  };
  for (const bool onwards : {false, true}) {
    bool isReplaced = false;
    for (long number = 1; !isReplaced; ++number) {
      library.store(kVoice, before.bytes, before.name);
      library.store(kMixingVoice, before.bytes, before.name);
      Testing::allocations.ofWithFailure(number, onwards, replace);
      work.abandonPass();
      isReplaced = onDisk(kVoice) == after && !onDisk(kMixingVoice);
      EXPECT_TRUE(isReplaced || (onDisk(kVoice) == before && onDisk(kMixingVoice) == before))
          << "allocation " << number;
      ASSERT_LT(number, 1000);
    }
  }
}

TEST_F(ContentsWorkTest, ANameGoesToTheFileThatIsOpenForIt) {
  library.store({4, 0x3F3C03}, Bytes{1}, "old");
  DataFile* const opened = work.openDataFile(pathOf({4, 0x3F8003}), OpenMode_Write);
  Data* const data = opened->openData();
  EXPECT_EQ(work.setContentName(4, 0x3F3C03, "new", false), ContRes_Success);
  const std::uint8_t byte = 2;
  EXPECT_EQ(data->write(&byte, 1), 1);
  EXPECT_EQ(opened->closeData(data), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(onDisk({4, 0x3F3C03}), (Content{"new", {2}}));
}

TEST_F(ContentsWorkTest, ANameThatComesAfterTheDataWasClosedRenamesTheContent) {
  DataFile* const opened = work.openDataFile(pathOf(kVoice), OpenMode_Write);
  Data* const data = opened->openData();
  const std::uint8_t byte = 2;
  EXPECT_EQ(data->write(&byte, 1), 1);
  EXPECT_EQ(opened->closeDataWithoutSync(data), ContRes_Success);
  EXPECT_EQ(work.setContentName(4, kVoice.number, "late", false), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(opened, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_EQ(onDisk(kVoice), (Content{"late", {2}}));
}

TEST_F(ContentsWorkTest, MisuseOfFilesIsRefused) {
  library.store(kVoice, Bytes{1}, "x");
  DataFile* const reading = work.openDataFile(pathOf(kVoice), OpenMode_Read);
  DataFile* const writing = work.openDataFile(pathOf(kMulti), OpenMode_Write);
  Data* const data = reading->openData();
  Data* const empty = writing->openData();
  std::uint8_t byte = 0;
  EXPECT_EQ(reading->openData(), nullptr);
  EXPECT_EQ(data->write(&byte, 1), 0);
  EXPECT_EQ(empty->read(&byte, 1), 0);
  EXPECT_EQ(data->read(nullptr, 1), 0);
  EXPECT_EQ(data->read(&byte, -1), 0);
  EXPECT_EQ(reading->closeData(empty), ContRes_Failure);
  EXPECT_EQ(reading->closeDataWithoutSync(nullptr), ContRes_Failure);
  EXPECT_EQ(reading->closeData(data), ContRes_Success);
  EXPECT_EQ(reading->closeData(data), ContRes_Failure);
  EXPECT_EQ(work.closeDataFile(reading, 0), ContRes_Success);
  EXPECT_EQ(work.closeDataFile(reading, 0), ContRes_Failure);
  EXPECT_EQ(work.closeDataFile(nullptr, 0), ContRes_Failure);
  EXPECT_EQ(work.closeDataFile(writing, 0), ContRes_Success);
  EXPECT_EQ(work.sync(), ContRes_Success);
  EXPECT_THAT(other.contents(), ElementsAre(kVoice));
}

}  // namespace
}  // namespace Editor
