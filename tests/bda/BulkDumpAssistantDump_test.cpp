#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "BulkDumpAssistantReports.h"
#include "support/AssistantFixture.h"
#include "support/OwnScheduling.h"
#include "support/ScriptedExecuter.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class Dump : public AssistantFixture {
 protected:
  // Not the scheduling that a priority given back to nobody would leave.
  void SetUp() override {
    ASSERT_TRUE(setOwnScheduling(kUnusual));
    AssistantFixture::SetUp();
  }
  void TearDown() override {
    AssistantFixture::TearDown();
    setOwnScheduling({});
  }
  static std::string changeTo(const OwnScheduling& to) {
    return "thread.change(" + std::to_string(to.policy) + ", " + std::to_string(to.priority) + ", 0)";
  }
  // The scheduling of this thread, which a boost must give back.
  static std::string changeToOwn() { return changeTo(ownScheduling()); }
};

TEST_F(Dump, ASystemBlockIsReceivedClosedAndEchoed) {
  const std::string message = textOf(dumpMessage("00 40 00", bytesOf("01 02 03 04 05 06 07 08")));
  EXPECT_EQ(send("00 40 00", bytesOf("01 02 03 04 05 06 07 08")), BulkMsg_BulkDump);
  const std::string path = "set(system.adPart[0].params, ";
  EXPECT_THAT(calls(),
              ElementsAre("checkMode(00 40 00)", "getLoadSaveFlag", "setId(11)", "flush(messages)", "suspendOutputMidi",
                          path + "0, 1, flag 1)", path + "1, 2, flag 1)", path + "2, 3, flag 1)",
                          path + "3, 4, flag 1)", path + "4, 5, flag 1)", path + "5, 7, flag 1)", "resumeOutputMidi",
                          "setId(12)", "send(4, " + message + ")"));
}

TEST_F(Dump, AHeaderStaysOpenAndItsMessageShown) {
  EXPECT_EQ(send("0E 5F 00"), BulkMsg_BulkDump);
  EXPECT_THAT(shown(), ElementsAre(11));
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Dump, AFooterIsStoredUnderARaisedPriority) {
  send("0E 0A 05");
  forget();
  const std::string before = changeToOwn();
  ASSERT_EQ(before, changeTo(kUnusual));
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  EXPECT_THAT(calls(),
              ElementsAre("checkMode(0F 0A 05)", "getLoadSaveFlag", "setId(12)", "set(additional.params, 0, 0, flag 1)",
                          "flush(additional)", "setId(1)", "flush(messages)", "thread.attach", "thread.getPolicy",
                          "thread.getPriority", "thread.change(2, 1, 0)", "suspendOutputMidi", "store(0A 05)",
                          "resumeOutputMidi", before, "thread.detach", "setId(2)",
                          "send(4, " + textOf(dumpMessage("0F 0A 05")) + ")"));
  EXPECT_EQ(changeToOwn(), before);
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, AFooterIsStoredByAThreadThatIsLeftAlone) {
  using UtilSrv::Thread;
  Thread::setScheduling(Thread::Scheduling::LeftAlone);
  send("0E 0A 05");
  forget();
  OwnScheduling inside;
  record.during("store", [&] { inside = ownScheduling(); });
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  Thread::setScheduling(Thread::Scheduling::System);
  EXPECT_THAT(
      callsWithout({"setId", "flush", "set"}),
      ElementsAre("checkMode(0F 0A 05)", "getLoadSaveFlag", "thread.attach", "thread.getPolicy", "thread.getPriority",
                  "thread.change(2, 1, 0)", "suspendOutputMidi", "store(0A 05)", "resumeOutputMidi",
                  "thread.change(0, 0, 0)", "thread.detach", "send(4, " + textOf(dumpMessage("0F 0A 05")) + ")"));
  EXPECT_TRUE(inside == kUnusual);
  EXPECT_EQ(changeToOwn(), changeTo(kUnusual));
}

