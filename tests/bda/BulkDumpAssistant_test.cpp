#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

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

constexpr const char* kFamily = "BulkDumpAssistant";
constexpr const char* kCheckMessage = "BDA::BulkDumpAssistant::checkBulkDumpMessage";
constexpr const char* kReceive = "BDA::BulkDumpAssistant::receiveBulkDump";
constexpr const char* kCheckAddress = "BDA::BulkDumpAssistant::checkAddress";

std::vector<std::string> deviceOff() {
  return failure(kFamily, 237, kCheckMessage, "Device Number is set to [OFF]... so can't send SysExc.\n");
}
std::vector<std::string> wrongDevice(int setting, int device) {
  return failure(kFamily, 245, kCheckMessage,
                 "Wrong Device Number... so can't send SysExc. Utility DevNum=[" + std::to_string(setting) +
                     "], Message Dev Num=[" + std::to_string(device) + "]\n");
}
std::vector<std::string> switchOff(int line) {
  return failure(kFamily, line, kCheckMessage, "Receive Bulk Sw is OFF !!!\n");
}
std::vector<std::string> receivingError() {
  return failure(kFamily, 573, kReceive, "ERROR: Bulk Dump Msg receiving error!\n");
}
std::vector<std::string> wrongCheckSum(const Bytes& message, unsigned computed, unsigned received) {
  char text[160];
  std::snprintf(text, sizeof text,
                "Check Sum Error!: Address=[%02x,%02x,%02x], Received Check Sum=[ 0x%02x ], Correct Check Sum=[ 0x%02x "
                "]\n",
                unsigned{message[7]}, unsigned{message[8]}, unsigned{message[9]}, computed, received);
  return failure(kFamily, 267, kCheckMessage, text);
}
std::vector<std::string> wrongLength(std::size_t length) {
  return failure("Utilities", 139, "BDA::Utility::calcCheckSum",
                 "error : wrong length ! [length = " + std::to_string(length) + "]\n");
}

// What kind of message it is ----------------------------------------------------------------------------------------

class Classification : public AssistantFixture {
 protected:
  BulkMsgType check(const Bytes& message) { return check(message, message.size()); }
  // The first `length` bytes in a buffer of exactly that length.
  BulkMsgType check(const Bytes& message, std::size_t length) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[length]());
    std::copy_n(message.begin(), std::min(length, message.size()), exact.get());
    return assistant->checkBulkDumpMessage(exact.get(), static_cast<unsigned long>(length));
  }
  void TearDown() override {
    EXPECT_THAT(calls(), IsEmpty()) << "a classification has no effect but its lines";
    AssistantFixture::TearDown();
  }
};

TEST_F(Classification, GoodDumpsAndRequestsAreSilent) {
  EXPECT_EQ(check(dumpMessage("00 40 00", pattern(8))), BulkMsg_BulkDump);
  EXPECT_EQ(check(dumpMessage("0E 0A 05")), BulkMsg_BulkDump);
  EXPECT_EQ(check(requestMessage("0E 0A 05")), BulkMsg_BulkRequest);
}

TEST_F(Classification, NothingAtAllIsNotSystemExclusive) {
  EXPECT_EQ(assistant->checkBulkDumpMessage(nullptr, 0), BulkMsg_NotSysEx);
  EXPECT_EQ(assistant->checkBulkDumpMessage(nullptr, 12), BulkMsg_NotSysEx);
  EXPECT_EQ(check({}, 0), BulkMsg_NotSysEx);
  EXPECT_EQ(assistant->receiveBulkDump(nullptr, 0, DevicePort_Main), BulkMsg_NotSysEx);
}

TEST_F(Classification, EveryFirstByteButF0IsNotSystemExclusive) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  for (unsigned first = 0; first < 256; ++first) {
    message[0] = std::uint8_t(first);
    EXPECT_EQ(check(message), first == 0xF0 ? BulkMsg_BulkDump : BulkMsg_NotSysEx);
  }
}

TEST_F(Classification, EveryOtherMakerIsAnotherModel) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  for (unsigned maker = 0; maker < 256; ++maker) {
    message[1] = std::uint8_t(maker);
    EXPECT_EQ(check(message), maker == 0x7D ? BulkMsg_BulkDump : BulkMsg_OtherModel);
  }
}

TEST_F(Classification, TheSecondModelIsMatchedOnByte4Alone) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  for (unsigned first = 0; first < 128; ++first) {
    for (unsigned second = 0; second < 128; ++second) {
      message[3] = std::uint8_t(first);
      message[4] = std::uint8_t(second);
      const bool ours = (first == 0x7F && second == 0x14) || second == 0x15;
      ASSERT_EQ(check(message), ours ? BulkMsg_BulkDump : BulkMsg_OtherModel) << first << " " << second;
    }
  }
}

