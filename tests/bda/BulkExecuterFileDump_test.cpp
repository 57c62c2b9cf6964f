#include "BulkExecuterFileDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "FileDumpFixture.h"

namespace BDA {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Testing::pattern;

constexpr std::uint32_t kVoice = 4;
constexpr std::uint32_t kMulti = 1;
constexpr std::uint32_t kSingle = 14;

class FileDump : public FileDumpFixture {};

// What a block names ------------------------------------------------------------------------------------------------

class FileDumpNames : public FileDumpFixture {
 protected:
  static std::string hex(std::initializer_list<unsigned> bytes) {
    Bytes list;
    for (const unsigned byte : bytes) list.push_back(std::uint8_t(byte));
    return Testing::textOf(list);
  }
};

TEST_F(FileDumpNames, EveryBlockNamesItsTypeAndNumber) {
  const std::map<std::uint32_t, std::uint32_t> firstBank{{37, 0},  {38, 13}, {39, 8}, {40, 11},
                                                         {41, 12}, {42, 14}, {43, 15}};
  unsigned count = 0;
  for (const Row& row : kRows) {
    for (unsigned mid = row.firstMid; mid <= row.lastMid; ++mid) {
      for (unsigned lo = 0; lo <= row.lastLo; ++lo, ++count) {
        const BulkExecuterFileDump& block = at(hex({0x0C, mid, lo}));
        std::uint32_t expectedType = kVoice;
        std::uint32_t expectedNumber = lo;
        Lines expectedCalls;
        if (row.type == 44) {
          expectedNumber = 0x3F8000 + 16 * lo + (mid & 15);
          expectedCalls = {"getMixingVoiceNumber(1, " + std::to_string(lo) + ", " + std::to_string(mid & 15) + ")"};
        } else if (row.type == 45) {
          expectedType = kMulti;
        } else if (row.type == 46) {
          expectedType = kSingle;
        } else {
          const std::uint32_t bank = firstBank.at(row.type) + mid - row.firstMid;
          expectedNumber = bank * 256 + lo;
          expectedCalls = {"voiceContentNumber(" + std::to_string(bank) + ", " + std::to_string(lo) + ")"};
        }
        ASSERT_EQ(block.getContentsType(), expectedType) << mid << " " << lo;
        std::uint32_t number = 0xEEEEEEEE;
        ASSERT_EQ(block.getContentsNumber(number), 0);
        ASSERT_EQ(number, expectedNumber) << mid << " " << lo;
        ASSERT_EQ(calls(), expectedCalls);
      }
    }
  }
  EXPECT_EQ(count, 8 * 128u + 128 + 3 * 128 + 64 + 1 + 32 + 16 + 16 * 128 + 128 + 1);
}

TEST_F(FileDumpNames, EveryOtherBlockTypeNamesNothing) {
  for (std::uint32_t type = 0; type <= 130; ++type) {
    if (type >= 37 && type <= 46) continue;
    const BulkExecuterFileDump& block = at("0C 0A 05", type);
    std::uint32_t number = 0xEEEEEEEE;
    EXPECT_EQ(block.getContentsType(), 0u) << type;
    EXPECT_EQ(reports(), Lines{reportIn("getContentsType", "Get Contents Type Error !!!\n")}) << type;
    EXPECT_EQ(block.getContentsNumber(number), -1) << type;
    EXPECT_EQ(reports(), Lines{reportIn("getContentsNumber", "Get Contents Number Error !!!\n")}) << type;
    EXPECT_THAT(calls(), IsEmpty());
  }
}

TEST_F(FileDumpNames, MixingVoicesAreVoicesOfTwoRangesOfNumbers) {
  const auto isMixing = BulkExecuterFileDump::isMixingVoiceContent;
  for (const auto& [first, last] : {std::pair{0x3F3C00u, 0x3F3C0Fu}, std::pair{0x3F8000u, 0x3FFFFFu}}) {
    EXPECT_FALSE(isMixing(kVoice, first - 1));
    EXPECT_TRUE(isMixing(kVoice, first));
    EXPECT_TRUE(isMixing(kVoice, last));
    EXPECT_FALSE(isMixing(kVoice, last + 1));
    for (const std::uint32_t type : {0u, kMulti, 3u, 5u, kSingle}) EXPECT_FALSE(isMixing(type, first)) << type;
  }
  EXPECT_FALSE(isMixing(kVoice, 0));
  EXPECT_FALSE(isMixing(kVoice, 0xFFFFFFFF));
}

// Dumps that are held -----------------------------------------------------------------------------------------------

TEST_F(FileDump, NothingIsAskedOfTheStoreBeforeTheTrigger) {
  EXPECT_EQ(receive("0C 0A 05", fieldOf("Piano", pattern(20))), 0x1000u);
  EXPECT_THAT(calls(), ElementsAre("voiceContentNumber(8, 5)"));
  EXPECT_EQ(receive("0C 12 07", fieldOf("Mixing", pattern(20))), 0x1000u);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceNumber(1, 7, 2)"));
  EXPECT_EQ(receive("0C 50 03", fieldOf("Song", pattern(20))), 0x1000u);
  EXPECT_EQ(receive("0C 7F 00", fieldOf("", pattern(20))), 0x1000u);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(FileDump, EveryWritableBlockIsHeldAndWritten) {
  struct Written {
    const char* address;
    std::uint32_t type;
    std::uint32_t number;
    bool isMixing;
  };
  const Written rows[] = {
      {"0C 0A 00", kVoice, 8 * 256, false},       {"0C 0C 7F", kVoice, 10 * 256 + 127, false},
      {"0C 28 1F", kVoice, 12 * 256 + 31, false}, {"0C 31 0F", kVoice, 15 * 256 + 15, false},
      {"0C 10 00", kVoice, 0x3F8000, true},       {"0C 1F 7F", kVoice, 0x3F87FF, true},
      {"0C 50 7F", kMulti, 127, false},           {"0C 7F 00", kSingle, 0, false},
  };
  for (const Written& row : rows) {
    hold(row.address, fieldOf("Name", pattern(9)));
    EXPECT_EQ(trigger(), 0x800u) << row.address;
    EXPECT_EQ(calls(), pass({written(row.type, row.number, "Name", 9, row.isMixing)}, int(row.type))) << row.address;
    const auto stored = work.contents.find({row.type, row.number});
    ASSERT_NE(stored, work.contents.end()) << row.address;
    EXPECT_EQ(stored->second.bytes, pattern(9));
    EXPECT_EQ(stored->second.name, "Name");
  }
}

// Preset and GM banks can be asked for, but not be written to.
TEST_F(FileDump, ABlockThatCannotBeWrittenToIsRefusedAndDiscardsAllThatIsHeld) {
  for (const char* address : {"0C 00 05", "0C 07 7F", "0C 09 00", "0C 20 3F", "0C 21 00"}) {
    hold("0C 0A 05", fieldOf("Lost", pattern(5)));
    hold("0C 50 01", fieldOf("Lost too", pattern(5)));
    EXPECT_EQ(receive(address, fieldOf("Preset", pattern(5))), 0x80000000u) << address;
    EXPECT_THAT(reports(), IsEmpty()) << "without a word";
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(trigger(), 0x800u);
    EXPECT_EQ(calls(), pass({}, 0)) << address;
  }
  EXPECT_THAT(work.contents, IsEmpty());
}

TEST_F(FileDump, ABlockThatCannotBeWrittenToIsStillAnsweredOnRequest) {
  work.contents[{kVoice, 5}] = {"Preset", pattern(3)};
  Bytes message;
  EXPECT_EQ(request("0C 00 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 00 05", fieldOf("Preset", pattern(3))));
  calls();
}

TEST_F(FileDump, BlocksOfOtherTypesAreRefusedAndDiscardWhatIsHeld) {
  for (std::uint32_t type = 0; type <= 130; ++type) {
    const std::set<std::uint32_t> writable{39, 41, 43, 44, 45, 46};
    hold("0C 50 01", fieldOf("Held", pattern(5)));
    const BDAErr result = receiveBy(at("0C 0A 05", type), kEmptyDump);
    ASSERT_EQ(result, writable.contains(type) ? 0x1000u : 0x80000000u) << type;
    ASSERT_THAT(reports(), IsEmpty());
    at("11 00 00").setBulkDumpMessage(nullptr, 0);
    const Lines made = calls();
    const std::ptrdiff_t writes = std::count(made.begin(), made.end(), "write(5)");
    ASSERT_EQ(writes, writable.contains(type) ? 1 : 0) << type;
  }
}

TEST_F(FileDump, AFieldOf3FFFBytesIsTaken) {
  hold("0C 0A 05", Bytes(0x3FFF));
  EXPECT_EQ(trigger(), 0x800u) << "all zeros: an empty content";
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(4)",
                                   "removeContents(4, {2053}, false)", "sync"));
}

