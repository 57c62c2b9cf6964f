#include "bda/BulkDumpAssistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "BulkDumpAssistantReports.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::IsEmpty;

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

}  // namespace