TEST_F(Dump, AnEditBufferFooterIsStoredAsAnOrdinaryBlock) {
  openHeader();
  EXPECT_EQ(send("0F 5F 00"), BulkMsg_BulkDump);
  EXPECT_THAT(calls(), ElementsAre("checkMode(0F 5F 00)", "getLoadSaveFlag", "setId(12)", "setId(11)",
                                   "flush(messages)", "suspendOutputMidi", "store(5F 00)", "resumeOutputMidi",
                                   "setId(12)", "send(4, " + textOf(dumpMessage("0F 5F 00")) + ")"));
}

TEST_F(Dump, StoringIsShownByTheAddressAlone) {
  // Unknown addresses too: neither 0F 7E 00 nor 11 7F 7F is one of the instrument's.
  for (const char* address : {"0F 7E 00", "11 7F 7F"}) {
    EXPECT_EQ(send(address), BulkMsg_BulkDump);
    EXPECT_THAT(shown(), ElementsAre(1, 2));
    EXPECT_THAT(calls(), Contains("thread.change(2, 1, 0)"));
    EXPECT_EQ(trace().size(), 2U);
  }
  for (const char* address : {"10 00 00", "12 00 00", "05 05 05"}) {
    EXPECT_EQ(send(address), BulkMsg_BulkDump);
    EXPECT_THAT(shown(), ElementsAre(11, 12));
    EXPECT_THAT(calls(), Not(Contains("thread.attach")));
    EXPECT_EQ(trace().size(), 2U);
  }
}

TEST_F(Dump, AnUnknownBlockClosesTheMessageAndKeepsTheHeader) {
  openHeader();
  EXPECT_EQ(send("05 05 05"), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), failure("Receiver", 116, "BDA::BulkDumpReceiver::receiveBulkDump",
                             "error : not found block [ 05, 05, 05 ]\n"));
  EXPECT_THAT(shown(), ElementsAre(12, 11, 12));
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Dump, AFailedBlockIsShownAndForgetsTheHeader) {
  openHeader();
  EXPECT_EQ(send("00 40 00", pattern(9)), BulkMsg_BulkDump);
  EXPECT_EQ(trace().size(), 4U) << "the block's two and the receiver's two";
  EXPECT_THAT(shown(), ElementsAre(12, 11, 12, 44));
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, AFailedStoreIsShownAfterItsClosingId) {
  send("0E 0A 05");
  forget();
  record.fail("store");
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  EXPECT_EQ(trace().size(), 4U);
  EXPECT_THAT(shown(), ElementsAre(12, 1, 2, 44));
  record.heal();
  EXPECT_FALSE(isHeaderOpen());
}

struct ResultRow {
  BDAErr result;
  std::vector<int> shown;
  bool keepsHeader;
};

TEST_F(Dump, EveryKindOfResultHasItsMessageAndItsEffectOnTheHeader) {
  std::vector<ResultRow> rows{
      {0, {11}, true},
      {0x80000000, {11, 12, 44}, false},
      {0x88000000, {11, 12, 44}, false},
      {0x82000000, {11, 12, 44}, false},
      {0x81000000, {11, 12, 46}, false},
      {0x81000800, {11, 12, 46}, false},
      {0x84000000, {11, 12}, true},
      {0x85000000, {11, 12}, true},  // both kinds: not found comes first
      {0x8C000400, {11, 12}, true},
      {0x80004C04, {11, 12, 44}, false},  // what a failure says of success does not count
      {0x04000000, {11}, true},           // nor what a success says of failure
      {0x01000000, {11}, true},
      {0x4008, {11, 12}, false},
  };
  for (unsigned bit = 0; bit < 16; ++bit) {
    const BDAErr result = 1U << bit;
    const bool completes = result == 0x400 || result == 0x4 || result == 0x4000 || result == 0x800;
    rows.push_back({result, completes ? std::vector<int>{11, 12} : std::vector<int>{11}, !completes});
  }
  ScriptedExecuter executer(record, &tools);
  replaceExecuter(table(), "00 40 00", executer);
  for (const ResultRow& row : rows) {
    openHeader();
    assistant->closeMsg();
    forget();
    executer.result = row.result;
    EXPECT_EQ(send("00 40 00"), BulkMsg_BulkDump);
    const std::vector<std::string> log = trace();
    EXPECT_EQ(log.size(), (row.result & 0x80000000) != 0 ? 2U : 0U);
    EXPECT_EQ(shown(), row.shown) << std::hex << row.result;
    EXPECT_EQ(sent().size(), 1U) << "the echo, whatever happened";
    EXPECT_EQ(isHeaderOpen(), row.keepsHeader) << std::hex << row.result;
    assistant->closeMsg();
    forget();
  }
}

