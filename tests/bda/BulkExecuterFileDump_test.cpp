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

using FileDump = FileDumpFixture;

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
