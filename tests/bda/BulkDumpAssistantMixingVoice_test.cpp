#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BulkDumpAssistantReports.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class MixingVoice : public AssistantFixture {};

TEST_F(MixingVoice, AFooterThatMarksItAsEmptyRemovesItAndIsUsedUp) {
  openHeader();
  for (const long result : {ContSrv::ContRes_Success, ContSrv::ContRes_DoNothing}) {
    for (const std::uint32_t from : {1U, 4U, 5U, 6U}) {
      record.answer("removeMixingVoice", result);
      record.answer("getLoadSaveFlag", 1);
      port = DevicePortNum(from);
      EXPECT_EQ(send("0F 31 45"), BulkMsg_BulkDump);
      EXPECT_THAT(calls(), ElementsAre("removeMixingVoice(1, 0, 5)")) << "no mode check, no message, no echo";
    }
  }
  record.heal();
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(MixingVoice, ItsNumberIsTheLowNibble) {
  for (unsigned lo = 0x40; lo < 0x80; ++lo) {
    EXPECT_EQ(sendBytes(dumpMessage("0F 31 " + textOf({std::uint8_t(lo)}))), BulkMsg_BulkDump);
    EXPECT_THAT(calls(), ElementsAre("removeMixingVoice(1, 0, " + std::to_string(lo & 0x0F) + ")"));
  }
}

TEST_F(MixingVoice, AFailedRemovalIsLoggedAndTheFooterGoesTheNormalWay) {
  for (const long result : {ContSrv::ContRes_EmptyContent, ContSrv::ContRes_Failure, ContSrv::_ContResult(-7)}) {
    record.answer("removeMixingVoice", result);
    EXPECT_EQ(send("0F 31 45"), BulkMsg_BulkDump);
    EXPECT_EQ(
        trace(),
        lines(failure(kFamily, 24, "bulkMixVoiceDeletion",
                      "error: failed to remove mixing voices ! [ ContSrvResult = " + std::to_string(result) + " ]\n"),
              failure("Receiver", 116, "BDA::BulkDumpReceiver::receiveBulkDump",
                      "error : not found block [ 0f, 31, 45 ]\n")));
    EXPECT_THAT(calls(), Contains("checkMode(0F 31 45)"));
    EXPECT_THAT(shown(), ElementsAre(1, 2));
  }
}

TEST_F(MixingVoice, NoOtherAddressRemovesOne) {
  for (const char* address : {"0F 31 05", "0F 31 80", "0E 31 45", "0F 30 45", "0F 32 45", "10 31 45"}) {
    send(address);
    trace();
    for (const std::string& call : calls()) EXPECT_THAT(call, Not(::testing::HasSubstr("removeMixingVoice")));
  }
}

TEST_F(MixingVoice, AHeaderThatMarksItAsEmptyIsAnUnknownBlockAndKeepsTheHeader) {
  openHeader();
  EXPECT_EQ(send("0E 31 45"), BulkMsg_BulkDump);
  EXPECT_EQ(trace(), failure("Receiver", 116, "BDA::BulkDumpReceiver::receiveBulkDump",
                             "error : not found block [ 0e, 31, 45 ]\n"));
  EXPECT_THAT(shown(), ElementsAre(12, 11, 12));
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(MixingVoice, ARequestForAnEmptyOneIsAnsweredWithTwoEmptyMessages) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  openHeader();
  EXPECT_EQ(request("0E 31 02"), BulkMsg_BulkRequest);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceName(1, 0, 2)", "send(1, F0 7D 00 7F 14 00 00 0E 31 42 7F F7)",
                                   "send(1, F0 7D 00 7F 14 00 00 0F 31 42 7E F7)"));
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(MixingVoice, TheEmptyAnswerLeavesOnThePortOfTheRequestEvenOnPort6) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  for (const std::uint32_t from : {1U, 4U, 5U, 6U, 9U}) {
    port = DevicePortNum(from);
    EXPECT_EQ(request("0E 31 0F"), BulkMsg_BulkRequest);
    const std::string at = std::to_string(from);
    EXPECT_THAT(sent(), ElementsAre(at + ": F0 7D 00 7F 14 00 00 0E 31 4F 72 F7",
                                    at + ": F0 7D 00 7F 14 00 00 0F 31 4F 71 F7"));
    EXPECT_THAT(calls(), Not(Contains("checkMode(0E 31 0F)")));
  }
}

TEST_F(MixingVoice, TheEmptyAnswerCarriesTheDeviceAndTheWholeLowByte) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  setDevice(5);
  EXPECT_EQ(sendBytes(requestMessage("0E 31 23", 5)), BulkMsg_BulkRequest);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceName(1, 0, 35)", "send(1, F0 7D 05 7F 14 00 00 0E 31 63 5E F7)",
                                   "send(1, F0 7D 05 7F 14 00 00 0F 31 63 5D F7)"));
}

TEST_F(MixingVoice, TheEmptyMessagesAreGoodDumps) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  for (unsigned lo = 0; lo < 128; ++lo) {
    request("0E 31 " + textOf({std::uint8_t(lo)}));
    for (const FakeBridge::Message& message : bridge->messages) {
      ASSERT_EQ(message.bytes.size(), 12U);
      ASSERT_EQ(assistant->checkBulkDumpMessage(message.bytes.data(), 12), BulkMsg_BulkDump);
    }
    forget();
  }
}

TEST_F(MixingVoice, ARequestForOneThatIsThereIsAnsweredNormally) {
  for (const long result : {ContSrv::ContRes_Success, ContSrv::ContRes_DoNothing, ContSrv::ContRes_Failure}) {
    record.answer("getMixingVoiceName", result);
    record.answer("checkMode", CMA::JOB::Result_EditCompareModeError);
    EXPECT_EQ(request("0E 31 02"), BulkMsg_BulkRequest);
    EXPECT_EQ(trace().size(), 2U);
    EXPECT_THAT(calls(), ElementsAre("getMixingVoiceName(1, 0, 2)", "checkMode(0E 31 02)"));
  }
}

TEST_F(MixingVoice, OtherRequestsDoNotAskForIt) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  record.answer("checkMode", CMA::JOB::Result_EditCompareModeError);
  for (const char* address : {"0F 31 02", "0E 30 02", "0E 32 02"}) {
    EXPECT_EQ(request(address), BulkMsg_BulkRequest);
    trace();
    EXPECT_THAT(calls(), ElementsAre("checkMode(" + std::string(address) + ")"));
  }
}

TEST_F(MixingVoice, WithoutBridgeOrDeviceTheRequestGoesTheNormalWay) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  record.answer("checkMode", CMA::JOB::Result_EditCompareModeError);
  // The device number is read for the classification first; by the second time it is OFF.
  record.during("getMixingVoiceName", [&] { setDevice(17); });
  EXPECT_EQ(request("0E 31 02"), BulkMsg_BulkRequest);
  EXPECT_THAT(calls(), ElementsAre("getMixingVoiceName(1, 0, 2)", "checkMode(0E 31 02)"));
  trace();
  setDevice(0);
  assistant->registerBDABridge(nullptr);
  EXPECT_EQ(request("0E 31 02"), BulkMsg_BulkRequest);
  EXPECT_THAT(calls(), ElementsAre("checkMode(0E 31 02)"));
  trace();
}

TEST_F(MixingVoice, ABridgeMayUnregisterItselfBetweenTheTwoEmptyMessages) {
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  record.during("send", [&] { assistant->registerBDABridge(nullptr); });
  EXPECT_EQ(request("0E 31 02"), BulkMsg_BulkRequest);
  EXPECT_EQ(sent().size(), 1U);
}

}  // namespace
