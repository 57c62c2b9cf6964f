#include "BulkBlock.h"

#include "ExecuterFixture.h"

namespace BDA {
namespace {

// Remembers which block it was told to serve, and what it was asked to do then.
class RecordingExecuter : public BulkExecuter {
 public:
  RecordingExecuter() : BulkExecuter(nullptr, nullptr, nullptr, nullptr, 77) {}

  void setBlockInfo(const Address& address, std::uint32_t blockType, std::uint32_t blockIndex) override {
    events.push_back("info " + Testing::textOf({address.getHi(), address.getMid(), address.getLo()}) + " type " +
                     std::to_string(blockType) + " index " + std::to_string(blockIndex));
  }
  BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) override {
    events.push_back("receive " + std::to_string(length));
    received = data;
    return result;
  }
  BDAErr getBulkDumpMessage(std::vector<Bytes>& messages) override {
    events.emplace_back("dump");
    messages.push_back({1, 2});
    return result;
  }

  Lines events;
  const std::uint8_t* received = nullptr;
  BDAErr result = BDA_OK;
};

TEST(BulkBlock, KnowsTypeIndexAndAddress) {
  const BulkBlock block(80, 0x48, nullptr, 0x47, 0x48, 0x00);
  EXPECT_EQ(block.getBlockType(), 80u);
  EXPECT_EQ(block.getBlockIndex(), 0x48);
  EXPECT_TRUE(block.isEqual(0x47, 0x48, 0x00));
}

TEST(BulkBlock, GivesItsAddressAsAPlainCopy) {
  BulkBlock block(61, 0, nullptr, 0x40, 0x01, 0x02);
  Address copy = block.getAddress();
  EXPECT_TRUE(copy.isEqual(0x40, 0x01, 0x02));
  copy.setAddress(0, 0, 0);
  EXPECT_TRUE(block.isEqual(0x40, 0x01, 0x02));
}

TEST(BulkBlock, TellsItsExecuterWhichBlockItServesBeforeItReceives) {
  RecordingExecuter executer;
  BulkBlock block(69, 3, &executer, 0x41, 0x03, 0x00);
  const Bytes data(5, 1);
  EXPECT_EQ(block.setBulkDumpMessage(data.data(), 5), BDA_OK);
  EXPECT_EQ(executer.events, (Lines{"info 41 03 00 type 69 index 3", "receive 5"}));
  EXPECT_EQ(executer.received, data.data());
}

TEST(BulkBlock, TellsItsExecuterWhichBlockItServesBeforeItDumps) {
  RecordingExecuter executer;
  BulkBlock block(69, 3, &executer, 0x41, 0x03, 0x00);
  std::vector<Bytes> messages;
  EXPECT_EQ(block.getBulkDumpMessage(messages), BDA_OK);
  EXPECT_EQ(executer.events, (Lines{"info 41 03 00 type 69 index 3", "dump"}));
  EXPECT_EQ(messages, (std::vector<Bytes>{{1, 2}}));
}

TEST(BulkBlock, ReachesASharedExecuterWithItsOwnIndexEachTime) {
  RecordingExecuter executer;
  BulkBlock first(69, 0, &executer, 0x41, 0x00, 0x00);
  BulkBlock second(69, 7, &executer, 0x41, 0x07, 0x00);
  first.setBulkDumpMessage(nullptr, 0);
  second.setBulkDumpMessage(nullptr, 0);
  first.setBulkDumpMessage(nullptr, 0);
  EXPECT_EQ(executer.events, (Lines{"info 41 00 00 type 69 index 0", "receive 0", "info 41 07 00 type 69 index 7",
                                    "receive 0", "info 41 00 00 type 69 index 0", "receive 0"}));
}

TEST(BulkBlock, PassesTheResultOnUnchanged) {
  RecordingExecuter executer;
  BulkBlock block(19, 0, &executer, 0x0F, 0, 0);
  std::vector<Bytes> messages;
  for (const BDAErr result : {BDA_OK, BDA_ERR, BDA_ERR_DATA_LENGTH, BDA_INFO_FOOTER, BDA_INFO_SYSTEM}) {
    executer.result = result;
    EXPECT_EQ(block.setBulkDumpMessage(nullptr, 0), result);
    EXPECT_EQ(block.getBulkDumpMessage(messages), result);
  }
}

TEST(BulkBlock, HasTheDataLengthOfItsExecuter) {
  RecordingExecuter executer;
  EXPECT_EQ(BulkBlock(61, 0, &executer, 0x40, 0, 0).getDataLength(), 77u);
  EXPECT_EQ(BulkBlock(61, 0, nullptr, 0x40, 0, 0).getDataLength(), 0u);
}

TEST(BulkBlock, FailsWithoutAnExecuter) {
  Testing::TraceScope trace;
  BulkBlock block(61, 0, nullptr, 0x40, 0, 0);
  std::vector<Bytes> messages{{9}};
  EXPECT_EQ(block.setBulkDumpMessage(nullptr, 0), 0x80000000u);
  EXPECT_EQ(reportsOf(trace.take()),
            Lines{"BulkBlock.cpp [BDA::BulkBlock::setBulkDumpMessage] BulkExecuter is NULL !!!\n"});
  EXPECT_EQ(block.getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(reportsOf(trace.take()),
            Lines{"BulkBlock.cpp [BDA::BulkBlock::getBulkDumpMessage] BulkExecuter is NULL !!!\n"});
}

TEST(DummyBulkBlock, IsOfType125WithoutDataOrAddress) {
  const DummyBulkBlock dummy;
  EXPECT_EQ(dummy.getBlockType(), 125u);
  EXPECT_EQ(dummy.getBlockIndex(), 0);
  EXPECT_EQ(dummy.getDataLength(), 0u);
  EXPECT_TRUE(dummy.isEqual(0, 0, 0));
}

TEST(DummyBulkBlock, RefusesDumpsWithoutAWord) {
  Testing::TraceScope trace;
  DummyBulkBlock dummy;
  const std::uint8_t data[] = {1};
  EXPECT_EQ(dummy.setBulkDumpMessage(data, 1), 0x80000000u);
  EXPECT_EQ(dummy.setBulkDumpMessage(nullptr, 0), 0x80000000u);
  EXPECT_EQ(trace.take(), Lines{});
}

TEST(DummyBulkBlock, AnswersRequestsWith8AndNoMessage) {
  Testing::TraceScope trace;
  DummyBulkBlock dummy;
  std::vector<Bytes> messages;
  EXPECT_EQ(dummy.getBulkDumpMessage(messages), 8u);
  EXPECT_TRUE(messages.empty());
  EXPECT_EQ(trace.take(), Lines{});
}

TEST(DummyBulkBlock, IsABlockLikeAnyOther) {
  DummyBulkBlock dummy;
  BulkBlock& block = dummy;
  std::vector<Bytes> messages;
  EXPECT_EQ(block.getBulkDumpMessage(messages), 8u);
  EXPECT_EQ(block.setBulkDumpMessage(nullptr, 0), 0x80000000u);
}

}  // namespace
}  // namespace BDA