TEST_F(Classification, EveryLengthOfADump) {
  for (const std::size_t dataLength : {0U, 8U, 68U}) {
    Bytes message = dumpMessage("00 40 00", pattern(dataLength));
    ASSERT_NE(message[dataLength + 10], 0) << "a sum of 0 would pass with a wrong length";
    message.resize(dataLength + 13);  // a byte after F7
    for (std::size_t length = 0; length <= message.size(); ++length) {
      const BulkMsgType type = check(message, length);
      const std::vector<std::string> log = trace();
      if (length == 0) {
        EXPECT_EQ(type, BulkMsg_NotSysEx);
        EXPECT_THAT(log, IsEmpty());
      } else if (length < 9) {
        EXPECT_EQ(type, BulkMsg_OtherModel);
        EXPECT_THAT(log, IsEmpty());
      } else if (length < 12) {
        EXPECT_EQ(type, BulkMsg_ReceiveError);
        EXPECT_THAT(log, IsEmpty());
      } else if (length == dataLength + 12) {
        EXPECT_EQ(type, BulkMsg_BulkDump);
        EXPECT_THAT(log, IsEmpty());
      } else {
        EXPECT_EQ(type, BulkMsg_CheckSumError) << length;
        // The test's own lines, those of the sum that is computed for the report, the report.
        const std::vector<std::string> tested =
            length < dataLength + 10 ? std::vector<std::string>{"Message is too short!!!\n"} : wrongLength(length);
        const unsigned received = length > dataLength + 10 ? message[dataLength + 10] : 0U;
        EXPECT_EQ(log, lines(tested, wrongLength(length), wrongCheckSum(message, 0, received))) << length;
      }
    }
  }
}

TEST_F(Classification, EveryLengthOfARequest) {
  Bytes message = requestMessage("0E 0A 05");
  message.resize(40);
  for (std::size_t length = 0; length <= message.size(); ++length) {
    const BulkMsgType expected = length == 0   ? BulkMsg_NotSysEx
                                 : length < 9  ? BulkMsg_OtherModel
                                 : length == 9 ? BulkMsg_BulkRequest
                                               : BulkMsg_ReceiveError;
    EXPECT_EQ(check(message, length), expected) << length;
  }
}

TEST_F(Classification, ANineByteDumpAndATenByteRequestAreReceiveErrors) {
  EXPECT_EQ(check(bytesOf("F0 7D 00 7F 14 00 00 00 F7")), BulkMsg_ReceiveError);
  EXPECT_EQ(check(bytesOf("F0 7D 20 7F 14 0E 0A 05 00 F7")), BulkMsg_ReceiveError);
}

TEST_F(Classification, NeitherDumpNorRequestNeedsItsF7) {
  Bytes dump = dumpMessage("00 40 00", pattern(8));
  dump.back() = 0;
  EXPECT_EQ(check(dump), BulkMsg_BulkDump);
  Bytes request = requestMessage("00 40 00");
  request.back() = 0;
  EXPECT_EQ(check(request), BulkMsg_BulkRequest);
}

TEST_F(Classification, EveryByte2UnderEveryDeviceSettingAndSwitch) {
  for (int setting = 0; setting <= 19; ++setting) {
    for (const int receiveSwitch : {0, 1, 2, 255}) {
      for (const bool isRequest : {false, true}) {
        setDevice(setting);
        setReceiveSwitch(receiveSwitch);
        Bytes message = isRequest ? requestMessage("00 40 00") : dumpMessage("00 40 00", pattern(8));
        for (unsigned byte2 = 0; byte2 < 256; ++byte2) {
          message[2] = std::uint8_t(byte2);
          const int device = int(byte2 & 0x0F);
          BulkMsgType type = BulkMsg_ReceiveError;
          std::vector<std::string> log;
          if (setting == 17) {
            type = BulkMsg_DeviceNumberOff;
            log = deviceOff();
          } else if (setting != 16 && setting != device) {
            type = BulkMsg_WrongDeviceNumber;
            log = wrongDevice(setting, device);
          } else if (byte2 >> 4 == 1) {
            type = BulkMsg_Type1;
          } else if (byte2 >> 4 == 3) {
            type = BulkMsg_Type3;
          } else if (byte2 >> 4 == 4) {
            type = BulkMsg_Type4;
          } else if (byte2 >> 4 == (isRequest ? 2U : 0U)) {
            type = isRequest ? BulkMsg_BulkRequest : BulkMsg_BulkDump;
            if (receiveSwitch == 0) {
              type = BulkMsg_ReceiveSwOff;
              log = switchOff(isRequest ? 287 : 262);
            }
          }
          ASSERT_EQ(check(message), type) << "setting " << setting << " byte 2 " << byte2;
          ASSERT_EQ(trace(), log);
        }
      }
    }
  }
}