TEST_F(FileDump, AFieldOf4000BytesIsRefusedAndWhatIsHeldStays) {
  hold("0C 0A 05", fieldOf("Kept", pattern(5)));
  for (const std::uint32_t length : {0x4000u, 0x4001u, 0x10000u}) {
    EXPECT_EQ(receive("0C 0A 06", Bytes(length)), 0x80000000u);
    EXPECT_EQ(reports(), Lines{inSet("File Dump over length !!!!\n")});
    EXPECT_EQ(receive("0C 00 06", Bytes(length)), 0x80000000u) << "the length is looked at first";
    EXPECT_EQ(reports(), Lines{inSet("File Dump over length !!!!\n")});
    EXPECT_EQ(receive("11 00 00", Bytes(length)), 0x80000000u);
    EXPECT_EQ(reports(), Lines{inSet("File Dump over length !!!!\n")});
    EXPECT_THAT(calls(), IsEmpty());
  }
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Kept", 5)}, kVoice));
}

TEST_F(FileDump, ARepeatedDumpReplacesTheHeldOneInItsPlace) {
  hold("0C 0A 05", fieldOf("First", pattern(500)));
  hold("0C 0A 06", fieldOf("Other", pattern(7)));
  hold("0C 0A 05", fieldOf("Second", pattern(3)));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Second", 3), written(kVoice, 2054, "Other", 7)}, kVoice));
  EXPECT_EQ(work.contents.size(), 2u);
}

