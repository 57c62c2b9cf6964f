#include "BulkExecuter.h"

#include "ExecuterFixture.h"

namespace BDA {
namespace {

using Testing::FakeGroup;

// A block of any length that dumps what it was given and remembers how it was called.
class PlainExecuter : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;

  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override {
    directions.push_back(isReceive);
    lastData = data;
    lastLength = length;
    for (std::uint32_t i = 0; isReceive == 0 && i < length; ++i) {
      EXPECT_EQ(data[i], 0) << "byte " << i << " of the fresh data";
      if (i < content.size()) data[i] = content[i];
    }
    return result;
  }

  using BulkExecuter::getAddress;
  using BulkExecuter::getJobReceivers;
  using BulkExecuter::getJobTools;
  using BulkExecuter::getTemporaryModel;

  Bytes content;
  BDAErr result = BDA_OK;
  std::vector<int> directions;
  const std::uint8_t* lastData = nullptr;
  std::uint32_t lastLength = 0;
};

class BulkExecuterTest : public ExecuterFixture {
 protected:
  PlainExecuter make(std::uint32_t dataLength) {
    return {&jobReceivers, &tools, &tools.temporaryModel, &state, dataLength};
  }
  // For the operations that every executer inherits.
  BulkExecuter base{&jobReceivers, &tools, &tools.temporaryModel, &state, 3};
  ExecuterSharedState state;
};

TEST_F(BulkExecuterTest, KnowsWhatItWasConstructedWith) {
  PlainExecuter executer = make(88);
  EXPECT_EQ(executer.getJobReceivers(), &jobReceivers);
  EXPECT_EQ(&executer.getJobTools(), &tools);
  EXPECT_EQ(executer.getTemporaryModel(), &tools.temporaryModel);
  EXPECT_EQ(executer.getSharedState(), &state);
  EXPECT_EQ(executer.getDataLength(), 88u);
}

TEST_F(BulkExecuterTest, ServesNoBlockAtFirst) {
  PlainExecuter executer = make(88);
  EXPECT_EQ(executer.getBlockType(), 0u);
  EXPECT_EQ(executer.getBlockIndex(), 0);
  EXPECT_TRUE(executer.getAddress().isEqual(0, 0, 0));
}

TEST_F(BulkExecuterTest, ServesTheBlockThatItWasTold) {
  PlainExecuter executer = make(88);
  executer.setBlockInfo(Address(0x41, 0x07, 0x01), 69, 7);
  EXPECT_EQ(executer.getBlockType(), 69u);
  EXPECT_EQ(executer.getBlockIndex(), 7);
  EXPECT_TRUE(executer.getAddress().isEqual(0x41, 0x07, 0x01));
  executer.setBlockInfo(Address(0x42, 0x00, 0x00), 70, 0);
  EXPECT_EQ(executer.getBlockType(), 70u);
  EXPECT_EQ(executer.getBlockIndex(), 0);
  EXPECT_TRUE(executer.getAddress().isEqual(0x42, 0x00, 0x00));
}

TEST_F(BulkExecuterTest, GivesTheLowByteOfTheBlockIndex) {
  base.setBlockInfo(Address(0, 0, 0), 1, 0x1FE);
  EXPECT_EQ(base.getBlockIndex(), 0xFE);
}

TEST_F(BulkExecuterTest, SharesItsStateWithTheOthers) {
  PlainExecuter other = make(0);
  EXPECT_EQ(base.getCurrentNumber(), 0);
  EXPECT_EQ(base.getLoadSkipped(), 0);
  base.setCurrentNumber(5);
  base.setLoadSkipped(1);
  EXPECT_EQ(other.getCurrentNumber(), 5);
  EXPECT_EQ(other.getLoadSkipped(), 1);
  EXPECT_EQ(state.currentNumber, 5);
  EXPECT_EQ(state.loadSkipped, 1);
}

TEST_F(BulkExecuterTest, FailsInBothDirectionsUnlessASubclassConverts) {
  std::uint8_t data[3] = {};
  for (const int direction : {0, 1, 2}) EXPECT_EQ(base.execBulkBlock(data, 3, std::uint8_t(direction)), 0x80000000u);
  EXPECT_EQ(base.setBulkDumpMessage(data, 3), 0x80000000u);
}

TEST_F(BulkExecuterTest, ReceivesTheDataAsGiven) {
  PlainExecuter executer = make(3);
  const Bytes data(5, 1);
  EXPECT_EQ(executer.setBulkDumpMessage(data.data(), 5), BDA_OK);
  EXPECT_EQ(executer.directions, std::vector<int>{1});
  EXPECT_EQ(executer.lastData, data.data());
  EXPECT_EQ(executer.lastLength, 5u);
  executer.result = 0x88000400;
  EXPECT_EQ(executer.setBulkDumpMessage(data.data(), 5), 0x88000400u);
}

class FramingTest : public BulkExecuterTest, public testing::WithParamInterface<unsigned> {};

TEST_P(FramingTest, PutsHeadByteCountAddressChecksumAndEndAroundTheData) {
  PlainExecuter executer = make(GetParam());
  executer.content = Testing::pattern(GetParam());
  executer.setBlockInfo(Address(0x41, 0x07, 0x02), 69, 7);
  std::vector<Bytes> messages{{1}, {2}};
  EXPECT_EQ(executer.getBulkDumpMessage(messages), BDA_OK);
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage("41 07 02", executer.content)});
  EXPECT_EQ(messages[0].size(), GetParam() + 12);
  EXPECT_EQ(executer.directions, std::vector<int>{0});
  EXPECT_EQ(executer.lastLength, GetParam());
}
INSTANTIATE_TEST_SUITE_P(Length, FramingTest,
                         testing::Values(0U, 1U, 127U, 128U, 200U, 448U, 511U, 512U, 513U, 2560U, 10240U, 16383U));