TEST_F(Classification, TheDeviceIsTestedBeforeTypeAndLength) {
  setDevice(5);
  EXPECT_EQ(check(bytesOf("F0 7D F0 7F 14 00 00 00 F7")), BulkMsg_WrongDeviceNumber);
  EXPECT_EQ(trace(), wrongDevice(5, 0));
  setDevice(17);
  EXPECT_EQ(check(bytesOf("F0 7D F0 7F 14 00 00 00 F7")), BulkMsg_DeviceNumberOff);
  EXPECT_EQ(trace(), deviceOff());
}

TEST_F(Classification, SwitchOffComesBeforeTheCheckSum) {
  setReceiveSwitch(0);
  Bytes message = dumpMessage("00 40 00", pattern(8));
  message[18] ^= 1;
  EXPECT_EQ(check(message), BulkMsg_ReceiveSwOff);
  EXPECT_EQ(trace(), switchOff(262));
}

TEST_F(Classification, WithoutSystemModelTheDeviceIsOff) {
  record.fail("system");
  EXPECT_EQ(check(requestMessage("00 40 00")), BulkMsg_DeviceNumberOff);
  EXPECT_EQ(trace(), deviceOff());
}

TEST_F(Classification, ASwitchThatCannotBeReadIsOff) {
  for (const char* call : {"system", "system.utility", "get"}) {
    record.heal();
    record.fail(call, 2);  // the first is for the device number
    EXPECT_EQ(check(requestMessage("00 40 00")), BulkMsg_ReceiveSwOff) << call;
    EXPECT_EQ(trace(), switchOff(287));
  }
}

TEST_F(Classification, EveryWrongCheckSumIsReportedWithBothSumsUnderSwappedNames) {
  const Bytes good = dumpMessage("00 40 00", pattern(8));
  for (unsigned checkSum = 0; checkSum < 256; ++checkSum) {
    Bytes message = good;
    message[18] = std::uint8_t(checkSum);
    if (checkSum == good[18]) continue;
    ASSERT_EQ(check(message), BulkMsg_CheckSumError);
    ASSERT_EQ(trace(), wrongCheckSum(message, good[18], checkSum));
  }
}

TEST_F(Classification, TheReportedByteIsFoundByTheLowPartOfTheByteCountAlone) {
  Bytes message = dumpMessage("00 00 00", pattern(128 + 5));
  const unsigned right = message[10 + 133];
  message[10 + 133] ^= 1;
  EXPECT_EQ(check(message), BulkMsg_CheckSumError);
  EXPECT_EQ(trace(), wrongCheckSum(message, right, message[10 + 5]));
}

TEST_F(Classification, AReportedByteOutsideTheMessageIs0) {
  for (unsigned low = 0; low < 256; ++low) {
    Bytes message = bytesOf("F0 7D 00 7F 14 00 00 0E 5F 00 13 F7");
    message[6] = std::uint8_t(low);
    if (check(message) == BulkMsg_BulkDump) continue;
    const std::vector<std::string> log = trace();
    ASSERT_GE(log.size(), 2U);
    unsigned computed = 0, received = 0;
    ASSERT_EQ(std::sscanf(log.back().c_str(),
                          "Check Sum Error!: Address=[0e,5f,00], Received Check Sum=[ 0x%x ], Correct Check Sum=[ 0x%x",
                          &computed, &received),
              2);
    EXPECT_EQ(received, low == 0 ? 0x13U : low == 1 ? 0xF7U : 0U) << low;
  }
}

TEST_F(Classification, AMessageThatEndsWhereItsCheckSumShouldStandIsNeverReadOn) {
  Bytes message = dumpMessage("00 00 00", pattern(2));
  message[6] = 4;  // 14 bytes, a byte count of 4
  ASSERT_EQ(message.size(), 14U);
  EXPECT_EQ(check(message), BulkMsg_CheckSumError);
  EXPECT_EQ(trace(), lines(wrongLength(14), wrongLength(14), wrongCheckSum(message, 0, 0)));
}

TEST_F(Classification, ACheckSumOf0PassesWithoutF7AndWithBytesAfterIt) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  message[18] = 0;
  for (const std::size_t length : {19U, 21U, 22U}) {
    EXPECT_EQ(check(message, length), BulkMsg_BulkDump);
    EXPECT_EQ(trace(), wrongLength(length));
  }
}

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

// Dumps -------------------------------------------------------------------------------------------------------------

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

// Mixing voices -----------------------------------------------------------------------------------------------------

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

// Requests ----------------------------------------------------------------------------------------------------------

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
