#include "BulkExecuterSystem.h"

#include <algorithm>
#include <set>

#include "SystemBlocks.h"
#include "TableFixture.h"

namespace BDA {
namespace {

using SystemBlocks::Block;
using SystemBlocks::blocks;
using SystemBlocks::carriedBits;
using SystemBlocks::expectedSets;
using SystemBlocks::Kind;
using SystemBlocks::Step;

constexpr std::uint8_t kReceive = 1;
constexpr std::uint8_t kDump = 0;

class SystemFixture : public TableFixture {
 protected:
  // The groups of the system model by their paths.
  Testing::FakeGroup& group(const std::string& path) {
    Testing::FakeSystem& system = tools.system;
    std::vector<Testing::FakeGroup*> groups{&system.common,
                                            &system.tune,
                                            &system.masterEq,
                                            &system.masterEffect,
                                            &system.masterEffectSettings,
                                            &system.sequencer,
                                            &system.remote,
                                            &system.adPart->params,
                                            &system.adPart->insertionA,
                                            &system.adPart->insertionB};
    for (const auto& quickSetup : system.quickSetups) groups.push_back(&quickSetup->params);
    for (Testing::FakeGroup* found : groups)
      if (found->path() == path) return *found;
    throw std::logic_error("no group " + path);
  }
  std::string& quickSetupName(std::size_t number) { return tools.system.quickSetups.at(number)->name.text; }

  BulkExecuter& serve(const Block& block) { return executer(block.executer, block.address, block.type); }
  static std::string report(const Block& block, const std::string& message) {
    return "BulkExecuterSystem.cpp [BDA::BulkExecuterSystem" + block.classAndTitle[0] + "::execBulkBlock] " + message;
  }
  static std::string noModel(const Block& block) { return report(block, "Temporary Model is NULL !!!\n"); }
  static std::string wrongLength(const Block& block, std::size_t length) {
    char text[120];
    std::snprintf(text, sizeof text, "Wrong data length. (%s): Correct = [%02x], Data = [%02x]\n",
                  block.classAndTitle[1].c_str(), unsigned(block.length), unsigned(length));
    return report(block, text);
  }
};

class SystemBlock : public SystemFixture, public testing::WithParamInterface<Block> {
 protected:
  void SetUp() override {
    SystemFixture::SetUp();
    serve(block);
  }
  BDAErr exec(Bytes& data, std::uint8_t isReceive) {
    return served.execBulkBlock(data.data(), std::uint32_t(data.size()), isReceive);
  }
  // Every parameter of the whole system model takes a value of its own.
  void fillModel() {
    unsigned value = 1;
    for (const Block& other : blocks())
      for (const Step& step : other.steps) {
        if (step.kind == Kind::name) continue;
        Testing::FakeGroup& target = group(step.target);
        for (std::size_t i = 0; i < 256; ++i) target[i] = std::uint16_t(value++ * 2654435761U >> 16);
      }
    for (std::size_t number = 0; number < 6; ++number) quickSetupName(number) = "Quick " + std::to_string(number) + "!";
  }
  // What the block should dump.
  Bytes expectedDump() {
    Bytes data(block.length, 0);
    for (const Step& step : block.steps) {
      std::uint8_t* const at = data.data() + step.byte;
      if (step.kind == Kind::name) {
        std::string text = quickSetupName(std::size_t(block.name.back() - '0'));
        text.resize(step.size, '\0');
        std::copy(text.begin(), text.end(), at);
        continue;
      }
      const unsigned value = group(step.target)[step.index];
      switch (step.kind) {
        case Kind::pair:
          at[0] = std::uint8_t(value / 128 % 128);
          at[1] = std::uint8_t(value % 128);
          break;
        case Kind::nibbles:
          for (unsigned i = 0; i < 4; ++i) at[i] = std::uint8_t(value >> (12 - 4 * i) & 0x0F);
          break;
        default:
          at[0] = std::uint8_t(value);
      }
    }
    return data;
  }
  Bytes dump() {
    Bytes data(block.length, 0);
    EXPECT_EQ(exec(data, kDump), 4u);
    EXPECT_EQ(calls(), Lines{}) << "dumping wrote to the model";
    return data;
  }