TEST_F(BulkExecuterTest, FramesABlockWithoutDataIn12Bytes) {
  PlainExecuter executer = make(0);
  executer.setBlockInfo(Address(0x0E, 0x31, 0x42), 10, 0);
  std::vector<Bytes> messages;
  EXPECT_EQ(executer.getBulkDumpMessage(messages), BDA_OK);
  EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D 00 7F 14 00 00 0E 31 42 7F F7")});
}

TEST_F(BulkExecuterTest, Writes200BytesAs01And48) {
  PlainExecuter executer = make(200);
  Bytes message;
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
  EXPECT_EQ(message[5], 0x01);
  EXPECT_EQ(message[6], 0x48);
}

TEST_F(BulkExecuterTest, ReplacesWhatTheMessageHeld) {
  PlainExecuter executer = make(1);
  Bytes message(40, 0x55);
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
  EXPECT_EQ(message, Testing::dumpMessage("00 00 00", {0}));
}

TEST_F(BulkExecuterTest, DropsTheSuccessFlagsOfTheConversion) {
  PlainExecuter executer = make(1);
  executer.result = BDA_INFO_SYSTEM | BDA_INFO_FOOTER;
  std::vector<Bytes> messages;
  EXPECT_EQ(executer.getBulkDumpMessage(messages), 0u);
  EXPECT_EQ(messages.size(), 1u);
}

TEST_F(BulkExecuterTest, CarriesBytesAbove7FUnmasked) {
  PlainExecuter executer = make(3);
  executer.content = {0xFF, 0x80, 0x01};
  Bytes message;
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
  EXPECT_EQ(message, bytesOf("F0 7D 00 7F 14 00 03 00 00 00 FF 80 01 7D F7"));
}

TEST_F(BulkExecuterTest, SendsTheDeviceNumberOfTheSetting) {
  PlainExecuter executer = make(1);
  for (unsigned setting = 0; setting <= 15; ++setting) {
    setDevice(setting);
    Bytes message;
    EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
    EXPECT_EQ(message, Testing::dumpMessage("00 00 00", {0}, int(setting)));
  }
}

TEST_F(BulkExecuterTest, SendsDevice0WhenAllDevicesAreAccepted) {
  PlainExecuter executer = make(1);
  setDevice(16);
  Bytes message;
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
  EXPECT_EQ(message, Testing::dumpMessage("00 00 00", {0}, 0));
}

TEST_F(BulkExecuterTest, SendsUnknownSettingsAsTheyAre) {
  PlainExecuter executer = make(1);
  setDevice(0x3A);
  Bytes message;
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), BDA_OK);
  EXPECT_EQ(message[2], 0x3A);
}