TEST_F(FileDump, ALongerRepetitionReplacesToo) {
  hold("0C 50 05", fieldOf("First", pattern(3)));
  hold("0C 50 05", fieldOf("Second", pattern(900)));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kMulti, 5, "Second", 900)}, kMulti));
}

TEST_F(FileDump, OneNumberUnderTwoTypesIsTwoContents) {
  record.answer("voiceContentNumber", 0);
  for (const char* address : {"0C 0A 05", "0C 50 00", "0C 7F 00"}) hold(address, fieldOf("Own", pattern(4)));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), (Lines{"getMixingVoiceSumSync",
                            "getDataFilePath(4, 0)",
                            "openDataFile(4/0, write)",
                            "openData",
                            "setContentName(4, 0, Own, false)",
                            "write(4)",
                            "closeDataWithoutSync",
                            "closeDataFile(0)",
                            "requestOverWriteConfig(4)",
                            "getDataFilePath(1, 0)",
                            "openDataFile(1/0, write)",
                            "openData",
                            "setContentName(1, 0, Own, false)",
                            "write(4)",
                            "closeDataWithoutSync",
                            "closeDataFile(0)",
                            "requestOverWriteConfig(1)",
                            "getDataFilePath(14, 0)",
                            "openDataFile(14/0, write)",
                            "openData",
                            "setContentName(14, 0, Own, false)",
                            "write(4)",
                            "closeDataWithoutSync",
                            "closeDataFile(0)",
                            "requestOverWriteConfig(14)",
                            "sync"}));
}

TEST_F(FileDump, OneContentUnderTwoAddressesIsOne) {
  record.answer("voiceContentNumber", 0x3F8001);
  hold("0C 31 01", fieldOf("By bank", pattern(4)));
  hold("0C 11 00", fieldOf("By multi", pattern(4)));
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kVoice, 0x3F8001, "By multi", 4, true)}, kVoice));
}

// A sender can fill no more memory than there are contents.
TEST_F(FileDump, AtMostOneDumpOfEachContentIsHeld) {
  unsigned count = 0;
  for (int round = 0; round < 2; ++round) {
    for (const Row& row : kRows) {
      if (row.type == 37 || row.type == 38 || row.type == 40 || row.type == 42) continue;
      for (unsigned mid = row.firstMid; mid <= row.lastMid; ++mid) {
        for (unsigned lo = 0; lo <= row.lastLo; ++lo) {
          const Bytes address{0x0C, std::uint8_t(mid), std::uint8_t(lo)};
          ASSERT_EQ(receive(Testing::textOf(address), fieldOf("", pattern(1))), 0x1000u);
          count += round == 0 ? 1 : 0;
        }
      }
    }
  }
  EXPECT_EQ(count, 384u + 32 + 16 + 2048 + 128 + 1);
  calls();
  EXPECT_EQ(trigger(), 0x800u);
  const Lines made = calls();
  EXPECT_EQ(std::count(made.begin(), made.end(), "write(1)"), 2609);
}

TEST_F(FileDump, HeldDumpsAreGoneWithTheirExecuter) {
  {
    BulkExecuterCreator other(nullptr, &jobReceivers, &tools, &tools.temporaryModel, &work);
    BulkExecuter* const block = other.getExecuter(kNumber);
    block->setBlockInfo(Address(0x0C, 0x50, 0x01), 45, 0);
    EXPECT_EQ(receiveBy(*block, fieldOf("Held", pattern(100))), 0x1000u);
    EXPECT_EQ(receiveBy(*block, fieldOf("Held", pattern(200))), 0x1000u);
    calls();
  }
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_THAT(work.contents, IsEmpty());
}

