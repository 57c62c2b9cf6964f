#include "BulkExecuterFileDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "FileDumpFixture.h"

namespace BDA {
namespace {

using ::testing::ElementsAre;
using Testing::pattern;

using FileDump = FileDumpFixture;

// Triggers ----------------------------------------------------------------------------------------------------------

TEST_F(FileDump, AnEmptyTriggerStillFlushesType0AndSynchronises) {
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(0)", "sync"));
}

TEST_F(FileDump, ATriggerWritesOnceAndLetsGo) {
  hold("0C 0A 05", fieldOf("Piano", pattern(5)));
  EXPECT_EQ(trigger(), 0x800u);
  calls();
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({}, 0));
}

TEST_F(FileDump, TheDataOfATriggerDoNotMatter) {
  hold("0C 0A 05", fieldOf("Piano", pattern(5)));
  EXPECT_EQ(receive("11 00 00", pattern(0x3FFF)), 0x800u);
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Piano", 5)}, kVoice));
}

Lines removals() {
  Lines all;
  for (int multi = 0; multi < 128; ++multi)
    all.push_back("removeMixingVoice(1, " + std::to_string(multi) + ", 4294967295)");
  return all;
}

TEST_F(FileDump, TheSecondTriggerRemovesAllMixingVoicesOfAllMultisFirst) {
  hold("0C 10 05", fieldOf("New", pattern(5)));
  EXPECT_EQ(receive("11 01 00", {}), 0x800u);
  Lines expected = removals();
  const Lines then = pass({written(kVoice, 0x3F8050, "New", 5, true)}, kVoice);
  expected.insert(expected.end(), then.begin(), then.end());
  EXPECT_EQ(calls(), expected);
}

TEST_F(FileDump, ARemovalThatFailsIsReportedAndTheOthersGoOn) {
  hold("0C 0A 05", fieldOf("Written", pattern(5)));
  record.answer("removeMixingVoice", ContSrv::ContRes_DoNothing, 1);
  record.answer("removeMixingVoice", ContSrv::ContRes_EmptyContent, 2);
  record.answer("removeMixingVoice", ContSrv::ContRes_StoreError, 128);
  EXPECT_EQ(receive("11 01 00", {}), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inSet("error: failed to remove mixing voices ! [ ContSrvResult = 2 ]\n"),
                              inSet("error: failed to remove mixing voices ! [ ContSrvResult = 5 ]\n")}));
  Lines expected = removals();
  const Lines then = pass({written(kVoice, 2053, "Written", 5)}, kVoice);
  expected.insert(expected.end(), then.begin(), then.end());
  EXPECT_EQ(calls(), expected);
}

TEST_F(FileDump, EveryChangeOfTypeFlushesTheTypeBeforeIt) {
  for (const char* address : {"0C 0A 01", "0C 0A 02", "0C 50 01", "0C 7F 00", "0C 0A 03"})
    hold(address, fieldOf("", pattern(5)));
  EXPECT_EQ(trigger(), 0x800u);
  const Lines made = calls();
  Lines flushes;
  for (const std::string& call : made)
    if (nameOf(call) == "requestOverWriteConfig" || nameOf(call) == "getDataFilePath") flushes.push_back(call);
  EXPECT_THAT(flushes,
              ElementsAre("getDataFilePath(4, 2049)", "getDataFilePath(4, 2050)", "requestOverWriteConfig(4)",
                          "getDataFilePath(1, 1)", "requestOverWriteConfig(1)", "getDataFilePath(14, 0)",
                          "requestOverWriteConfig(14)", "getDataFilePath(4, 2051)", "requestOverWriteConfig(4)"));
  EXPECT_EQ(std::count(made.begin(), made.end(), "sync"), 1);
  EXPECT_EQ(made.back(), "sync");
}

// Empty contents ----------------------------------------------------------------------------------------------------

TEST_F(FileDump, FourZerosRemoveContentsByOneCallForEachRunOfAType) {
  for (const char* address : {"0C 0A 01", "0C 28 02", "0C 50 03", "0C 50 04", "0C 7F 00", "0C 0C 05"})
    hold(address, kEmptyDump);
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceSumSync",                                               //
                                   "requestOverWriteConfig(4)", "removeContents(4, {2049 3074}, false)",  //
                                   "requestOverWriteConfig(1)", "removeContents(1, {3 4}, false)",        //
                                   "requestOverWriteConfig(14)", "removeContents(14, {0}, false)",        //
                                   "requestOverWriteConfig(4)", "removeContents(4, {2565}, false)", "sync"));
}