TEST_F(BulkExecuterTest, StopsSilentlyAfterTwoBytesWhenTheDeviceIsOff) {
  PlainExecuter executer = make(1);
  setDevice(17);
  std::vector<Bytes> messages;
  EXPECT_EQ(executer.getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D")});
  EXPECT_EQ(executer.directions, std::vector<int>{0});  // the conversion had already run
}

TEST_F(BulkExecuterTest, KeepsWhatTheConversionToldWhenTheDeviceIsOff) {
  PlainExecuter executer = make(1);
  executer.result = BDA_INFO_EDITOR;
  setDevice(17);
  Bytes message;
  EXPECT_EQ(executer.getBulkDumpMessageImplement(message), 0x80000400u);
}

TEST_F(BulkExecuterTest, TakesAMissingSystemModelForOff) {
  record.fail("system");
  Bytes message;
  EXPECT_EQ(base.writeBulkDumpHead(message), 0x80000000u);
  EXPECT_EQ(message, bytesOf("F0 7D"));
}

TEST_F(BulkExecuterTest, AppendsTheHeadToWhatIsThere) {
  Bytes message{0x55};
  setDevice(3);
  EXPECT_EQ(base.writeBulkDumpHead(message), BDA_OK);
  EXPECT_EQ(message, bytesOf("55 F0 7D 03 7F 14"));
}

TEST_F(BulkExecuterTest, LeavesOneEmptyMessageWhenTheConversionFails) {
  PlainExecuter executer = make(3);
  executer.result = BDA_ERR_DATA_LENGTH;
  std::vector<Bytes> messages{{1}, {2}};
  EXPECT_EQ(executer.getBulkDumpMessage(messages), 0x88000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{Bytes{}});
  EXPECT_EQ(reports(),
            Lines{"BulkExecuter.cpp [BDA::BulkExecuter::getBulkDumpMessageImplement] Bulk create Error !!!\n"});
}

TEST_F(BulkExecuterTest, CannotDumpUnlessASubclassConverts) {
  std::vector<Bytes> messages;
  EXPECT_EQ(base.getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{Bytes{}});
  EXPECT_EQ(reports(),
            Lines{"BulkExecuter.cpp [BDA::BulkExecuter::getBulkDumpMessageImplement] Bulk create Error !!!\n"});
}

// The three layouts that all families share.
class SharedLayouts : public BulkExecuterTest {
 protected:
  FakeGroup group{record, "group"};
};

TEST_F(SharedLayouts, AnInsertionEffectReceivesItsParametersInOrder) {
  Bytes data(36, 0);
  Lines expected;
  for (std::size_t i = 0; i < 36; ++i) data[i] = std::uint8_t(i + 1);
  expected.emplace_back("set16(group, 0, 1, flag 1)");
  expected.emplace_back("set16(group, 1, 2, flag 1)");
  expected.emplace_back("set16(group, 4, 3, flag 1)");
  for (unsigned k = 0; k < 16; ++k) {
    const unsigned value = (5 + 2 * k) * 128 | (6 + 2 * k);
    expected.push_back("set16(group, " + std::to_string(5 + k) + ", " + std::to_string(value) + ", flag 1)");
  }
  EXPECT_EQ(base.convertInsEffectBlock(group, data.data(), 1), BDA_OK);
  EXPECT_EQ(calls(), expected);
}

TEST_F(SharedLayouts, AnInsertionEffectDumpsAllButByte3AndParameters2And3) {
  for (std::size_t index = 0; index < 256; ++index) group[index] = 0xFFFF;
  for (std::size_t index = 5; index <= 20; ++index) group[index] = std::uint16_t(index * 128 + index * 2);
  group[0] = 0x0141;
  group[1] = 0x0142;
  group[4] = 0x0143;
  Bytes data(36, 0);
  EXPECT_EQ(base.convertInsEffectBlock(group, data.data(), 0), BDA_OK);
  Bytes expected{0x41, 0x42, 0x43, 0};
  for (unsigned index = 5; index <= 20; ++index) {
    expected.push_back(std::uint8_t(index));
    expected.push_back(std::uint8_t(index * 2));
  }
  EXPECT_EQ(data, expected);
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(SharedLayouts, ASixParameterBlockConvertsAllButByte5) {
  Bytes data{10, 11, 12, 13, 14, 99, 16};
  EXPECT_EQ(base.convertSixParamBlock(group, data.data(), 1), BDA_OK);
  EXPECT_EQ(calls(), (Lines{"set(group, 0, 10, flag 1)", "set(group, 1, 11, flag 1)", "set(group, 2, 12, flag 1)",
                            "set(group, 3, 13, flag 1)", "set(group, 4, 14, flag 1)", "set(group, 5, 16, flag 1)"}));
  Bytes dumped(7, 0);
  EXPECT_EQ(base.convertSixParamBlock(group, dumped.data(), 0), BDA_OK);
  EXPECT_EQ(dumped, (Bytes{10, 11, 12, 13, 14, 0, 16}));
}

TEST_F(SharedLayouts, AnEqLeavesParameter7AndBytes7And11And15Alone) {
  group[7] = 0x55;
  Bytes data(20, 0);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i + 100);
  EXPECT_EQ(base.convertEqBlock(group, data.data(), 1), BDA_OK);
  const std::vector<int> expected{100, 101, 102, 103, 104, 105, 106, 0x55, 108,
                                  109, 110, 112, 113, 114, 116, 117, 118,  119};
  for (std::size_t index = 0; index < expected.size(); ++index) EXPECT_EQ(group[index], expected[index]) << index;
  EXPECT_EQ(group[18], 0);
  Bytes dumped(20, 0);
  EXPECT_EQ(base.convertEqBlock(group, dumped.data(), 0), BDA_OK);
  data[7] = data[11] = data[15] = 0;
  EXPECT_EQ(dumped, data);
  EXPECT_EQ(group[7], 0x55);
}

TEST_F(SharedLayouts, OtherDirectionsTouchNothing) {
  for (const int direction : {2, 3, 127, 255}) {
    Bytes data(36, 0x11);
    EXPECT_EQ(base.convertInsEffectBlock(group, data.data(), std::uint8_t(direction)), BDA_OK);
    EXPECT_EQ(base.convertSixParamBlock(group, data.data(), std::uint8_t(direction)), BDA_OK);
    EXPECT_EQ(base.convertEqBlock(group, data.data(), std::uint8_t(direction)), BDA_OK);
    EXPECT_EQ(data, Bytes(36, 0x11));
  }
  EXPECT_EQ(calls(), Lines{});
}

TEST(BDAErr, HasItsValues) {
  EXPECT_EQ(BDA_OK, 0u);
  EXPECT_EQ(BDA_ERR, 0x80000000u);
  EXPECT_EQ(BDA_ERR_DATA_LENGTH, 0x88000000u);
  EXPECT_EQ(BDA_ERR_NOT_FOUND, 0x84000000u);
  EXPECT_EQ(BDA_ERR_NO_MEMORY, 0x82000000u);
  EXPECT_EQ(BDA_ERR_MIXING_VOICE_FULL, 0x81000000u);
  EXPECT_EQ(BDA_INFO_8000, 0x8000u);
  EXPECT_EQ(BDA_INFO_FOOTER, 0x4000u);
  EXPECT_EQ(BDA_INFO_2000, 0x2000u);
  EXPECT_EQ(BDA_INFO_FILE_DUMP, 0x1000u);
  EXPECT_EQ(BDA_INFO_FILE_DUMP_CONTROL, 0x800u);
  EXPECT_EQ(BDA_INFO_EDITOR, 0x400u);
  EXPECT_EQ(BDA_INFO_SWALLOWED, 0x8u);
  EXPECT_EQ(BDA_INFO_SYSTEM, 0x4u);
}

TEST(BDAErr, FailsByBit31Alone) {
  EXPECT_TRUE(isFailure(0x80000000));
  EXPECT_TRUE(isFailure(0x81000800));
  EXPECT_FALSE(isFailure(0x7FFFFFFF));
  EXPECT_FALSE(isFailure(0));
}

TEST(BDAErr, TellsItsKindsApart) {
  EXPECT_TRUE(isOfKind(0x85000000, BDA_ERR_NOT_FOUND));
  EXPECT_TRUE(isOfKind(0x85000000, BDA_ERR_MIXING_VOICE_FULL));
  EXPECT_FALSE(isOfKind(BDA_ERR, BDA_ERR_NOT_FOUND));
  EXPECT_FALSE(isOfKind(BDA_ERR_DATA_LENGTH, BDA_ERR_NOT_FOUND));
  EXPECT_TRUE(isOfKind(0x4800, BDA_INFO_FOOTER));
  EXPECT_FALSE(isOfKind(0x0800, BDA_INFO_FOOTER));
}

}  // namespace
}  // namespace BDA