TEST_F(Dump, AStoringMessageIsClosedWhateverTheResult) {
  ScriptedExecuter executer(record, &tools);
  replaceExecuter(table(), "0E 0A 05", executer);
  replaceExecuter(table(), "0F 0A 05", executer);
  const std::pair<BDAErr, std::vector<int>> rows[] = {
      {0, {1, 2}},          {0x1000, {1, 2}},         {0x4000, {1, 2}},         {0x800, {1, 2}},
      {0x84000000, {1, 2}}, {0x81000000, {1, 2, 46}}, {0x82000000, {1, 2, 44}},
  };
  for (const auto& [result, ids] : rows) {
    executer.result = 0;
    send("0E 0A 05");
    assistant->closeMsg();
    forget();
    executer.result = result;
    send("0F 0A 05");
    trace();
    EXPECT_EQ(shown(), ids) << std::hex << result;
    assistant->closeMsg();
    EXPECT_THAT(shown(), IsEmpty());
  }
}

TEST_F(Dump, DumpsOfPorts1And6AreEchoedUnchangedOnPort4) {
  const Bytes message = dumpMessage("00 40 00", pattern(8));
  for (const std::uint32_t from : {1U, 6U}) {
    port = DevicePortNum(from);
    EXPECT_EQ(sendBytes(message), BulkMsg_BulkDump);
    EXPECT_THAT(sent(), ElementsAre("4: " + textOf(message)));
  }
}

TEST_F(Dump, TheEchoIsTheCallersOwnBuffer) {
  const Bytes message = dumpMessage("00 40 00", pattern(8));
  assistant->receiveBulkDump(message.data(), lengthOf(message), DevicePort_Main);
  ASSERT_EQ(bridge->pointers.size(), 1U);
  EXPECT_EQ(bridge->pointers[0], message.data());
}

TEST_F(Dump, DumpsOfPorts4And5GetANoticeAndNoEcho) {
  for (const std::uint32_t from : {4U, 5U}) {
    port = DevicePortNum(from);
    send("00 40 00", pattern(8));
    EXPECT_THAT(sent(), ElementsAre(std::to_string(from) + ": F0 7D 60 02 F7"));
  }
}

TEST_F(Dump, OtherPortsGetNeither) {
  for (const std::uint32_t from : {0U, 2U, 3U, 7U, 100U, 0xFFFFFFFFU}) {
    port = DevicePortNum(from);
    EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
    EXPECT_THAT(shown(), ElementsAre(11, 12));
    EXPECT_THAT(sent(), IsEmpty());
  }
}

TEST_F(Dump, AFooterOfRemoteSettingsGetsItsNoticeOnPort5BeforeTheEcho) {
  for (const char* address : {"60 00", "6F 00"}) {
    send("0E " + std::string(address));
    forget();
    send("0F " + std::string(address));
    EXPECT_THAT(sent(), ElementsAre("5: F0 7D 60 02 F7", "4: " + textOf(dumpMessage("0F " + std::string(address)))));
  }
}

TEST_F(Dump, WithoutBridgeEveryBlockIsRefusedAndNothingIsEchoed) {
  assistant->registerBDABridge(nullptr);
  for (const std::uint32_t from : {1U, 4U, 5U, 6U}) {
    port = DevicePortNum(from);
    EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
    EXPECT_EQ(trace(),
              failure("Receiver", 101, "BDA::BulkDumpReceiver::receiveBulkDump", "error : bda bridge is NULL !\n"));
    EXPECT_EQ(shown().back(), 44);
  }
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Dump, WhileAFileIsLoadedOrSavedItIsRefusedAsLodingAndForgetsTheHeader) {
  openHeader();
  record.answer("getLoadSaveFlag", 1);
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), failure(kFamily, 365, kReceive, "error : can't receive bulk while loding/saving file !\n"));
  EXPECT_THAT(calls(), ElementsAre("checkMode(00 40 00)", "getLoadSaveFlag"));
  record.heal();
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, OnlyALoadSaveFlagOf1Blocks) {
  for (const long flag : {0L, 2L, 3L, 128L, 255L}) {
    record.answer("getLoadSaveFlag", flag);
    EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
    EXPECT_THAT(shown(), ElementsAre(11, 12)) << flag;
    EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
    EXPECT_THAT(shown(), ElementsAre(13, 14)) << flag;
  }
}

