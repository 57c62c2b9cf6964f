#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "Address.h"
#include "BulkDumpAssistantReports.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

// Rejections --------------------------------------------------------------------------------------------------------

class Rejection : public AssistantFixture {};

TEST_F(Rejection, MessagesOfOthersAndOfOtherTypesDoNothing) {
  openHeader();
  const std::pair<const char*, BulkMsgType> messages[] = {
      {"F0 7D 10 7F 14 00 00 00 F7", BulkMsg_Type1},
      {"F0 7D 30 7F 14 00 00 00 F7", BulkMsg_Type3},
      {"F0 7D 40 7F 14 00 00 00 F7", BulkMsg_Type4},
      {"F0 7D 00 7F 13 00 00 00 F7", BulkMsg_OtherModel},
      {"F0 7E 00 7F 14 00 00 00 F7", BulkMsg_OtherModel},
      {"F0 7D 00 F7", BulkMsg_OtherModel},
      {"90 40 40", BulkMsg_NotSysEx},
  };
  for (const auto& [message, type] : messages) EXPECT_EQ(sendBytes(bytesOf(message)), type);
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Rejection, AWrongCheckSumIsShownAndKeepsTheHeader) {
  openHeader();
  flipByte(12);
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_CheckSumError);
  EXPECT_EQ(trace().size(), 2U);
  // The id of the header's dump is closed first.
  EXPECT_THAT(calls(), ElementsAre("setId(12)", "setId(40)", "flush(messages)"));
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Rejection, DeviceOffIsShownAndForgetsTheHeader) {
  openHeader();
  setDevice(17);
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_DeviceNumberOff);
  EXPECT_EQ(trace(), deviceOff());
  EXPECT_THAT(calls(), ElementsAre("setId(12)", "setId(42)", "flush(messages)"));
  setDevice(0);
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Rejection, AnotherDeviceIsShownAndForgetsTheHeader) {
  openHeader();
  EXPECT_EQ(sendBytes(dumpMessage("00 40 00", pattern(8), 3)), BulkMsg_WrongDeviceNumber);
  EXPECT_EQ(trace(), wrongDevice(0, 3));
  EXPECT_THAT(calls(), ElementsAre("setId(12)", "setId(43)", "flush(messages)"));
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Rejection, TheUnaskedMessageOfAnotherDeviceYields9WithoutAWordOnScreenAndKeepsTheHeader) {
  openHeader();
  EXPECT_EQ(sendBytes(bytesOf("F0 7D 33 7F 14 70 00 06 F7")), BulkMsg_WrongDeviceNumber);
  EXPECT_EQ(trace(), wrongDevice(0, 3));
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Rejection, TheUnaskedMessageYields8WithoutAWordOnScreenAndKeepsTheHeader) {
  openHeader();
  setDevice(17);
  EXPECT_EQ(sendBytes(bytesOf("F0 7D 30 7F 14 70 00 06 F7")), BulkMsg_DeviceNumberOff);
  EXPECT_EQ(trace(), deviceOff());
  EXPECT_THAT(calls(), IsEmpty());
  setDevice(0);
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Rejection, NothingNearTheUnaskedMessageIsExcused) {
  for (const char* message : {"F0 7D 23 7F 14 70 00 06 F7", "F0 7D 43 7F 14 70 00 06 F7", "F0 7D 33 7F 14 71 00 06 F7",
                              "F0 7D 33 7F 14 70 01 06 F7", "F0 7D 33 7F 14 70 00 07 F7"}) {
    openHeader();
    EXPECT_EQ(sendBytes(bytesOf(message)), BulkMsg_WrongDeviceNumber);
    EXPECT_EQ(trace(), wrongDevice(0, 3));
    EXPECT_EQ(shown().back(), 43) << message;
    EXPECT_FALSE(isHeaderOpen());
  }
}

TEST_F(Rejection, SwitchOffIsShownAndForgetsTheHeader) {
  for (const bool isRequest : {false, true}) {
    openHeader();
    setReceiveSwitch(0);
    EXPECT_EQ(isRequest ? request("00 40 00") : send("00 40 00", pattern(8)), BulkMsg_ReceiveSwOff);
    EXPECT_EQ(trace(), switchOff(isRequest ? 287 : 262));
    EXPECT_THAT(calls(), ElementsAre("setId(12)", "setId(41)", "flush(messages)"));
    setReceiveSwitch(1);
    EXPECT_FALSE(isHeaderOpen());
  }
}

TEST_F(Rejection, AReceiveErrorIsLoggedShownAndForgetsTheHeader) {
  for (const char* message : {"F0 7D 00 7F 14 00 00 00 F7", "F0 7D 20 7F 14 0E 0A 05 00 F7",
                              "F0 7D 50 7F 14 00 00 00 F7", "F0 7D F0 7F 14 00 00 00 F7"}) {
    openHeader();
    record.recordsTrace = true;
    EXPECT_EQ(sendBytes(bytesOf(message)), BulkMsg_ReceiveError);
    EXPECT_EQ(trace(), receivingError());
    EXPECT_THAT(calls(), ElementsAre("trace: " + receivingError()[0], "trace: " + receivingError()[1], "setId(12)",
                                     "setId(44)", "flush(messages)"));
    record.recordsTrace = false;
    EXPECT_FALSE(isHeaderOpen());
  }
}