TEST_F(FileDump, ClearingDiscardsWhatIsHeld) {
  hold("0C 0A 05", fieldOf("Held", pattern(5)));
  at("0C 0A 05").clearFileDumpBuffers();
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({}, 0));
}

TEST_F(FileDump, NoBytesWithALengthAreAWrongLength) {
  hold("0C 0A 05", fieldOf("Kept", pattern(5)));
  for (const char* address : {"0C 0A 05", "11 00 00"})
    EXPECT_EQ(at(address).setBulkDumpMessage(nullptr, 4), 0x88000000u) << address;
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Kept", 5)}, kVoice));
}

TEST_F(FileDump, WithoutAStoreEverythingFails) {
  BulkExecuterCreator poor(nullptr, &jobReceivers, &tools, &tools.temporaryModel, nullptr);
  calls();
  BulkExecuter& block = *poor.getExecuter(kNumber);
  for (const auto& [hi, mid, type] :
       {std::tuple{0x0C, 0x0A, 39}, {0x0C, 0x10, 44}, {0x11, 0x00, 47}, {0x11, 0x01, 47}}) {
    block.setBlockInfo(Address(std::uint8_t(hi), std::uint8_t(mid), 0), std::uint32_t(type), 0);
    EXPECT_EQ(receiveBy(block, kEmptyDump), 0x80000000u);
    if (hi == 0x11) continue;
    Bytes message;
    EXPECT_EQ(block.getBulkDumpMessageImplement(message), 0x80001000u);
    EXPECT_EQ(reports(), Lines{cannotRead()});
  }
  EXPECT_THAT(calls(), IsEmpty());
}

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

// A store that fails ------------------------------------------------------------------------------------------------

// What becomes of an operation when one call answers something else.
struct Fault {
  bool isFailure = true;
  std::string report;             // empty: none
  std::set<std::string> skipped;  // the calls directly after it that are left out
};

class FileDumpFaults : public FileDumpFixture {
 protected:
  // `calls` without those that directly follow position `at` and are skipped.
  static Lines without(const Lines& calls, std::size_t at, const std::set<std::string>& skipped) {
    Lines left(calls.begin(), calls.begin() + std::ptrdiff_t(at) + 1);
    std::size_t next = at + 1;
    while (next < calls.size() && skipped.contains(nameOf(calls[next]))) ++next;
    left.insert(left.end(), calls.begin() + std::ptrdiff_t(next), calls.end());
    return left;
  }
  static std::string result(const std::string& message, long value) {
    return "error : " + message + "() ! [ ContSrvResult = " + std::to_string(value) + " ]\n";
  }
};

class FileDumpWriteFaults : public FileDumpFaults {
 protected:
  // A voice, a new and an old mixing voice, one that is removed, multis of which one is removed, the single content.
  void play() {
    record.heal();
    work.contents = {
        {{kVoice, 0x3F8010}, {"Old", {}}}, {{kVoice, 0x3F8020}, {"Gone", {}}}, {{kMulti, 7}, {"Gone", {}}}};
    hold("0C 0A 05", fieldOf("Piano", pattern(20)));
    hold("0C 10 00", fieldOf("New", pattern(21)));
    hold("0C 10 01", fieldOf("Changed", pattern(22)));
    hold("0C 10 02", kEmptyDump);
    hold("0C 50 06", fieldOf("Song", pattern(23)));
    hold("0C 50 07", kEmptyDump);
    hold("0C 7F 00", fieldOf("", pattern(24)));
  }
  BDAErr go() { return receive("11 01 00", {}); }

  static Fault stated(const std::string& name, int type, long answer) {
    const bool isSuccess = answer == ContSrv::ContRes_Success;
    const bool isGood = isSuccess || answer == ContSrv::ContRes_DoNothing;
    const std::set<std::string> rest{"openData", "setContentName", "write", "closeDataWithoutSync", "closeDataFile"};
    const Fault fine{false, "", {}};
    if (name == "removeMixingVoice")
      return isGood
                 ? fine
                 : Fault{true,
                         inSet("error: failed to remove mixing voices ! [ ContSrvResult = " + std::to_string(answer) +
                               " ]\n"),
                         {}};
    if (name == "getDataFilePath") {
      std::set<std::string> all = rest;
      all.insert({"getContentName", "openDataFile"});
      return isSuccess ? fine : Fault{true, inWrite(result("contentsWork->getDataFilePath", answer)), all};
    }
    if (name == "setContentName")
      return isGood
                 ? fine
                 : Fault{true,
                         inWrite("error : contentsWork->setContentName() ! ret = [" + std::to_string(answer) + "]\n"),
                         {}};
    if (name == "closeDataWithoutSync")
      return isSuccess ? fine : Fault{true, inWrite(result("contentsDataFile->closeDataWithoutSync", answer)), {}};
    if (name == "closeDataFile")
      return isSuccess ? fine : Fault{true, inWrite(result("contentsWork->closeDataFile", answer)), {}};
    if (name == "removeContent")
      return isGood ? fine : Fault{true, inWrite(result("contentsWork->removeContent", answer)), {}};
    if (name == "requestOverWriteConfig")
      return isSuccess ? fine : Fault{true, inPass(result("contentsWork->requestOverWriteConfig", answer)), {}};
    if (name == "removeContents")
      return isGood ? fine
                    : Fault{true,
                            inPass("error : contentsWork->removeContents() ! [ ContType = " + std::to_string(type) +
                                   ", ContSrvResult = " + std::to_string(answer) + " ]\n"),
                            {}};
    if (name == "getContentName" || name == "sync") return fine;
    throw std::logic_error(name);
  }

