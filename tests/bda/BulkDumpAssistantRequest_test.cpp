#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BulkDumpAssistantReports.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Request : public AssistantFixture {};

TEST_F(Request, ASystemBlockIsAnsweredBetweenItsTwoIds) {
  for (std::uint16_t i = 0; i < 6; ++i) tools.system.adPart->params[i] = std::uint16_t(i + 1);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_THAT(
      calls(),
      ElementsAre("checkMode(00 40 00)", "getLoadSaveFlag", "setId(13)", "flush(messages)",
                  "send(1, " + textOf(dumpMessage("00 40 00", bytesOf("01 02 03 04 05 00 06 00"))) + ")", "setId(14)"));
}

TEST_F(Request, WhatIsSentComesBackUnchanged) {
  const char* addresses[] = {"00 40 00", "00 03 00", "00 04 00", "00 20 00"};
  const std::size_t lengths[] = {8, 36, 36, 20};
  for (std::size_t i = 0; i < 4; ++i) {
    send(addresses[i], pattern(lengths[i]));
    forget();
    request(addresses[i]);
    const std::vector<std::string> first = sent();
    ASSERT_EQ(first.size(), 1U);
    ASSERT_EQ(sendBytes(bytesOf(first[0].substr(3))), BulkMsg_BulkDump);
    forget();
    request(addresses[i]);
    EXPECT_EQ(sent(), first);
  }
}

TEST_F(Request, EveryAnsweredRequestForgetsTheHeader) {
  openHeader();
  request("00 40 00");
  EXPECT_FALSE(isHeaderOpen());
  request("0E 5F 00");
  trace();
  EXPECT_FALSE(isHeaderOpen()) << "its own header too";
}

TEST_F(Request, AFailedRequestIsShownAndForgetsTheHeader) {
  openHeader();
  EXPECT_EQ(request("05 05 05"), BulkMsg_BulkRequest);
  EXPECT_EQ(trace().size(), 4U);
  EXPECT_THAT(shown(), ElementsAre(12, 13, 14, 44));
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Request, ARequestWithNothingToSendYields12) {
  tools.liveMulti().parts[3]->bankProgram[0] = 0x3F;
  tools.liveMulti().parts[3]->bankProgram[1] = 0x32;
  openHeader();
  assistant->closeMsg();
  forget();
  EXPECT_EQ(request("0E 30 03"), BulkMsg_RequestSkipped);
  EXPECT_THAT(shown(), ElementsAre(13, 14));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Request, OnPort6ItIsCheckedButNeverAnswered) {
  openHeader();
  port = DevicePort_Thru;
  record.answer("getLoadSaveFlag", 1);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_THAT(calls(), ElementsAre("checkMode(00 40 00)"));
  port = DevicePort_Main;
  record.heal();
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Request, OnPort6ARefusalByTheModeCheckStillForgetsTheHeader) {
  openHeader();
  port = DevicePort_Thru;
  record.answer("checkMode", CMA::JOB::Result_CurrentStateError);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(trace().size(), 2U);
  EXPECT_EQ(shown().back(), 45);
  record.heal();
  port = DevicePort_Main;
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Request, OtherPortsAreAnsweredOnThemselves) {
  for (const std::uint32_t from : {0U, 1U, 2U, 4U, 5U, 7U, 1000U}) {
    port = DevicePortNum(from);
    EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
    const std::vector<std::string> messages = sent();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].substr(0, messages[0].find(':')), std::to_string(from));
  }
}

TEST_F(Request, WhileAFileIsLoadedOrSavedItIsRefusedAsLoadingAndForgetsTheHeader) {
  openHeader();
  record.answer("getLoadSaveFlag", 1);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(trace(), failure(kFamily, 484, kReceive, "error : can't receive bulk while loading/saving file !\n"));
  EXPECT_THAT(calls(), ElementsAre("checkMode(00 40 00)", "getLoadSaveFlag"));
  record.heal();
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Request, WithoutBridgeItFails) {
  assistant->registerBDABridge(nullptr);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(trace(), failure("Receiver", 216, "BDA::BulkRequestReceiver::receiveBulkRequest",
                             "error : bda bridge is NULL ! \n"));
  EXPECT_THAT(shown(), ElementsAre(13, 14, 44));
}

TEST_F(Request, AnswersCarryTheDeviceOfTheSettingEvenWhenAllAreAccepted) {
  setDevice(16);
  EXPECT_EQ(sendBytes(requestMessage("00 40 00", 9)), BulkMsg_BulkRequest);
  EXPECT_EQ(bridge->messages.at(0).bytes[2], 0);
  setDevice(9);
  EXPECT_EQ(sendBytes(requestMessage("00 40 00", 9)), BulkMsg_BulkRequest);
  EXPECT_EQ(bridge->messages.at(1).bytes[2], 9);
}

}  // namespace