  const Block& block = GetParam();
  BulkExecuter& served = *creator.getExecuter(GetParam().executer);
};

INSTANTIATE_TEST_SUITE_P(Of, SystemBlock, testing::ValuesIn(blocks()),
                         [](const auto& test) { return test.param.name; });

TEST_P(SystemBlock, SetsItsParametersInOrderAndAnswers4) {
  Bytes data = Testing::pattern(block.length);
  EXPECT_EQ(served.setBulkDumpMessage(data.data(), std::uint32_t(data.size())), 4u);
  EXPECT_EQ(calls(), expectedSets(block, data));
}

TEST_P(SystemBlock, EachBitOfTheDataReachesItsParameterAndNoOther) {
  const Bytes before = Testing::pattern(block.length);
  const Lines setsBefore = expectedSets(block, before);
  for (std::size_t byte = 0; byte < block.length; ++byte)
    for (unsigned bit = 1; bit < 0x100; bit *= 2) {
      Bytes data = before;
      data[byte] = std::uint8_t(data[byte] ^ bit);
      const Bytes sent = data;
      ASSERT_EQ(exec(data, kReceive), 4u);
      ASSERT_EQ(data, sent) << "receiving wrote to the data";
      const Lines sets = calls();
      ASSERT_EQ(sets, expectedSets(block, data)) << "byte " << byte << ", bit " << bit;
      if (bit == 0x80) continue;  // no 7-bit byte has it; the low byte of a pair ORs it into the high one
      std::size_t changed = 0;
      for (std::size_t i = 0; i < sets.size(); ++i) changed += sets[i] != setsBefore[i];
      ASSERT_EQ(changed, (carriedBits(block, byte) & bit) != 0 ? 1u : 0u) << "byte " << byte << ", bit " << bit;
    }
}

TEST_P(SystemBlock, DumpsItsParametersAndZerosBetweenThem) {
  fillModel();
  EXPECT_EQ(dump(), expectedDump());
}

TEST_P(SystemBlock, EachBitOfAParameterReachesItsBytesAndNoOther) {
  fillModel();
  record.records = false;
  std::set<std::string> groups;  // those of all blocks
  for (const Block& other : blocks())
    for (const Step& step : other.steps)
      if (step.kind != Kind::name) groups.insert(step.target);
  for (const std::string& path : groups) {
    Testing::FakeGroup& target = group(path);
    const bool isOwn = std::find(block.nodes.begin(), block.nodes.end(), path) != block.nodes.end();
    for (unsigned index = 0; index < 64; ++index)
      for (unsigned bit = 1; bit <= (isOwn ? 0x8000U : 1U); bit *= 2) {
        target[index] = std::uint16_t(target[index] ^ bit);
        ASSERT_EQ(dump(), expectedDump()) << path << ' ' << index << ", bit " << bit;
        target[index] = std::uint16_t(target[index] ^ bit);
      }
  }
}

TEST_P(SystemBlock, DumpsACompleteMessage) {
  fillModel();
  setDevice(9);
  std::vector<Bytes> messages;
  EXPECT_EQ(served.getBulkDumpMessage(messages), 0u);  // the 4 is dropped
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage(block.address, expectedDump(), 9)});
}

TEST_P(SystemBlock, ComesBackAsItWentButForTheGaps) {
  Bytes data = Testing::pattern(block.length);
  ASSERT_EQ(exec(data, kReceive), 4u);
  calls();
  for (std::size_t byte = 0; byte < data.size(); ++byte)
    data[byte] = std::uint8_t(data[byte] & carriedBits(block, byte));
  EXPECT_EQ(dump(), data);
}

TEST_P(SystemBlock, LeavesTheBytesOfGapsUntouched) {
  fillModel();
  Bytes data(block.length, 0x55);
  ASSERT_EQ(exec(data, kDump), 4u);
  for (std::size_t byte = 0; byte < data.size(); ++byte) {
    if (carriedBits(block, byte) == 0) {
      EXPECT_EQ(data[byte], 0x55) << byte;
    }
  }
}