  void expectFault(const Lines& good, std::size_t at, const Fault& fault, const std::string& what) {
    EXPECT_EQ(go(), fault.isFailure ? 0x80000800u : 0x800u) << what;
    EXPECT_EQ(reports(), fault.report.empty() ? Lines{} : Lines{fault.report}) << what;
    EXPECT_EQ(calls(), without(good, at, fault.skipped)) << what;
  }
  void expectGood(const Lines& good, const Stored& expected, const std::string& what) {
    play();
    EXPECT_EQ(go(), 0x800u) << what;
    EXPECT_EQ(calls(), good) << what;
    EXPECT_EQ(stored(), expected) << what;
  }
};

TEST_F(FileDumpWriteFaults, EveryResultOfEveryCallIsTreatedAsStatedAndTheNextPassIsClean) {
  play();
  EXPECT_EQ(go(), 0x800u);
  const Lines good = calls();
  const Stored goodStored = stored();
  ASSERT_EQ(good.size(), 128u + 43) << "the removals and the pass";

  std::map<std::string, unsigned> uses;
  for (std::size_t at = 0; at < good.size(); ++at) {
    const std::string name = nameOf(good[at]);
    const unsigned nth = ++uses[name];
    const std::string what = good[at] + " at use " + std::to_string(nth);
    if (name == "openDataFile" || name == "openData") {
      play();
      record.fail(name, nth);
      const Fault fault = name == "openData"
                              ? Fault{true,
                                      inWrite("error : contentsDataFile->openData() !\n"),
                                      {"setContentName", "write", "closeDataWithoutSync"}}
                              : Fault{true,
                                      inWrite("error : contentsWork->openDataFile() !\n"),
                                      {"openData", "setContentName", "write", "closeDataWithoutSync", "closeDataFile"}};
      expectFault(good, at, fault, what);
    } else if (name == "write") {
      const long size = std::stol(good[at].substr(6));
      for (const long count : {0L, 1L, size - 1, size + 1, -1L}) {
        play();
        record.answer(name, count, nth);
        expectFault(
            good, at,
            {true, inWrite("error : contentsData->write() ! [ res size = " + std::to_string(count) + " ] \n"), {}},
            what);
      }
    } else if (name == "getMixingVoiceSumSync") {
      for (long answer = 1; answer <= 5; ++answer) {
        play();
        record.answer(name, answer, nth);
        EXPECT_EQ(go(), 0x80000800u);
        EXPECT_EQ(reports(), Lines{inPass(result("contentsWork->getMixingVoiceSumSync", answer))});
        EXPECT_EQ(calls(), Lines(good.begin(), good.begin() + std::ptrdiff_t(at) + 1)) << "and nothing more";
        EXPECT_EQ(trigger(), 0x800u);
        EXPECT_EQ(calls(), pass({}, 0)) << "all is discarded";
      }
    } else {
      const std::size_t bracket = good[at].find('(');
      const int type = name == "removeContents" ? std::stoi(good[at].substr(bracket + 1)) : 0;
      for (long answer = 1; answer <= 5; ++answer) {
#ifdef BDA_SAMPLED
        if (name == "removeMixingVoice" && nth % 60 != 1) continue;
#endif
        play();
        record.answer(name, answer, nth);
        expectFault(good, at, stated(name, type, answer), what + " -> " + std::to_string(answer));
      }
    }
    if (name != "removeMixingVoice" || nth % 60 == 1) expectGood(good, goodStored, what);
    if (HasFailure()) return;
  }
}

TEST_F(FileDumpWriteFaults, AFileWithoutDataIsClosedAndItsOwnFailureTold) {
  play();
  record.fail("openData", 1);
  record.fail("closeDataFile", 1);
  EXPECT_EQ(go(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inWrite("error : contentsDataFile->openData() !\n"),
                              inWrite("error : contentsWork->closeDataFile() !\n")}));
  calls();
}