TEST_F(Rejection, MessagesOfEveryLengthAreHandledWithoutReadingOn) {
  for (const bool isRequest : {false, true}) {
    Bytes whole = isRequest ? requestMessage("00 40 00") : dumpMessage("00 40 00", pattern(8));
    const std::size_t right = whole.size();
    whole.resize(right + 4);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
      const BulkMsgType type = sendBytes(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(length)));
      const std::vector<int> ids = shown();
      const std::vector<std::string> log = trace();
      const std::size_t messages = sent().size();
      if (length < 9) {
        EXPECT_EQ(type, length == 0 ? BulkMsg_NotSysEx : BulkMsg_OtherModel);
        EXPECT_THAT(ids, IsEmpty());
        EXPECT_THAT(log, IsEmpty());
      } else if (length == right) {
        EXPECT_EQ(type, isRequest ? BulkMsg_BulkRequest : BulkMsg_BulkDump);
        EXPECT_EQ(ids, isRequest ? (std::vector<int>{13, 14}) : (std::vector<int>{11, 12}));
        EXPECT_THAT(log, IsEmpty());
      } else if (isRequest || length < 12) {
        EXPECT_EQ(type, BulkMsg_ReceiveError);
        EXPECT_THAT(ids, ElementsAre(44));
        EXPECT_EQ(log, receivingError());
      } else {
        EXPECT_EQ(type, BulkMsg_CheckSumError);
        EXPECT_THAT(ids, ElementsAre(40));
        EXPECT_GE(log.size(), 4U);
      }
      EXPECT_EQ(messages, length == right ? 1U : 0U) << "an echo or an answer";
    }
  }
}

TEST_F(Rejection, NothingRejectedIsEchoed) {
  for (const std::uint32_t from : {1U, 6U}) {
    port = DevicePortNum(from);
    flipByte(12);
    send("00 40 00", pattern(8));
    sendBytes(dumpMessage("00 40 00", pattern(8), 3));
    sendBytes(bytesOf("F0 7D 50 7F 14 00 00 00 F7"));
    setReceiveSwitch(0);
    send("00 40 00", pattern(8));
    setReceiveSwitch(1);
    request("05 05 05");
  }
  trace();
  EXPECT_THAT(sent(), IsEmpty());
}

// Whether the editor admits an address ------------------------------------------------------------------------------

constexpr const char* kCheckAddress = "BDA::BulkDumpAssistant::checkAddress";

struct ModeCheckRow {
  long result;
  int line;
  const char* message;
  int id;
  unsigned long answer;
};
const ModeCheckRow kModeChecks[] = {
    {CMA::JOB::Result_Success, 0, nullptr, 0, 0},
    {CMA::JOB::Result_CurrentStateError, 623, "error : mode error...!\n", 45, 0x80000000},
    {CMA::JOB::Result_VoiceTypeError, 630, "error : voice type error...!\n", 45, 0x80000000},
    {CMA::JOB::Result_EditCompareModeError, 637, "error : edit/compare error...!\n", 0, 0x80000000},
    {CMA::JOB::Result_SampleAuditionError, 643, "error : sample audition error...!\n", 0, 0x80000000},
    {CMA::JOB::Result_UnknownError, 0, nullptr, 0, 8},
    {CMA::JOB::Result_MixingVoiceFullError, 654, "error : mixing voice full !\n", 46, 0x80000000},
    {7, 660, "error : unknown jobTools check result ! [ JOB::Result = 7 ]\n", 44, 0x80000000},
    {255, 660, "error : unknown jobTools check result ! [ JOB::Result = 255 ]\n", 44, 0x80000000},
    {-1, 660, "error : unknown jobTools check result ! [ JOB::Result = -1 ]\n", 44, 0x80000000},
};
std::vector<std::string> logOf(const ModeCheckRow& row) {
  return row.line == 0 ? std::vector<std::string>{} : failure(kFamily, row.line, kCheckAddress, row.message);
}

class ModeCheck : public AssistantFixture {};

TEST_F(ModeCheck, EveryResultHasItsLineMessageAndAnswer) {
  for (const ModeCheckRow& row : kModeChecks) {
    record.answer("checkMode", row.result);
    EXPECT_EQ(assistant->checkAddress({0x0E, 0x0A, 0x05}), row.answer) << row.result;
    EXPECT_EQ(trace(), logOf(row));
    std::vector<std::string> expected{"checkMode(0E 0A 05)"};
    if (row.id != 0) {
      expected.push_back("setId(" + std::to_string(row.id) + ")");
      expected.push_back("flush(messages)");
    }
    EXPECT_EQ(calls(), expected) << row.result;
    record.heal();
    forget();
  }
}