TEST_P(SystemBlock, RefusesEveryOtherLength) {
  for (std::size_t length = 0; length <= block.length + 1; ++length) {
    if (length == block.length) continue;
    for (const std::uint8_t isReceive : {kReceive, kDump, std::uint8_t{2}}) {
      Bytes data(length, 0x55);
      data.shrink_to_fit();
      EXPECT_EQ(exec(data, isReceive), 0x88000000u) << length;
      EXPECT_EQ(reports(), Lines{wrongLength(block, length)});
      EXPECT_EQ(data, Bytes(length, 0x55));
    }
  }
  EXPECT_EQ(served.execBulkBlock(nullptr, 0x12345, kReceive), 0x88000000u);
  EXPECT_EQ(reports(), Lines{wrongLength(block, 0x12345)});
  EXPECT_EQ(calls(), Lines{});
}

TEST_P(SystemBlock, RefusesToReadOrWriteNowhere) {
  for (const std::uint8_t isReceive : {kReceive, kDump})
    EXPECT_EQ(served.execBulkBlock(nullptr, std::uint32_t(block.length), isReceive), 0x88000000u);
  EXPECT_EQ(calls(), Lines{});
  EXPECT_EQ(reports(), Lines{});
}

TEST_P(SystemBlock, FailsWithoutItsModelBeforeAllElse) {
  for (const std::string& missing : block.nodes)
    for (const std::uint8_t isReceive : {kReceive, kDump, std::uint8_t{2}})
      for (const std::size_t length : {block.length, block.length + 1}) {
        record.fail(missing);
        Bytes data(length, 0x55);
        EXPECT_EQ(exec(data, isReceive), 0x80000000u) << missing;
        EXPECT_EQ(reports(), Lines{noModel(block)}) << missing;
        EXPECT_EQ(data, Bytes(length, 0x55));
        EXPECT_EQ(calls(), Lines{}) << missing;
        record.heal();
      }
}

TEST_P(SystemBlock, ConvertsNothingInOtherDirectionsAndAnswers4) {
  fillModel();
  for (unsigned direction = 2; direction < 0x100; ++direction) {
    Bytes data(block.length, 0x55);
    EXPECT_EQ(exec(data, std::uint8_t(direction)), 4u);
    EXPECT_EQ(data, Bytes(block.length, 0x55));
  }
  EXPECT_EQ(calls(), Lines{});
}

TEST_P(SystemBlock, IgnoresWhatSettingAParameterAnswers) {
  record.fail("set");
  record.fail("set16");
  Bytes data = Testing::pattern(block.length);
  EXPECT_EQ(exec(data, kReceive), 4u);
  EXPECT_EQ(calls(), expectedSets(block, data));
}

TEST_P(SystemBlock, DumpsZerosForParametersThatCannotBeRead) {
  fillModel();
  record.fail("get");
  record.fail("get16");
  record.fail("getName");
  EXPECT_EQ(dump(), Bytes(block.length, 0));
}

TEST_P(SystemBlock, IsTheLiveModelWhateverAHeaderLeftBehind) {
  for (const std::uint8_t loadSkipped : {std::uint8_t{0}, std::uint8_t{1}}) {
    served.setLoadSkipped(loadSkipped);
    served.setCurrentNumber(9);
    Bytes data = Testing::pattern(block.length);
    EXPECT_EQ(exec(data, kReceive), 4u);
    EXPECT_EQ(calls(), expectedSets(block, data));
    EXPECT_EQ(served.getLoadSkipped(), loadSkipped);
    EXPECT_EQ(served.getCurrentNumber(), 9);
  }
}

TEST_P(SystemBlock, IsReachedByItsAddress) {
  BulkBlock* const found = find(block.address);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->getDataLength(), block.length);
  const Bytes data = Testing::pattern(block.length);
  EXPECT_EQ(found->setBulkDumpMessage(data.data(), std::uint32_t(data.size())), 4u);
  EXPECT_EQ(calls(), expectedSets(block, data));
  std::vector<Bytes> messages;
  EXPECT_EQ(found->getBulkDumpMessage(messages), 0u);
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage(block.address, expectedDump())});
}

// ---- What is special to one block ----

class SystemTest : public SystemFixture {
 protected:
  static const Block& named(const std::string& name) {
    for (const Block& block : blocks())
      if (block.name == name) return block;
    throw std::logic_error("no block " + name);
  }
  BDAErr receive(const Block& block, const Bytes& data) {
    return serve(block).setBulkDumpMessage(data.data(), std::uint32_t(data.size()));
  }
  Bytes dumped(const Block& block) {
    Bytes data(block.length, 0);
    EXPECT_EQ(serve(block).execBulkBlock(data.data(), std::uint32_t(data.size()), kDump), 4u);
    return data;
  }
};