TEST_F(FileDumpWriteFaults, EveryFailureOfOneContentIsTold) {
  hold("0C 0A 05", fieldOf("Piano", pattern(20)));
  for (const char* call :
       {"setContentName", "write", "closeDataWithoutSync", "closeDataFile", "requestOverWriteConfig", "sync"})
    record.fail(call);
  EXPECT_EQ(trigger(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inWrite("error : contentsWork->setContentName() ! ret = [3]\n"),
                              inWrite("error : contentsData->write() ! [ res size = 0 ] \n"),
                              inWrite(result("contentsDataFile->closeDataWithoutSync", 3)),
                              inWrite(result("contentsWork->closeDataFile", 3)),
                              inPass(result("contentsWork->requestOverWriteConfig", 3))}));
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Piano", 20)}, kVoice)) << "nothing is left out for it";
}

TEST_F(FileDumpWriteFaults, WhenAllFailsEachContentIsTold) {
  play();
  for (const char* call :
       {"removeMixingVoice", "getDataFilePath", "removeContent", "removeContents", "requestOverWriteConfig"})
    record.fail(call);
  EXPECT_EQ(go(), 0x80000800u);
  const Lines told = reports();
  EXPECT_EQ(told.size(), 128u + 5 + 1 + 1 + 3);
  calls();
}

// Answers -----------------------------------------------------------------------------------------------------------

Lines readOf(std::uint32_t type, std::uint32_t number, std::size_t size) {
  const std::string numbers = std::to_string(type) + ", " + std::to_string(number);
  Lines all{"getDataFilePath(" + numbers + ")"};
  if (type != kSingle) all.push_back("getContentName(" + numbers + ")");
  all.push_back("openDataFile(" + std::to_string(type) + "/" + std::to_string(number) + ", read)");
  all.insert(all.end(), {"openData", "getSize"});
  if (size > 0) all.push_back("read(" + std::to_string(size) + ")");
  all.insert(all.end(), {"closeData", "closeDataFile(0)"});
  return all;
}

TEST_F(FileDump, ARequestReadsNameAndFileIntoOneMessage) {
  work.contents[{kVoice, 2053}] = {"Piano", Bytes(300, 0xFF)};
  Bytes message;
  EXPECT_EQ(request("0C 0A 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 0A 05", fieldOf("Piano", Bytes(300, 0xFF))));
  Lines expected = readOf(kVoice, 2053, 300);
  expected.insert(expected.begin(), "voiceContentNumber(8, 5)");
  EXPECT_EQ(calls(), expected);
}

TEST_F(FileDump, AMixingVoiceIsAskedForByItsNumberInTheStore) {
  work.contents[{kVoice, 0x3F8075}] = {"Mixing", pattern(3)};
  Bytes message;
  EXPECT_EQ(request("0C 15 07", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 15 07", fieldOf("Mixing", pattern(3))));
  Lines expected = readOf(kVoice, 0x3F8075, 3);
  expected.insert(expected.begin(), "getMixingVoiceNumber(1, 7, 5)");
  EXPECT_EQ(calls(), expected);
}

TEST_F(FileDump, AMultiIsAskedForByItsNumber) {
  work.contents[{kMulti, 5}] = {"Song", pattern(14)};
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 50 05", fieldOf("Song", pattern(14))));
  EXPECT_EQ(calls(), readOf(kMulti, 5, 14));
}

TEST_F(FileDump, TheSingleContentIsAlwaysSentWithoutAName) {
  work.contents[{kSingle, 0}] = {"A name that nobody asks for", pattern(14)};
  Bytes message;
  EXPECT_EQ(request("0C 7F 00", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 7F 00", fieldOf("", pattern(14))));
  EXPECT_EQ(calls(), readOf(kSingle, 0, 14));
}

TEST_F(FileDump, AContentWithoutNameIsSentWithoutOne) {
  work.contents[{kMulti, 5}] = {"", pattern(3)};
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 50 05", bytesOf("00 00 00 04 00 0B 30 55")));
  calls();
}

TEST_F(FileDump, AContentWithoutFileIsFourZeros) {
  Bytes message;
  EXPECT_EQ(request("0C 0A 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 0A 05", kEmptyDump));
  EXPECT_THAT(calls(), ElementsAre("voiceContentNumber(8, 5)", "getDataFilePath(4, 2053)", "getContentName(4, 2053)",
                                   "openDataFile(4/2053, read)"));
}

TEST_F(FileDump, AnEmptyFileIsSentWithItsName) {
  work.contents[{kMulti, 5}] = {"Song", {}};
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 50 05", fieldOf("Song", {})));
  EXPECT_EQ(calls(), readOf(kMulti, 5, 0));
}

TEST_F(FileDump, ATriggerThatIsAskedForIsAMessageWithoutData) {
  for (const char* address : {"11 00 00", "11 01 00"}) {
    hold("0C 50 05", fieldOf("Still held", pattern(3)));
    Bytes message;
    EXPECT_EQ(request(address, message), 0x1000u);
    EXPECT_EQ(message, Testing::dumpMessage(address));
    EXPECT_THAT(calls(), IsEmpty());
  }
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kMulti, 5, "Still held", 3)}, kMulti));
}