TEST_F(ModeCheck, ARefusedDumpForgetsTheHeaderAndGoesNoFurther) {
  for (const ModeCheckRow& row : kModeChecks) {
    if (row.answer != 0x80000000) continue;
    openHeader();
    record.answer("checkMode", row.result);
    EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
    EXPECT_EQ(trace(), logOf(row));
    std::vector<std::string> expected{"checkMode(00 40 00)"};
    if (row.id != 0) {
      expected.insert(expected.end(), {"setId(12)", "setId(" + std::to_string(row.id) + ")", "flush(messages)"});
    }
    EXPECT_EQ(calls(), expected) << "no load/save question, no block, no echo";
    record.heal();
    EXPECT_FALSE(isHeaderOpen());
    assistant->closeMsg();
    forget();
  }
}

TEST_F(ModeCheck, ASkippedDumpIsIgnoredWithoutAWordAndKeepsTheHeader) {
  openHeader();
  record.answer("checkMode", CMA::JOB::Result_UnknownError);
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
  EXPECT_THAT(calls(), ElementsAre("checkMode(00 40 00)"));
  record.heal();
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(ModeCheck, ARefusedRequestForgetsTheHeaderAndGoesNoFurther) {
  for (const ModeCheckRow& row : kModeChecks) {
    if (row.answer != 0x80000000) continue;
    openHeader();
    record.answer("checkMode", row.result);
    EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
    EXPECT_EQ(trace(), logOf(row));
    EXPECT_THAT(calls(), Not(Contains("getLoadSaveFlag")));
    EXPECT_THAT(sent(), IsEmpty());
    record.heal();
    EXPECT_FALSE(isHeaderOpen());
    assistant->closeMsg();
    forget();
  }
}

TEST_F(ModeCheck, ASkippedRequestIsAnsweredAllTheSame) {
  record.answer("checkMode", CMA::JOB::Result_UnknownError);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_THAT(shown(), ElementsAre(13, 14));
  EXPECT_EQ(sent().size(), 1U);
}

// Messages on the screen --------------------------------------------------------------------------------------------

class Screen : public AssistantFixture {};

TEST_F(Screen, EditBufferFootersAreSevenMiddleBytesUnder0F) {
  const std::set<unsigned> mids{0x0F, 0x2F, 0x30, 0x4F, 0x5F, 0x6F, 0x7F};
  for (unsigned hi = 0; hi < 256; ++hi)
    for (unsigned mid = 0; mid < 256; ++mid)
      for (const unsigned lo : {0U, 5U, 0x7FU})
        ASSERT_EQ(assistant->isEditBufferFooter({std::uint8_t(hi), std::uint8_t(mid), std::uint8_t(lo)}),
                  hi == 0x0F && mids.count(mid) != 0)
            << hi << " " << mid;
}

TEST_F(Screen, ThreeIdsHaveAClosingIdTheOthersNone) {
  for (unsigned id = 0; id <= 0xFFFF; id += id < 60 ? 1 : 997) {
    assistant->showMsg(std::uint16_t(id));
    forget();
    assistant->closeMsg();
    if (id == 1 || id == 11 || id == 13)
      ASSERT_EQ(calls(), std::vector<std::string>{"setId(" + std::to_string(id + 1) + ")"}) << "without a flush";
    else
      ASSERT_THAT(calls(), IsEmpty()) << id;
    assistant->closeMsg();
    ASSERT_THAT(calls(), IsEmpty()) << "nothing is shown any more";
  }
}

TEST_F(Screen, AMessageClosesTheOneBeforeIt) {
  assistant->showMsg(11);
  assistant->showMsg(44);
  EXPECT_THAT(calls(), ElementsAre("setId(11)", "flush(messages)", "setId(12)", "setId(44)", "flush(messages)"));
}

TEST_F(Screen, BeforeStoringIsShownTheAdditionalParameterIsClearedAndFlushed) {
  tools.additional.params[0] = 1;
  assistant->showMsg(13);
  forget();
  assistant->showMsg(1);
  EXPECT_THAT(calls(), ElementsAre("setId(14)", "set(additional.params, 0, 0, flag 1)", "flush(additional)", "setId(1)",
                                   "flush(messages)"));
  EXPECT_EQ(tools.additional.params[0], 0);
}

TEST_F(Screen, WhatIsMissingOfTheAdditionalModelIsSkipped) {
  record.fail("additional");
  assistant->showMsg(1);
  EXPECT_THAT(calls(), ElementsAre("setId(1)", "flush(messages)"));
  assistant->closeMsg();
  record.heal();
  forget();
  record.fail("additional.params");
  assistant->showMsg(1);
  EXPECT_THAT(calls(), ElementsAre("flush(additional)", "setId(1)", "flush(messages)"));
  assistant->closeMsg();
  record.heal();
  forget();
  record.fail("additional.eventPort");
  assistant->showMsg(1);
  EXPECT_THAT(calls(), ElementsAre("set(additional.params, 0, 0, flag 1)", "setId(1)", "flush(messages)"));
}

}  // namespace