TEST_F(SystemTest, CommonOf67Or69BytesChangesNothing) {
  for (const auto& [length, given] : {std::pair{67, "43"}, std::pair{69, "45"}}) {
    EXPECT_EQ(receive(named("Common"), Bytes(std::size_t(length), 1)), 0x88000000u);
    EXPECT_EQ(reports(),
              Lines{"BulkExecuterSystem.cpp [BDA::BulkExecuterSystemCommon::execBulkBlock] Wrong data length. "
                    "(System Common): Correct = [44], Data = [" +
                    std::string(given) + "]\n"});
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(SystemTest, MasterTuneIsFourNibbles) {
  Bytes data(68, 0);
  data[2] = 0x08;
  EXPECT_EQ(receive(named("Common"), data), 4u);
  EXPECT_EQ(tools.system.tune[0], 0x8000);
  EXPECT_EQ(calls()[2], "set16(system.tune, 0, 32768, flag 1)");  // after bytes 0 and 1
}

TEST_F(SystemTest, MasterTuneTakesLowNibblesOnly) {
  Bytes data(68, 0);
  data[2] = data[3] = data[4] = data[5] = 0x7F;
  EXPECT_EQ(receive(named("Common"), data), 4u);
  EXPECT_EQ(tools.system.tune[0], 0xFFFF);
  data[2] = data[3] = data[4] = data[5] = 0x70;
  EXPECT_EQ(receive(named("Common"), data), 4u);
  EXPECT_EQ(tools.system.tune[0], 0);
}

TEST_F(SystemTest, EveryMasterTuneIsDumpedInBytes2To5) {
  record.records = false;
  for (unsigned tune = 0; tune < 0x10000; ++tune) {
    tools.system.tune[0] = std::uint16_t(tune);
    const Bytes data = dumped(named("Common"));
    ASSERT_EQ(data[2], tune / 0x1000);
    ASSERT_EQ(data[3], tune / 0x100 % 0x10);
    ASSERT_EQ(data[4], tune / 0x10 % 0x10);
    ASSERT_EQ(data[5], tune % 0x10);
    ASSERT_EQ(data[12], 0);
  }
}

TEST_F(SystemTest, ParametersThatDoNotTravelStayAsTheyAre) {
  const std::vector<unsigned> stay{9, 10, 11, 17, 18, 19, 20, 26, 40, 43, 47, 50, 51};
  for (std::size_t index = 0; index < 256; ++index) tools.system.common[index] = 0x55;
  EXPECT_EQ(receive(named("Common"), Bytes(68, 0x11)), 4u);
  for (unsigned index = 0; index < 52; ++index) {
    const bool stays = std::find(stay.begin(), stay.end(), index) != stay.end();
    EXPECT_EQ(tools.system.common[index], stays ? 0x55 : 0x11) << index;
  }
}

TEST_F(SystemTest, AnInsertionBlockOfAnyOtherTypeIsRefused) {
  for (unsigned type = 0; type <= 130; ++type) {
    if (type == 51 || type == 52) continue;
    for (const std::size_t number : {50U, 51U})
      for (const std::size_t length : {36U, 35U}) {
        Bytes data(length, 1);
        EXPECT_EQ(executer(number, "00 03 00", type).execBulkBlock(data.data(), std::uint32_t(length), kReceive),
                  0x80000000u);
        EXPECT_EQ(reports(), Lines{report(named("AdInsertionA"), "Multi AD Part Ins Block Error !\n")});
      }
  }
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(SystemTest, AnInsertionBlockMissesItsModelBeforeItLooksAtItsType) {
  record.fail("system");
  Bytes data(36, 1);
  EXPECT_EQ(executer(50, "00 03 00", 99).execBulkBlock(data.data(), 36, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{noModel(named("AdInsertionA"))});
}

TEST_F(SystemTest, AnInsertionIsChosenByTypeNotByAddressOrExecuter) {
  for (const std::size_t number : {50U, 51U})
    for (const std::string_view address : {"00 03 00", "00 04 00"}) {
      Bytes data(36, 7);
      EXPECT_EQ(executer(number, address, 51).execBulkBlock(data.data(), 36, kReceive), 4u);
      EXPECT_EQ(calls(), expectedSets(named("AdInsertionA"), data));
      EXPECT_EQ(executer(number, address, 52).execBulkBlock(data.data(), 36, kReceive), 4u);
      EXPECT_EQ(calls(), expectedSets(named("AdInsertionB"), data));
    }
}

TEST_F(SystemTest, TheAudioInputPartIsThatOfTheBlockIndex) {
  Bytes data(36, 7);
  for (const std::uint32_t index : {1U, 2U, 255U}) {  // which no system model has
    EXPECT_EQ(executer(49, "00 40 00", 50, index).execBulkBlock(data.data(), 8, kReceive), 0x80000000u);
    EXPECT_EQ(reports(), Lines{noModel(named("Ad"))});
    EXPECT_EQ(executer(50, "00 03 00", 51, index).execBulkBlock(data.data(), 36, kReceive), 0x80000000u);
    EXPECT_EQ(reports(), Lines{noModel(named("AdInsertionA"))});
  }
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(SystemTest, QuickSetupBlock53IsNumber3WhateverItsIndex) {
  const Bytes data = bytesOf("41 42 43 44 45 46 47 48 09 0A");
  for (const std::uint32_t index : {0U, 3U, 5U}) {
    EXPECT_EQ(executer(54, "00 53 00", 57, index).setBulkDumpMessage(data.data(), 10), 4u);
    EXPECT_EQ(calls(),
              (Lines{"setName(system.quickSetup[3].name, ABCDEFGH)", "set(system.quickSetup[3].params, 0, 9, flag 1)",
                     "set(system.quickSetup[3].params, 1, 10, flag 1)"}));
  }
}

TEST_F(SystemTest, QuickSetupsAreToldApartByTheLowNibbleOfTheMiddleByte) {
  const Bytes data = Testing::pattern(10);
  for (unsigned mid = 0; mid < 256; ++mid) {
    BulkExecuter& served = executer(54, "00 " + Testing::textOf({std::uint8_t(mid)}) + " 00", 57);
    const unsigned number = mid % 16;
    if (number < 6) {
      EXPECT_EQ(served.setBulkDumpMessage(data.data(), 10), 4u);
      EXPECT_EQ(calls(), expectedSets(named("QuickSetup" + std::to_string(number)), data));
    } else {
      EXPECT_EQ(served.setBulkDumpMessage(data.data(), 10), 0x80000000u);
      EXPECT_EQ(reports(), Lines{noModel(named("QuickSetup0"))});
      EXPECT_EQ(calls(), Lines{});
    }
  }
}

TEST_F(SystemTest, ANameOfEightCharactersTravelsWhole) {
  receive(named("QuickSetup2"), bytesOf("31 32 33 34 35 36 37 38 00 00"));
  EXPECT_EQ(quickSetupName(2), "12345678");
  EXPECT_EQ(dumped(named("QuickSetup2")), bytesOf("31 32 33 34 35 36 37 38 00 00"));
}

TEST_F(SystemTest, AShortNameIsDumpedWithZeros) {
  quickSetupName(2) = "abc";
  EXPECT_EQ(dumped(named("QuickSetup2")), bytesOf("61 62 63 00 00 00 00 00 00 00"));
  quickSetupName(2) = "";
  EXPECT_EQ(dumped(named("QuickSetup2")), Bytes(10, 0));
}

TEST_F(SystemTest, ALongNameIsDumpedCut) {
  quickSetupName(2) = "123456789ABC";
  EXPECT_EQ(dumped(named("QuickSetup2")), bytesOf("31 32 33 34 35 36 37 38 00 00"));
}

TEST_F(SystemTest, AReceivedNameEndsAtItsFirstZero) {
  quickSetupName(2) = "before";
  receive(named("QuickSetup2"), bytesOf("61 62 00 64 65 66 67 68 01 02"));
  EXPECT_EQ(quickSetupName(2), "ab");
  EXPECT_EQ(dumped(named("QuickSetup2")), bytesOf("61 62 00 00 00 00 00 00 01 02"));
}

TEST_F(SystemTest, BlocksNeedNoHeader) {
  for (const Block& block : blocks()) {
    table.resetHeader();
    EXPECT_NE(find(block.address), nullptr) << block.address;
  }
  EXPECT_EQ(reports(), Lines{});
}

}  // namespace
}  // namespace BDA