TEST_F(FileDump, WithDeviceOffAnAnswerEndsAfterTwoBytes) {
  setDevice(17);
  Bytes message;
  for (const char* address : {"0C 0A 05", "11 00 00"}) {
    EXPECT_EQ(request(address, message), 0x80001000u);
    EXPECT_EQ(message, bytesOf("F0 7D"));
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(FileDump, AnAnswerCarriesTheDeviceNumber) {
  setDevice(5);
  Bytes message;
  EXPECT_EQ(request("0C 0A 05", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 0A 05", kEmptyDump, 5));
  calls();
}

TEST_F(FileDump, AnAnswerOfABlockThatNamesNothingFails) {
  Bytes message;
  std::vector<Bytes> messages;
  EXPECT_EQ(at("0C 0A 05", 36).getBulkDumpMessage(messages), 0x80001000u);
  EXPECT_EQ(reports(), (Lines{reportIn("getContentsType", "Get Contents Type Error !!!\n"),
                              inRead("error : wrong content type ! [ ContType = 0 ] \n"), cannotRead()}));
  EXPECT_THAT(messages, ElementsAre(bytesOf("F0 7D 00 7F 14 00 00 0C 0A 05")));
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(FileDump, WhatWasReadIsReplacedNotAppended) {
  work.contents[{kMulti, 5}] = {"Song", pattern(3)};
  Bytes field = pattern(100);
  EXPECT_EQ(at("0C 50 05").readFileDump(field), 0u);
  EXPECT_EQ(field, fieldOf("Song", pattern(3)));
  calls();
}

// 14,331 bytes are 16,379 packed: with two lengths 3FFF. One more does not fit a message's byte count.
TEST_F(FileDump, TheGreatestFieldIsSentAndOneByteMoreIsNot) {
  const std::size_t greatest = 14'331;
  ASSERT_EQ(fieldOf("", pattern(greatest)).size(), 0x3FFFu);
  work.contents[{kSingle, 0}] = {"", pattern(greatest)};
  Bytes message;
  EXPECT_EQ(request("0C 7F 00", message), 0x1000u);
  EXPECT_EQ(message, Testing::dumpMessage("0C 7F 00", fieldOf("", pattern(greatest))));
  calls();

  work.contents[{kSingle, 0}] = {"", pattern(greatest + 1)};
  EXPECT_EQ(request("0C 7F 00", message), 0x80001000u);
  EXPECT_EQ(reports(),
            (Lines{inRead("error: file dump data is over flow ! [ size = 0x4000, max = 0x3FFF ]\n"), cannotRead()}));
  EXPECT_EQ(message, bytesOf("F0 7D 00 7F 14 00 00 0C 7F 00"));
  EXPECT_EQ(calls(), readOf(kSingle, 0, greatest + 1)) << "and is closed";
}

TEST_F(FileDump, AFieldThatIsTooLongIsBuiltAllTheSame) {
  work.contents[{kMulti, 0}] = {"Song", pattern(20'000)};
  Bytes field;
  EXPECT_EQ(at("0C 50 00").readFileDump(field), 0x80000000u);
  const Bytes packed = Testing::Plain::encode(pattern(20'000));
  EXPECT_EQ(field.size(), 5 + 4 + packed.size());
  EXPECT_TRUE(std::equal(packed.rbegin(), packed.rend(), field.rbegin()));
  EXPECT_EQ(reports(), Lines{inRead("error: file dump data is over flow ! [ size = 0x5953, max = 0x3FFF ]\n")});
  calls();
}

TEST_F(FileDump, ANegativeSizeOfAFileCannotBeRead) {
  work.contents[{kMulti, 5}] = {"Song", pattern(3)};
  record.answer("getSize", -1);
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x80001000u);
  EXPECT_EQ(reports(), (Lines{inRead("error : content data read error ! \n"), cannotRead()}));
  EXPECT_EQ(calls(), readOf(kMulti, 5, 0));
}

class FileDumpReadFaults : public FileDumpFaults {};

TEST_F(FileDumpReadFaults, EveryResultOfEveryCallIsTreatedAsStatedAndTheNextAnswerIsClean) {
  const Bytes head = bytesOf("F0 7D 00 7F 14 00 00 0C 50 05");
  const Bytes whole = Testing::dumpMessage("0C 50 05", fieldOf("Song", pattern(50)));
  work.contents[{kMulti, 5}] = {"Song", pattern(50)};
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x1000u);
  const Lines good = calls();
  ASSERT_EQ(good, readOf(kMulti, 5, 50));

  for (std::size_t at = 0; at < good.size(); ++at) {
    const std::string name = nameOf(good[at]);
    const std::set<std::string> rest(good.begin(), good.end());
    const auto expectFault = [&](long answer, const Fault& fault, const Bytes& sent) {
      const std::string what = name + " -> " + std::to_string(answer);
      record.heal();
      record.answer(name, answer);
      EXPECT_EQ(request("0C 50 05", message), fault.isFailure ? 0x80001000u : 0x1000u) << what;
      EXPECT_EQ(reports(), fault.isFailure ? (Lines{fault.report, cannotRead()}) : Lines{}) << what;
      EXPECT_EQ(message, fault.isFailure ? head : sent) << what;
      EXPECT_EQ(calls(), without(good, at, fault.skipped)) << what;
      record.heal();
      EXPECT_EQ(request("0C 50 05", message), 0x1000u) << what;
      EXPECT_EQ(message, whole) << what;
      EXPECT_EQ(calls(), good) << what;
    };
    const std::set<std::string> all{"getContentName", "openDataFile", "openData",     "getSize",
                                    "read",           "closeData",    "closeDataFile"};
    const std::string readError = inRead("error : content data read error ! \n");
    if (name == "openDataFile") {
      expectFault(0, {false, "", all}, Testing::dumpMessage("0C 50 05", kEmptyDump));
    } else if (name == "openData") {
      expectFault(
          0, {true, inRead("error : contentsDataFile->openData(). data is null !\n"), {"getSize", "read", "closeData"}},
          {});
    } else if (name == "getSize") {
      expectFault(0, {false, "", {"read"}}, Testing::dumpMessage("0C 50 05", fieldOf("Song", {})));
      expectFault(-1, {true, readError, {"read"}}, {});
    } else if (name == "read") {
      for (const long count : {-1, 0, 1, 49}) expectFault(count, {true, readError, {}}, {});
    } else {
      for (long answer = 1; answer <= 5; ++answer) {
        if (name == "getContentName" && answer == ContSrv::ContRes_EmptyContent)
          expectFault(answer, {false, "", {}}, Testing::dumpMessage("0C 50 05", fieldOf("", pattern(50))));
        else if (name == "getContentName" || name == "getDataFilePath")
          expectFault(answer, {true, inRead(result("contentsWork->" + name, answer)), all}, {});
        else if (name == "closeData")
          expectFault(answer, {true, inRead(result("contentsDataFile->closeData", answer)), {}}, {});
        else
          expectFault(answer, {true, inRead(result("contentsWork->closeDataFile", answer)), {}}, {});
      }
    }
  }
}

TEST_F(FileDumpReadFaults, AFileWithoutDataIsClosedAndItsOwnFailureTold) {
  work.contents[{kMulti, 5}] = {"Song", pattern(50)};
  record.fail("openData");
  record.fail("closeDataFile");
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x80001000u);
  EXPECT_EQ(reports(), (Lines{inRead("error : contentsDataFile->openData(). data is null !\n"),
                              inRead(result("contentsWork->closeDataFile", 3)), cannotRead()}));
  calls();
}

TEST_F(FileDumpReadFaults, AFailureNeitherTakesNorDiscardsWhatIsHeld) {
  hold("0C 50 05", fieldOf("Held", pattern(3)));
  record.fail("getDataFilePath", 1);
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x80001000u);
  reports();
  calls();
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kMulti, 5, "Held", 3)}, kMulti));
}

// There and back ----------------------------------------------------------------------------------------------------

TEST_F(FileDump, WhatWasWrittenIsReadBackByteForByte) {
  for (const std::size_t size : {1U, 6U, 7U, 8U, 13U, 14U, 15U, 500U, 14'000U}) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = std::uint8_t(i * 151 + size);
    for (const std::string& name : {std::string(), std::string("A"), std::string("Seven.."), std::string(20, '\xFF')}) {
      const Bytes field = fieldOf(name, bytes);
      hold("0C 0A 05", field);
      EXPECT_EQ(trigger(), 0x800u);
      EXPECT_EQ((work.contents[{kVoice, 2053}].bytes), bytes);
      Bytes message;
      EXPECT_EQ(request("0C 0A 05", message), 0x1000u);
      EXPECT_EQ(message, Testing::dumpMessage("0C 0A 05", field)) << size << " " << name;
      work.contents.clear();
    }
  }
  calls();
}

}  // namespace
}  // namespace BDA
