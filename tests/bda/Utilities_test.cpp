#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <memory>

#include "bda/BulkDumpAssistant.h"
#include "support/RecordingPlatform.h"

namespace {

using namespace Testing;
using BDA::Utility;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The first `length` bytes of the message, zeros after its end, in a buffer of exactly that length.
std::unique_ptr<std::uint8_t[]> exactly(const Bytes& message, std::size_t length) {
  std::unique_ptr<std::uint8_t[]> buffer(new std::uint8_t[length]());
  std::copy_n(message.begin(), std::min(length, message.size()), buffer.get());
  return buffer;
}

unsigned naiveCheckSum(const Bytes& message) {
  unsigned sum = 0;
  for (std::size_t i = 5; i + 2 < message.size(); ++i) sum += message[i];
  return (128 - sum % 128) % 128;
}

std::vector<std::string> wrongLength(unsigned long length) {
  return failure("Utilities", 139, "BDA::Utility::calcCheckSum",
                 "error : wrong length ! [length = " + std::to_string(int(length)) + "]\n");
}

const std::vector<std::string> kTooShort{"Message is too short!!!\n"};

class UtilitiesTest : public ::testing::Test {
 protected:
  unsigned calc(const Bytes& message) { return Utility::calcCheckSum(message.data(), lengthOf(message)); }
  bool isCorrect(const Bytes& message) { return Utility::isCorrectCheckSum(message.data(), lengthOf(message)); }

  TraceScope trace;
};

TEST_F(UtilitiesTest, CheckSumOfAnEmptyMixingVoiceHeader) {
  EXPECT_EQ(calc(bytesOf("F0 7D 00 7F 14 00 00 0E 31 42 00 F7")), 0x7FU);
}

TEST_F(UtilitiesTest, ByteCount0100Means128DataBytesAnd140InAll) {
  const Bytes message = dumpMessage("00 00 00", pattern(128));
  ASSERT_EQ(message.size(), 140U);
  ASSERT_EQ(textOf({message[5], message[6]}), "01 00");
  EXPECT_EQ(calc(message), message[138]);
  EXPECT_TRUE(isCorrect(message));
}

TEST_F(UtilitiesTest, CheckSumEqualsThePlainSumForEveryDataLengthUpTo300) {
  for (std::size_t length = 0; length <= 300; ++length) {
    const Bytes message = dumpMessage("7F 7F 7F", pattern(length));
    const auto exact = exactly(message, message.size());
    ASSERT_EQ(Utility::calcCheckSum(exact.get(), lengthOf(message)), naiveCheckSum(message)) << length;
    ASSERT_TRUE(Utility::isCorrectCheckSum(exact.get(), lengthOf(message))) << length;
  }
}

RC_GTEST_PROP(UtilitiesProperty, CheckSumEqualsThePlainSumForAnyBytes, (std::vector<std::uint8_t> data)) {
  const Bytes message = dumpMessage("00 00 00", data);
  RC_ASSERT(Utility::calcCheckSum(message.data(), lengthOf(message)) == naiveCheckSum(message));
}

TEST_F(UtilitiesTest, LargestMessageIsSummed) {
  Bytes message = dumpMessage("00 00 00", Bytes(0x3FFF, 0x7F));
  ASSERT_EQ(message.size(), 16395U);
  EXPECT_EQ(calc(message), naiveCheckSum(message));
}

TEST_F(UtilitiesTest, CheckSumDoesNotReadTheLastTwoBytes) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  const unsigned before = calc(message);
  message[message.size() - 2] = 0x55;
  message[message.size() - 1] = 0x00;
  EXPECT_EQ(calc(message), before);
}

TEST_F(UtilitiesTest, EveryLengthButTheRightOneIsLoggedAndGives0) {
  for (const unsigned long dataLength : {0U, 1U, 8U, 31U, 128U}) {
    const Bytes message = dumpMessage("0E 31 42", pattern(dataLength));
    for (unsigned long length = 0; length <= dataLength + 13; ++length) {
      const auto exact = exactly(message, length);
      const unsigned checkSum = Utility::calcCheckSum(exact.get(), length);
      if (length == dataLength + 12) {
        ASSERT_EQ(checkSum, message[dataLength + 10]);
        ASSERT_THAT(trace.take(), IsEmpty());
      } else {
        ASSERT_EQ(checkSum, 0U) << length;
        ASSERT_EQ(trace.take(), wrongLength(length));
      }
    }
  }
}

TEST_F(UtilitiesTest, NullMessageHasNoCheckSum) {
  EXPECT_EQ(Utility::calcCheckSum(nullptr, 12), 0U);
  EXPECT_EQ(trace.take(), wrongLength(12));
  EXPECT_FALSE(Utility::isCorrectCheckSum(nullptr, 12));
  EXPECT_EQ(trace.take(), kTooShort);
}

TEST_F(UtilitiesTest, LengthIsComparedInFullWidth) {
  const Bytes message = dumpMessage("00 00 00");
  for (unsigned long bit = 0x8000; bit != 0; bit <<= 1) {
    EXPECT_EQ(Utility::calcCheckSum(message.data(), 12 + bit), 0U);
    EXPECT_EQ(trace.take(), wrongLength(12 + bit));
  }
}

TEST_F(UtilitiesTest, BitSevenOfTheByteCountIsNotMasked) {
  // 01 FF: 128 OR 255 is 255, not 383.
  Bytes message = dumpMessage("00 00 00", pattern(255));
  message[5] = 0x01;
  message[6] = 0xFF;
  EXPECT_EQ(calc(message), naiveCheckSum(message));
  // 81 00: 129 times 128.
  message = dumpMessage("00 00 00", pattern(129 * 128));
  message[5] = 0x81;
  EXPECT_EQ(calc(message), naiveCheckSum(message));
}

