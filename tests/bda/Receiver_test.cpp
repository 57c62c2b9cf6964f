#include "Receiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>

#include "BulkExecuterCreator.h"
#include "support/ScriptedExecuter.h"

namespace {

using namespace Testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDump = "BDA::BulkDumpReceiver::receiveBulkDump";
constexpr const char* kRequest = "BDA::BulkRequestReceiver::receiveBulkRequest";

// Both receivers on a table of their own. The system block 00 40 00, the edit buffer of the master (0E 7F 00 to
// 0F 7F 00) and of the remote settings (0F 6F 00, 0F 60 00) are scripted.
class ReceiverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* address : {"00 40 00", "0E 60 00", "0F 60 00", "0E 6F 00", "0F 6F 00", "0E 7F 00", "33 00 00",
                                "32 00 00", "32 01 00", "32 02 00", "32 03 00", "0F 7F 00"})
      replaceExecuter(table, address, executer);
    dumps.setBridge(&bridge);
    requests.setBridge(&bridge);
    record.heal();
    record.take();
  }
  void TearDown() override { EXPECT_THAT(trace.take(), IsEmpty()); }

  BDA::BDAErr dump(std::string_view address, std::uint32_t port, const Bytes& data = {}) {
    return dumpBytes(dumpMessage(address, data), port);
  }
  BDA::BDAErr dumpBytes(const Bytes& message, std::uint32_t port) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[message.size()]);
    std::copy(message.begin(), message.end(), exact.get());
    return dumps.receiveBulkDump(exact.get(), std::uint32_t(message.size()), BDA::DevicePortNum(port));
  }
  BDA::BDAErr request(std::string_view address, std::uint32_t port) {
    const Bytes message = requestMessage(address);
    return requests.receiveBulkRequest(message.data(), 9, BDA::DevicePortNum(port));
  }

  Calls record;
  TraceScope trace;
  FakeJobTools tools{record};
  FakeBridge bridge{record, nullptr};
  BDA::BulkExecuterCreator creator{nullptr, nullptr, &tools, &tools.temporaryModel, nullptr};
  BDA::BulkTable table{&creator, nullptr, &tools};
  BDA::BulkDumpReceiver dumps{&table, &tools, nullptr, nullptr};
  BDA::BulkRequestReceiver requests{&table, &tools, nullptr, nullptr};
  ScriptedExecuter executer{record, &tools};
};

TEST_F(ReceiverTest, HandsTheBlockItsDataWithoutFrame) {
  EXPECT_EQ(dump("00 40 00", 1, bytesOf("01 02 03")), 0U);
  EXPECT_THAT(record.take(), ElementsAre("block.receive(00 40 00, 01 02 03)"));
}

TEST_F(ReceiverTest, TheDataCountIsTheLengthsNotTheByteCounts) {
  Bytes message = dumpMessage("00 40 00", bytesOf("01 02 03"));
  message[6] = 0x7F;
  EXPECT_EQ(dumpBytes(message, 1), 0U);
  EXPECT_THAT(record.take(), ElementsAre("block.receive(00 40 00, 01 02 03)"));
}