TEST_F(FileDump, FourZerosRemoveAMixingVoiceAtOnce) {
  hold("0C 10 05", kEmptyDump);
  record.answer("voiceContentNumber", 0x3F3C02);
  hold("0C 31 02", kEmptyDump);
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceSumSync", "removeContent(4, 4161616)", "removeContent(4, 4144130)",
                                   "requestOverWriteConfig(4)", "sync"));
}

TEST_F(FileDump, ANameWithoutDataRemovesToo) {
  hold("0C 0A 05", fieldOf("Ghost", {}));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(4)",
                                   "removeContents(4, {2053}, false)", "sync"));
}

TEST_F(FileDump, RemovingAndWritingMixInOnePass) {
  hold("0C 0A 01", kEmptyDump);
  hold("0C 0A 02", fieldOf("Kept", pattern(5)));
  hold("0C 0A 03", kEmptyDump);
  EXPECT_EQ(trigger(), 0x800u);
  Lines expected{"getMixingVoiceSumSync"};
  for (const std::string& call : written(kVoice, 2050, "Kept", 5)) expected.push_back(call);
  expected.insert(expected.end(), {"requestOverWriteConfig(4)", "removeContents(4, {2049 2051}, false)", "sync"});
  EXPECT_EQ(calls(), expected);
}

// Fields that are none ----------------------------------------------------------------------------------------------

class FileDumpFields : public FileDumpFixture {
 protected:
  // Result and reports of the field's write, and that the store was asked nothing for it.
  BDAErr refuse(const Bytes& field) {
    hold("0C 0A 05", field);
    const BDAErr result = trigger();
    EXPECT_EQ(calls(), pass({}, kVoice));
    return result;
  }
  BDAErr write(const Bytes& field) {
    hold("0C 0A 05", field);
    const BDAErr result = trigger();
    calls();
    return result;
  }
};

TEST_F(FileDumpFields, AnEmptyFieldIsReported) {
  EXPECT_EQ(refuse({}), 0x80000800u);
  EXPECT_EQ(reports(), Lines{inWrite("error : file dump is empty !\n")});
}

TEST_F(FileDumpFields, AFieldThatEndsBeforeItsSecondLengthIsALengthError) {
  for (const char* field : {"00", "00 00", "00 00 00", "00 01 00 00", "00 01 00", "01 00 00 00", "7F 7F 00 00 00 00",
                            "FF FF 00 00 00 00", "80 00 00 00 00"}) {
    EXPECT_EQ(refuse(bytesOf(field)), 0x80000800u) << field;
    EXPECT_EQ(reports(), Lines{inWrite("error : file dump length error !\n")}) << field;
  }
}

TEST_F(FileDumpFields, DataThatReachBeyondTheFieldAreADataErrorBeforeAnythingIsOpened) {
  for (const char* field : {"00 00 00 01", "00 00 00 03 00 01", "00 02 40 41 00 03 00 01", "00 00 7F 7F 00 01",
                            "00 00 FF FF 00 01", "00 00 01 00 00 01"}) {
    EXPECT_EQ(refuse(bytesOf(field)), 0x80000800u) << field;
    EXPECT_EQ(reports(), Lines{inWrite("error : file dump data error !\n")}) << field;
  }
}

TEST_F(FileDumpFields, BytesAfterTheDataAreIgnored) {
  EXPECT_EQ(write(bytesOf("00 02 00 41 00 02 40 7F 55 55 55")), 0x800u);
  EXPECT_EQ((work.contents[{kVoice, 2053}].name), "A");
  EXPECT_EQ((work.contents[{kVoice, 2053}].bytes), bytesOf("FF"));
}

// An empty content's second length is all that matters; what comes after it is ignored as well.
TEST_F(FileDumpFields, AnEmptyContentMayHaveBytesAfterIt) {
  hold("0C 0A 05", bytesOf("00 00 00 00 55"));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_THAT(calls(), ::testing::Contains("removeContents(4, {2053}, false)"));
}