TEST_F(UtilitiesTest, ShorterThanItsDataIsTooShortWithoutLocation) {
  for (const unsigned long dataLength : {0U, 1U, 8U, 68U, 128U}) {
    const Bytes message = dumpMessage("00 00 00", pattern(dataLength));
    for (unsigned long length = 0; length < dataLength + 10; ++length) {
      const auto exact = exactly(message, length);
      ASSERT_FALSE(Utility::isCorrectCheckSum(exact.get(), length));
      ASSERT_EQ(trace.take(), kTooShort) << length;
    }
  }
}

TEST_F(UtilitiesTest, EndingWhereTheCheckSumShouldStandIsWrongWithoutReadingOn) {
  for (const unsigned long dataLength : {0U, 8U, 128U}) {
    const Bytes message = dumpMessage("00 00 00", pattern(dataLength));
    const auto exact = exactly(message, dataLength + 10);
    EXPECT_FALSE(Utility::isCorrectCheckSum(exact.get(), dataLength + 10));
    EXPECT_EQ(trace.take(), wrongLength(dataLength + 10));
  }
}

TEST_F(UtilitiesTest, WithoutItsF7OrWithBytesAfterItOnlyACheckSumOf0Passes) {
  for (const unsigned long dataLength : {0U, 8U}) {
    for (const unsigned long length : {dataLength + 11, dataLength + 13, dataLength + 14, dataLength + 40}) {
      for (unsigned checkSum = 0; checkSum < 256; ++checkSum) {
        Bytes message = dumpMessage("00 00 00", pattern(dataLength));
        message[dataLength + 10] = std::uint8_t(checkSum);
        const auto exact = exactly(message, length);
        ASSERT_EQ(Utility::isCorrectCheckSum(exact.get(), length), checkSum == 0);
        ASSERT_EQ(trace.take(), wrongLength(length));
      }
    }
  }
}

TEST_F(UtilitiesTest, OneCheckSumOf256IsRight) {
  const Bytes good = dumpMessage("00 40 00", pattern(8));
  for (unsigned checkSum = 0; checkSum < 256; ++checkSum) {
    Bytes message = good;
    message[18] = std::uint8_t(checkSum);
    EXPECT_EQ(isCorrect(message), checkSum == good[18]) << checkSum;
  }
}

TEST_F(UtilitiesTest, EveryTurnedBitOfAddressAndDataIsSeen) {
  const Bytes good = dumpMessage("00 00 00", pattern(68));
  for (std::size_t at = 7; at < good.size() - 1; ++at) {
    for (int bit = 0; bit < 7; ++bit) {
      Bytes message = good;
      message[at] = std::uint8_t(message[at] ^ (1 << bit));
      ASSERT_FALSE(isCorrect(message)) << "byte " << at << " bit " << bit;
    }
  }
}

TEST_F(UtilitiesTest, TheFinalF7IsNotTested) {
  Bytes message = dumpMessage("00 40 00", pattern(8));
  message.back() = 0x12;
  EXPECT_TRUE(isCorrect(message));
}

class DeviceNumberTest : public UtilitiesTest {
 protected:
  Calls record;
  FakeJobTools tools{record};
};

TEST_F(DeviceNumberTest, DevicesAreSentAsTheyAreAllAndOffAs0) {
  for (int setting = 0; setting <= 17; ++setting) {
    tools.system.utility[51] = std::uint16_t(setting);
    unsigned char nibble = 0xEE;
    EXPECT_EQ(Utility::getDeviceNumber(tools, &nibble), setting);
    EXPECT_EQ(nibble, setting < 16 ? setting : 0) << setting;
  }
}

TEST_F(DeviceNumberTest, SettingsAbove17ArePassedOnUnmasked) {
  for (const int setting : {18, 0x25, 255}) {
    tools.system.utility[51] = std::uint16_t(setting);
    unsigned char nibble = 0xEE;
    EXPECT_EQ(Utility::getDeviceNumber(tools, &nibble), setting);
    EXPECT_EQ(nibble, setting);
  }
}

TEST_F(DeviceNumberTest, NeedsNoPlaceForTheNibble) {
  tools.system.utility[51] = 5;
  EXPECT_EQ(Utility::getDeviceNumber(tools, nullptr), 5);
}

TEST_F(DeviceNumberTest, WithoutSystemModelOrUtilityGroupItIsOff) {
  for (const char* missing : {"system", "system.utility"}) {
    record.heal();
    record.fail(missing);
    unsigned char nibble = 0xEE;
    EXPECT_EQ(Utility::getDeviceNumber(tools, &nibble), CMA::DeviceNumber_Off) << missing;
    EXPECT_EQ(nibble, 0) << missing;
  }
}

TEST_F(DeviceNumberTest, ARefusedReadCountsAs0) {
  tools.system.utility[51] = 7;
  record.fail("get");
  unsigned char nibble = 0xEE;
  EXPECT_EQ(Utility::getDeviceNumber(tools, &nibble), 0);
  EXPECT_EQ(nibble, 0);
}

TEST_F(DeviceNumberTest, ReadsParameter51OfTheUtilityGroupOnce) {
  record.recordsReads = true;
  Utility::getDeviceNumber(tools, nullptr);
  EXPECT_THAT(record.take(), ElementsAre("system", "system.utility", "get(system.utility, 51)"));
}

}  // namespace