TEST_F(ReceiverTest, ADumpOf11BytesOrLessHasAWrongLength) {
  const Bytes message = dumpMessage("00 40 00");
  for (std::size_t length = 0; length < 12; ++length) {
    const Bytes shortened(message.begin(), message.begin() + std::ptrdiff_t(length));
    EXPECT_EQ(dumpBytes(shortened, 1), 0x88000000U);
    EXPECT_EQ(trace.take(),
              failure("Receiver", 94, kDump, "error : invalid length ! [ length = " + std::to_string(length) + " ]\n"));
  }
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(ReceiverTest, WithoutBridgeNoBlockIsAsked) {
  dumps.setBridge(nullptr);
  EXPECT_EQ(dump("00 40 00", 1), 0x80000000U);
  EXPECT_EQ(trace.take(), failure("Receiver", 101, kDump, "error : bda bridge is NULL !\n"));
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(ReceiverTest, AnUnknownAddressIsNotFoundAndGetsNoNotice) {
  EXPECT_EQ(dump("05 0a 7F", 4), 0x84000000U);
  EXPECT_EQ(trace.take(), failure("Receiver", 116, kDump, "error : not found block [ 05, 0a, 7f ]\n"));
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(ReceiverTest, AFailedBlockIsLoggedAndItsResultHandedOn) {
  for (const BDA::BDAErr result : {0x80000000U, 0x88000000U, 0x82000000U, 0x81000800U, 0x85000000U}) {
    executer.result = result;
    EXPECT_EQ(dump("00 40 00", 4), result);
    char text[80];
    std::snprintf(text, sizeof text, "error : setBulkDumpMessage() ! [ BDAErr = 0x%08x ] \n", result);
    EXPECT_EQ(trace.take(), failure("Receiver", 128, kDump, text));
  }
  EXPECT_THAT(bridge.messages, IsEmpty()) << "no notice, whatever bits a failure has";
}

TEST_F(ReceiverTest, EveryCompletionBitAndNoOtherGetsANotice) {
  for (unsigned bit = 0; bit < 31; ++bit) {
    executer.result = 1U << bit;
    record.take();
    EXPECT_EQ(dump("00 40 00", 4), executer.result);
    const bool completes = executer.result == 0x4000 || executer.result == 0x1000 || executer.result == 0x800 ||
                           executer.result == 0x400 || executer.result == 0x4;
    if (completes)
      EXPECT_THAT(record.take(), ElementsAre("block.receive(00 40 00, )", "send(4, F0 7D 60 02 F7)")) << bit;
    else
      EXPECT_THAT(record.take(), ElementsAre("block.receive(00 40 00, )")) << bit;
  }
}

TEST_F(ReceiverTest, NoticesLeaveOnPorts4And5Only) {
  executer.result = 0x4;
  for (const std::uint32_t port : {0U, 1U, 2U, 3U, 6U, 7U, 255U, 0xFFFFFFFFU}) EXPECT_EQ(dump("00 40 00", port), 0x4U);
  EXPECT_THAT(bridge.messages, IsEmpty());
  for (const std::uint32_t port : {4U, 5U}) {
    EXPECT_EQ(dump("00 40 00", port), 0x4U);
    ASSERT_EQ(bridge.messages.size(), 1U);
    EXPECT_EQ(bridge.messages[0].port, port);
    EXPECT_EQ(textOf(bridge.messages[0].bytes), "F0 7D 60 02 F7");
    bridge.messages.clear();
  }
}

TEST_F(ReceiverTest, FootersOfRemoteSettingsGetTheirNoticeOnPort5FromAnyPort) {
  executer.result = 0x4000;
  for (const std::uint32_t port : {1U, 4U, 5U, 6U, 9U}) {
    for (const char* mid : {"60", "6F"}) {
      ASSERT_NE(table.findBulkBlock({0x0E, bytesOf(mid)[0], 0}), nullptr);
      EXPECT_EQ(dump("0F " + std::string(mid) + " 00", port), 0x4000U);
      ASSERT_EQ(bridge.messages.size(), 1U) << port;
      EXPECT_EQ(bridge.messages[0].port, 5U);
      bridge.messages.clear();
    }
  }
}

TEST_F(ReceiverTest, HeadersOfRemoteSettingsAndOtherFootersKeepTheirPort) {
  executer.result = 0x4000;
  EXPECT_EQ(dump("0E 60 00", 1), 0x4000U);
  EXPECT_THAT(bridge.messages, IsEmpty());
  ASSERT_NE(table.findBulkBlock({0x0E, 0x7F, 0}), nullptr);
  EXPECT_EQ(dump("0F 7F 00", 4), 0x4000U);
  ASSERT_EQ(bridge.messages.size(), 1U);
  EXPECT_EQ(bridge.messages[0].port, 4U);
}

TEST_F(ReceiverTest, TheNoticeCarriesTheDeviceNumberOfTheMoment) {
  executer.result = 0x4;
  for (int setting = 0; setting <= 16; ++setting) {
    tools.system.utility[51] = std::uint16_t(setting);
    for (const std::uint32_t port : {4U, 5U}) {
      EXPECT_EQ(dump("00 40 00", port), 0x4U);
      ASSERT_EQ(bridge.messages.size(), 1U);
      EXPECT_EQ(bridge.messages[0].bytes[2], setting == 16 ? 0x60 : 0x60 | setting);
      bridge.messages.clear();
    }
  }
}

TEST_F(ReceiverTest, ThereIsNoNoticeWithDeviceOff) {
  const auto completeOnEveryWay = [this] {
    executer.result = 0x4;
    for (const std::uint32_t port : {4U, 5U}) EXPECT_EQ(dump("00 40 00", port), 0x4U);
    ASSERT_NE(table.findBulkBlock({0x0E, 0x60, 0}), nullptr);
    executer.result = 0x4000;
    EXPECT_EQ(dump("0F 60 00", 1), 0x4000U);
  };
  tools.system.utility[51] = 17;
  completeOnEveryWay();
  EXPECT_THAT(bridge.messages, IsEmpty());
  tools.system.utility[51] = 0;
  completeOnEveryWay();
  EXPECT_EQ(bridge.messages.size(), 3U);
}

TEST_F(ReceiverTest, DeviceSettingsAbove17AreSentUnmasked) {
  tools.system.utility[51] = 18;
  executer.result = 0x4;
  EXPECT_EQ(dump("00 40 00", 4), 0x4U);
  ASSERT_EQ(bridge.messages.size(), 1U);
  EXPECT_EQ(textOf(bridge.messages[0].bytes), "F0 7D 72 02 F7");
  bridge.messages.clear();
  EXPECT_EQ(request("00 20 00", 1), 0U);
  ASSERT_EQ(bridge.messages.size(), 1U);
  EXPECT_EQ(bridge.messages[0].bytes[2], 0x12);
}

TEST_F(ReceiverTest, WithDeviceOffARequestFailsWithoutAMessage) {
  tools.system.utility[51] = 17;
  EXPECT_EQ(request("00 20 00", 1), 0x80000004U);  // the block was converted before the head failed
  EXPECT_EQ(trace.take(),
            failure("Receiver", 251, kRequest, "error : getBulkDumpMessage() ! [ BDAErr = 0x80000004 ]\n"));
  EXPECT_THAT(bridge.messages, IsEmpty());
}

TEST_F(ReceiverTest, ABlockMayUnregisterTheBridgeBeforeTheNotice) {
  executer.result = 0x4;
  record.during("block.receive", [&] { dumps.setBridge(nullptr); });
  EXPECT_EQ(dump("00 40 00", 4), 0x4U);
  EXPECT_THAT(bridge.messages, IsEmpty());
}

TEST_F(ReceiverTest, WhatABlockThrowsIsForTheAssistantToCatch) {
  record.raise("block.receive");
  EXPECT_THROW(dump("00 40 00", 4), std::bad_alloc);
  record.raise("block.dump");
  EXPECT_THROW(request("00 40 00", 1), std::bad_alloc);
  record.heal();
  executer.result = 0x4;
  record.raise("send");
  EXPECT_THROW(dump("00 40 00", 4), std::bad_alloc);
}

TEST_F(ReceiverTest, ARequestOfAnotherLengthThan9FailsSilently) {
  const Bytes message = requestMessage("00 40 00");
  for (const std::uint32_t length : {0U, 1U, 8U, 10U, 11U, 12U, 0xFFFFFFFFU})
    EXPECT_EQ(requests.receiveBulkRequest(message.data(), length, BDA::DevicePort_Main), 0x88000000U);
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(ReceiverTest, ARequestWithoutBridgeHasABlankBeforeItsLineEnd) {
  requests.setBridge(nullptr);
  EXPECT_EQ(request("00 40 00", 1), 0x80000000U);
  EXPECT_EQ(trace.take(), failure("Receiver", 216, kRequest, "error : bda bridge is NULL ! \n"));
}

TEST_F(ReceiverTest, ARequestOfAnUnknownAddressIsNotFound) {
  EXPECT_EQ(request("05 0A 7F", 1), 0x84000000U);
  std::vector<std::string> texts = trace.take();
  ASSERT_EQ(texts.size(), 4U) << "the table's two and the receiver's two";
  texts.erase(texts.begin(), texts.begin() + 2);
  EXPECT_EQ(texts, failure("Receiver", 225, kRequest, "error : not found address ! [ 05 0a 7f ]\n"));
  EXPECT_THAT(bridge.messages, IsEmpty());
}

TEST_F(ReceiverTest, ARequestWithoutBlocksHasNothingToSend) {
  tools.liveMulti().parts[3]->bankProgram[0] = 0x3F;
  tools.liveMulti().parts[3]->bankProgram[1] = 0x32;
  EXPECT_EQ(request("0E 30 03", 1), 8U);
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(ReceiverTest, MessagesAreSentOnThePortOfTheRequestWithTheirSizes) {
  executer.messages = {bytesOf("F0 01 F7"), bytesOf("F0 02 03 F7")};
  for (const std::uint32_t port : {0U, 1U, 4U, 5U, 6U, 77U}) {
    EXPECT_EQ(request("00 40 00", port), 0U);
    const std::string at = std::to_string(port);
    EXPECT_THAT(record.take(),
                ElementsAre("block.dump(00 40 00)", "send(" + at + ", F0 01 F7)", "send(" + at + ", F0 02 03 F7)"));
  }
}

TEST_F(ReceiverTest, RemoteSettingsAreAnsweredOnPort5) {
  for (const char* address : {"0E 60 00", "0E 6F 00"}) {
    executer.result = BDA::BDA_ERR;  // only the header is asked
    executer.resultOf[address] = BDA::BDA_OK;
    executer.messages = {bytesOf("F0 F7")};
    EXPECT_EQ(request(address, 1) & 0x80000000U, 0x80000000U);
    ASSERT_FALSE(bridge.messages.empty());
    for (const FakeBridge::Message& message : bridge.messages) EXPECT_EQ(message.port, 5U);
    bridge.messages.clear();
    trace.take();
  }
}

TEST_F(ReceiverTest, BlocksAreAskedAndSentOneAfterTheOtherAndTheirResultsOred) {
  executer.messages = {bytesOf("F0 F7")};
  executer.resultOf = {{"0E 7F 00", 0x1}, {"33 00 00", 0x20}, {"32 02 00", 0x1000}, {"0F 7F 00", 0x4000}};
  EXPECT_EQ(request("0E 7F 00", 1), 0x5021U);
  EXPECT_THAT(record.take(),
              ElementsAre("block.dump(0E 7F 00)", "send(1, F0 F7)", "block.dump(33 00 00)", "send(1, F0 F7)",
                          "block.dump(32 00 00)", "send(1, F0 F7)", "block.dump(32 01 00)", "send(1, F0 F7)",
                          "block.dump(32 02 00)", "send(1, F0 F7)", "block.dump(32 03 00)", "send(1, F0 F7)",
                          "block.dump(0F 7F 00)", "send(1, F0 F7)"));
}

TEST_F(ReceiverTest, AfterAFailureNothingIsAskedOrSentAndBothResultsAreOred) {
  executer.messages = {bytesOf("F0 F7")};
  executer.resultOf = {{"0E 7F 00", 0x400}, {"33 00 00", 0x88000000}};
  EXPECT_EQ(request("0E 7F 00", 1), 0x88000400U);
  EXPECT_THAT(record.take(), ElementsAre("block.dump(0E 7F 00)", "send(1, F0 F7)", "block.dump(33 00 00)"));
  EXPECT_EQ(trace.take(),
            failure("Receiver", 251, kRequest, "error : getBulkDumpMessage() ! [ BDAErr = 0x88000400 ]\n"));
}

TEST_F(ReceiverTest, ABridgeThatUnregistersItselfGetsNoMoreMessages) {
  executer.messages = {bytesOf("F0 01 F7"), bytesOf("F0 02 F7")};
  record.during("send", [&] { requests.setBridge(nullptr); });
  EXPECT_EQ(request("0E 7F 00", 1), 0U);
  EXPECT_EQ(bridge.messages.size(), 1U);
}

TEST_F(ReceiverTest, AReplacedBridgeGetsTheRest) {
  FakeBridge other(record, nullptr);
  executer.messages = {bytesOf("F0 01 F7"), bytesOf("F0 02 F7")};
  record.during("send", [&] { requests.setBridge(&other); });
  EXPECT_EQ(request("00 40 00", 1), 0U);
  EXPECT_EQ(bridge.messages.size(), 1U);
  EXPECT_EQ(other.messages.size(), 1U);
}

}  // namespace