TEST_F(FileDumpFields, ANameThatCannotBeUnpackedIsReportedTwiceAndTheDataAreWritten) {
  for (const std::size_t length : {1U, 9U, 17U}) {
    work.contents.clear();
    hold("0C 0A 05", fieldOfPacked(pattern(length), bytesOf("40 7F")));
    EXPECT_EQ(trigger(), 0x80000800u);
    EXPECT_EQ(reports(), (Lines{lengthError(), inWrite("Decode Error !!!\n")}));
    EXPECT_EQ(calls(), pass({written(kVoice, 2053, "", 1)}, kVoice));
    EXPECT_EQ((work.contents[{kVoice, 2053}].bytes), bytesOf("FF"));
  }
}

// The file is opened before anything is unpacked, so a good name is set and the file written without bytes: a store
// keeps what it had until a write has succeeded.
TEST_F(FileDumpFields, DataThatCannotBeUnpackedAreReportedTwiceAndTheFileIsClosed) {
  hold("0C 0A 05", fieldOfPacked(bytesOf("00 41"), pattern(9)));
  EXPECT_EQ(trigger(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{lengthError(), inWrite("error : decode error !\n")}));
  EXPECT_EQ(calls(), pass({{"getDataFilePath(4, 2053)", "openDataFile(4/2053, write)", "openData",
                            "setContentName(4, 2053, A, false)", "closeDataWithoutSync", "closeDataFile(0)"}},
                          kVoice));
}

TEST_F(FileDumpFields, NameAndDataThatCannotBeUnpackedAreFourReports) {
  hold("0C 0A 05", fieldOfPacked(pattern(1), pattern(1)));
  EXPECT_EQ(trigger(), 0x80000800u);
  EXPECT_EQ(reports(),
            (Lines{lengthError(), inWrite("Decode Error !!!\n"), lengthError(), inWrite("error : decode error !\n")}));
  calls();
}

TEST_F(FileDumpFields, OneBadFieldDoesNotStopTheOthers) {
  hold("0C 0A 05", {});
  hold("0C 0A 06", bytesOf("00 00 00"));
  hold("0C 0A 07", bytesOf("00 00 00 01"));
  hold("0C 0A 08", fieldOf("Good", pattern(3)));
  EXPECT_EQ(trigger(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inWrite("error : file dump is empty !\n"), inWrite("error : file dump length error !\n"),
                              inWrite("error : file dump data error !\n")}));
  EXPECT_EQ(calls(), pass({written(kVoice, 2056, "Good", 3)}, kVoice));
}

TEST_F(FileDumpFields, ANameIsItsBytesWhateverTheyAre) {
  const std::string name("\x00\xFF\x7F\x80", 4);
  EXPECT_EQ(write(fieldOf(name, pattern(3))), 0x800u);
  EXPECT_EQ((work.contents[{kVoice, 2053}].name), name);
}

// How many mixing voices there may be -------------------------------------------------------------------------------

class FileDumpMixingVoices : public FileDumpFixture {
 protected:
  static std::string full(int count) {
    return inWrite("error: over num of mixing voices [ num of mixvoice = " + std::to_string(count) + " ] !\n");
  }
  void exists(std::uint32_t number) { work.contents[{kVoice, number}] = {"Old", {}}; }
  bool isWritten(std::uint32_t number) {
    const auto found = work.contents.find({kVoice, number});
    return found != work.contents.end() && found->second.bytes == pattern(4);
  }
  void holdMixing(const char* address) { hold(address, fieldOf("Mix", pattern(4))); }
};

TEST_F(FileDumpMixingVoices, OfMoreNewOnesThanThereIsRoomForTheLastFail) {
  work.mixingVoices = 2045;
  work.maximumOfMixingVoices = 2048;
  for (const char* address : {"0C 10 00", "0C 10 01", "0C 10 02", "0C 10 03", "0C 10 04"}) holdMixing(address);
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), (Lines{full(2049), full(2050)})) << "the count stays raised";
  for (std::uint32_t i = 0; i < 5; ++i) EXPECT_EQ(isWritten(0x3F8000 + 16 * i), i < 3) << i;
  Lines expected{"getMixingVoiceSumSync"};
  for (std::uint32_t i = 0; i < 5; ++i) {
    const Lines all = written(kVoice, 0x3F8000 + 16 * i, "Mix", 4, true);
    expected.insert(expected.end(), all.begin(), i < 3 ? all.end() : all.begin() + 2);
  }
  expected.insert(expected.end(), {"requestOverWriteConfig(4)", "sync"});
  EXPECT_EQ(calls(), expected) << "nothing of them is opened";
}

