#include "BulkExecuterFileDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "FileDumpFixture.h"

namespace BDA {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Testing::pattern;

using FileDump = FileDumpFixture;

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

}  // namespace
}  // namespace BDA