TEST_F(Dump, WhatABlockThrowsStillResumesMidiAndRestoresThePriority) {
  send("0E 0A 05");
  forget();
  const std::string before = changeToOwn();
  record.raise("store");
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  EXPECT_THAT(shown(), ElementsAre(12, 1, 2, 44));
  EXPECT_THAT(
      callsWithout({"setId", "flush", "set"}),
      ElementsAre("checkMode(0F 0A 05)", "getLoadSaveFlag", "thread.attach", "thread.getPolicy", "thread.getPriority",
                  "thread.change(2, 1, 0)", "suspendOutputMidi", "store(0A 05)", "resumeOutputMidi", before,
                  "thread.detach", "send(4, " + textOf(dumpMessage("0F 0A 05")) + ")"));
}

TEST_F(Dump, ADumpFromInsideAStoreDoesNotSaveTheRaisedPriority) {
  const std::string before = changeToOwn();
  bool inside = false;
  record.during("store", [&] {
    if (std::exchange(inside, true)) return;
    const Bytes footer = dumpMessage("0F 0A 05");
    assistant->receiveBulkDump(footer.data(), lengthOf(footer), DevicePort_Echo);
  });
  send("0E 0A 05");
  forget();
  send("0F 0A 05");
  trace();
  std::vector<std::string> changes;
  for (const std::string& call : calls())
    if (call.rfind("thread.change", 0) == 0) changes.push_back(call);
  EXPECT_THAT(changes, ElementsAre("thread.change(2, 1, 0)", before));
  EXPECT_EQ(changeToOwn(), before);
}

// Literal rules that lose data, kept on purpose.

TEST_F(Dump, ASystemBlockInsideAMultiClosesItsHeaderAndTheRestIsRefused) {
  openHeader();
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
  forget();
  EXPECT_EQ(send("36 00 00", pattern(80)), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), failure("Receiver", 116, "BDA::BulkDumpReceiver::receiveBulkDump",
                             "error : not found block [ 36, 00, 00 ]\n"));
  EXPECT_THAT(shown(), ElementsAre(11, 12));
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, ARequestInsideAMultiClosesItsHeader) {
  openHeader();
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, AnotherHeaderTakesTheOpenOnesPlace) {
  send("0E 0A 05");
  openHeader();
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Dump, BeforeAnyHeaderTheFooter0F0000IsStored) {
  EXPECT_EQ(send("0F 00 00"), BulkMsg_BulkDump);
  EXPECT_THAT(shown(), ElementsAre(1, 2));
  EXPECT_THAT(calls(), Contains("store(00 00)"));
}

TEST_F(Dump, APartVoiceInASwallowedBankIsRefusedAndForgetsTheHeader) {
  tools.liveMulti().parts[3]->bankProgram[0] = 0x3F;
  tools.liveMulti().parts[3]->bankProgram[1] = 0x32;
  openHeader();
  EXPECT_EQ(send("0E 30 03"), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), failure("Receiver", 128, "BDA::BulkDumpReceiver::receiveBulkDump",
                             "error : setBulkDumpMessage() ! [ BDAErr = 0x80000000 ] \n"));
  EXPECT_THAT(shown(), ElementsAre(12, 11, 12, 44));
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Dump, AMessageMeasuredAs0IsReceivedByItsLengthNotItsByteCount) {
  ScriptedExecuter executer(record, &tools);
  replaceExecuter(table(), "00 40 00", executer);
  Bytes message = dumpMessage("00 40 00", bytesOf("01 02 03"));
  message[13] = 0;  // the checksum
  message.insert(message.end(), {0x55, 0xF7});
  EXPECT_EQ(sendBytes(message), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), wrongLength(17));
  EXPECT_THAT(calls(), Contains("block.receive(00 40 00, 01 02 03 00 F7)"));
}

}  // namespace