TEST_F(FileDumpMixingVoices, ExistingOnesAndOtherVoicesAreWrittenThoughItIsFull) {
  work.mixingVoices = 1;
  work.maximumOfMixingVoices = 1;
  exists(0x3F8010);
  holdMixing("0C 10 00");
  holdMixing("0C 10 01");
  holdMixing("0C 0A 05");
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), Lines{full(2)});
  EXPECT_FALSE(isWritten(0x3F8000));
  EXPECT_TRUE(isWritten(0x3F8010));
  EXPECT_TRUE(isWritten(2053));
  calls();
}

TEST_F(FileDumpMixingVoices, RemovingOneMakesRoomForOne) {
  work.mixingVoices = 2048;
  exists(0x3F8000);
  hold("0C 10 00", kEmptyDump);
  holdMixing("0C 10 01");
  holdMixing("0C 10 02");
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), Lines{full(2049)});
  EXPECT_TRUE(isWritten(0x3F8010));
  EXPECT_FALSE(isWritten(0x3F8020));
  calls();
}

TEST_F(FileDumpMixingVoices, RemovingNothingMakesNoRoom) {
  work.mixingVoices = 2048;
  record.answer("removeContent", ContSrv::ContRes_DoNothing);
  hold("0C 10 00", kEmptyDump);
  holdMixing("0C 10 01");
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), Lines{full(2049)});
  calls();
}

TEST_F(FileDumpMixingVoices, ThereAreNeverFewerThanNone) {
  work.mixingVoices = 0;
  work.maximumOfMixingVoices = 1;
  hold("0C 10 00", kEmptyDump);
  hold("0C 10 01", kEmptyDump);
  holdMixing("0C 10 02");
  holdMixing("0C 10 03");
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), Lines{full(2)});
  EXPECT_TRUE(isWritten(0x3F8020));
  EXPECT_FALSE(isWritten(0x3F8030));
  calls();
}

TEST_F(FileDumpMixingVoices, AVoiceOfTheMixingBankCountsToo) {
  work.maximumOfMixingVoices = 0;
  record.answer("voiceContentNumber", 0x3F3C0F);
  holdMixing("0C 31 0F");
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), Lines{full(1)});
  EXPECT_EQ(calls(), (Lines{"getMixingVoiceSumSync", "getDataFilePath(4, 4144143)", "getContentName(4, 4144143)",
                            "requestOverWriteConfig(4)", "sync"}));
}

TEST_F(FileDumpMixingVoices, EveryPassAsksForTheirNumberAnew) {
  work.maximumOfMixingVoices = 0;
  holdMixing("0C 10 00");
  EXPECT_EQ(trigger(), 0x81000800u);
  reports();
  work.maximumOfMixingVoices = 1;
  holdMixing("0C 10 00");
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_TRUE(isWritten(0x3F8000));
  calls();
}

TEST_F(FileDumpMixingVoices, AnswersForTheNameButEmptyAreNotLookedAt) {
  work.maximumOfMixingVoices = 0;
  for (const long answer : {0, 1, 3, 4, 5}) {
    record.answer("getContentName", answer);
    holdMixing("0C 10 00");
    EXPECT_EQ(trigger(), 0x800u) << answer;
    EXPECT_EQ(calls(), pass({written(kVoice, 0x3F8000, "Mix", 4, true)}, kVoice));
  }
}

TEST_F(FileDumpMixingVoices, FullAndBrokenAreToldTogether) {
  work.maximumOfMixingVoices = 0;
  holdMixing("0C 10 00");
  hold("0C 0A 05", {});
  EXPECT_EQ(trigger(), 0x81000800u);
  EXPECT_EQ(reports(), (Lines{full(1), inWrite("error : file dump is empty !\n")}));
  calls();
}

}  // namespace
}  // namespace BDA
