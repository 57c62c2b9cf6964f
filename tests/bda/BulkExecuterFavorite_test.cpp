#include "BulkExecuterFavorite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "ExecuterFixture.h"

namespace BDA {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using Testing::pattern;

constexpr std::size_t kFirstUserBank = 70;  // bank 8: contents 2048 to 2175 of the recording editor

class Favorites : public ExecuterFixture {
 protected:
  struct Bank {
    std::size_t executer;
    const char* address;
    std::uint32_t first;
    std::uint32_t count;
  };
  static constexpr Bank kBanks[] = {
      {62, "71 00 00", 0, 128},       {63, "71 01 00", 256, 128},      {64, "71 02 00", 2 * 256, 128},
      {65, "71 03 00", 3 * 256, 128}, {66, "71 04 00", 4 * 256, 128},  {67, "71 05 00", 5 * 256, 128},
      {68, "71 06 00", 6 * 256, 128}, {69, "71 07 00", 7 * 256, 128},  {70, "71 0A 00", 8 * 256, 128},
      {71, "71 0B 00", 9 * 256, 128}, {72, "71 0C 00", 10 * 256, 128}, {74, "71 09 00", 13 * 256, 128},
      {75, "71 20 00", 11 * 256, 64}, {76, "71 28 00", 12 * 256, 32},  {77, "71 21 00", 14 * 256, 1},
  };

  BulkExecuter& bank(std::size_t number, std::string_view address = "71 0A 00") {
    return executer(number, address, 117);
  }
  // Flags that came, or that are asked for, in a buffer of exactly their size.
  static BDAErr exec(BulkExecuter& block, Bytes& data, std::uint8_t isReceive) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[data.size()]);
    std::copy(data.begin(), data.end(), exact.get());
    const BDAErr result = block.execBulkBlock(exact.get(), std::uint32_t(data.size()), isReceive);
    data.assign(exact.get(), exact.get() + data.size());
    return result;
  }
  static BDAErr receive(BulkExecuter& block, Bytes data) { return exec(block, data, 1); }
  static BDAErr dump(BulkExecuter& block, Bytes& data) { return exec(block, data, 0); }

  static Lines settings(std::uint32_t first, const Bytes& flags, std::size_t count) {
    Lines all;
    for (std::size_t i = 0; i < count; ++i)
      all.push_back("setContentFavoriteFlag(4, " + std::to_string(std::uint32_t(first + i)) + ", " +
                    std::to_string(flags[i]) + ", " + (i + 1 == flags.size() ? "true" : "false") + ")");
    return all;
  }
  static Lines readings(std::uint32_t first, std::size_t count) {
    Lines all;
    for (std::size_t i = 0; i < count; ++i)
      all.push_back("getContentInformation(4, " + std::to_string(std::uint32_t(first + i)) + ")");
    return all;
  }
  static std::string reportIn(const char* function, const std::string& message) {
    return std::string("BulkExecuterFavorite.cpp [BDA::BulkExecuterFavorite::") + function + "] " + message;
  }
  static std::string failed(const char* function, const char* call, long result, const char* number) {
    return reportIn(function, std::string("error : contWork->") + call + "() ! [ ContSrvResult = " +
                                  std::to_string(result) + ", contType = 4, contNum = 0x" + number + " ]\n");
  }
};

TEST_F(Favorites, EveryBankSetsTheFlagsOfItsVoicesTheLastAsTheLast) {
  for (const Bank& row : kBanks) {
    Bytes flags = pattern(row.count);
    flags[0] = 0xFF;  // kept as it comes
    EXPECT_EQ(receive(bank(row.executer, row.address), flags), 0x400u) << row.address;
    EXPECT_EQ(calls(), settings(row.first, flags, row.count)) << row.address;
    for (std::uint32_t i = 0; i < row.count; ++i)
      EXPECT_EQ((work.favourites[{4, row.first + i}]), flags[i]) << row.address << " " << i;
  }
}

TEST_F(Favorites, EveryBankGivesTheFlagsOfItsVoicesStoredOrNot) {
  for (const Bank& row : kBanks) {
    Bytes expected(row.count);
    for (std::uint32_t i = 0; i < row.count; i += 3) {
      expected[i] = std::uint8_t(i + 1);
      work.favourites[{4, row.first + i}] = expected[i];
      if (i % 2 == 0) work.contents[{4, row.first + i}] = {"Stored", {}};
    }
    Bytes data(row.count);
    EXPECT_EQ(dump(bank(row.executer, row.address), data), 0x400u) << row.address;
    EXPECT_EQ(data, expected) << row.address;
    EXPECT_EQ(calls(), readings(row.first, row.count)) << row.address;
  }
}

TEST_F(Favorites, AFlagOfOneContentDoesNotCarryOverToTheNext) {
  work.favourites[{4, 2048}] = 1;
  Bytes data(128, 0xEE);
  EXPECT_EQ(dump(bank(kFirstUserBank), data), 0x400u);
  Bytes expected(128);
  expected[0] = 1;
  EXPECT_EQ(data, expected);
  calls();
}

TEST_F(Favorites, ADumpIsOneMessageOfTheBank) {
  work.favourites[{4, 2048 + 127}] = 1;
  std::vector<Bytes> messages;
  EXPECT_EQ(bank(kFirstUserBank).getBulkDumpMessage(messages), 0u);
  Bytes expected(128);
  expected[127] = 1;
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage("71 0A 00", expected)});
  calls();
}

TEST_F(Favorites, EveryOtherLengthIsRefusedFirst) {
  for (const Bank& row : {kBanks[0], kBanks[12], kBanks[13], kBanks[14]}) {
    for (std::uint32_t length = 0; length <= row.count + 13; ++length) {
      if (length == row.count) continue;
      char text[100];
      std::snprintf(text, sizeof text, "error : invalid length. ( Favorite ): Correct = [0x%02x], Data = [0x%02x]\n",
                    row.count, length);
      // The range is not looked at before.
      for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{2}}) {
        Bytes data(length);
        ASSERT_EQ(exec(bank(row.executer, "71 00 7F"), data, direction), 0x88000000u);
        ASSERT_EQ(reports(), Lines{reportIn("execBulkBlock", text)});
      }
    }
  }
  EXPECT_THAT(calls(), IsEmpty());
}

// Only the first number is compared with the range.
TEST_F(Favorites, TheLastNumberOfTheRangeMayBeginAndItsFlagsRunPastTheEnd) {
  const Bytes flags = pattern(128);
  EXPECT_EQ(receive(bank(kFirstUserBank, "71 0A 7F"), flags), 0x400u);
  EXPECT_EQ(calls(), settings(2048 + 127, flags, 128));
  Bytes data(128);
  EXPECT_EQ(dump(bank(kFirstUserBank, "71 0A 7F"), data), 0x400u);
  EXPECT_EQ(data, flags);
  EXPECT_EQ(calls(), readings(2048 + 127, 128));
}

TEST_F(Favorites, TheEndOfTheRangeAndAllBeyondItAreRefused) {
  for (unsigned lo = 0; lo < 256; ++lo) {
    const std::string address = "71 28 " + Testing::textOf({std::uint8_t(lo)});
    Bytes data(32, 0xEE);
    const BDAErr received = exec(bank(76, address), data, 1);
    const Lines receiving = reports();
    const BDAErr dumped = exec(bank(76, address), data, 0);
    if (lo < 32) {
      EXPECT_EQ(received, 0x400u) << lo;
      EXPECT_EQ(dumped, 0x400u) << lo;
      EXPECT_THAT(receiving, IsEmpty());
    } else {
      EXPECT_EQ(received, 0x80000000u) << lo;
      EXPECT_EQ(dumped, 0x80000000u) << lo;
      EXPECT_EQ(receiving, Lines{reportIn("execBulkBlockForBulkDump",
                                          "error : invalid lo address ! [ lo = " + std::to_string(lo) + " ]\n")});
      EXPECT_EQ(reports(), Lines{reportIn("execBulkBlockForBulkReq",
                                          "error : wrong lo address ! [ lo = " + std::to_string(lo) + " ]\n")});
      EXPECT_THAT(data, Each(0xEE));
    }
    EXPECT_EQ(calls().empty(), lo >= 32) << lo;
  }
}

TEST_F(Favorites, Number73HasARangeThatNothingIsIn) {
  Bytes data(128);
  EXPECT_EQ(receive(bank(73, "71 0D 05"), data), 0x80000000u);
  EXPECT_EQ(reports(), Lines{reportIn("execBulkBlockForBulkDump", "error : invalid lo address ! [ lo = 5 ]\n")});
  EXPECT_EQ(dump(bank(73, "71 0D 05"), data), 0x80000000u);
  EXPECT_EQ(reports(), Lines{reportIn("execBulkBlockForBulkReq", "error : wrong lo address ! [ lo = 5 ]\n")});
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Favorites, NumbersWrapAfterThirtyTwoBits) {
  BulkExecuterFavorite last(nullptr, &tools, nullptr, nullptr, 3, &work, 4, 0xFFFFFFFE, 0xFFFFFFFF);
  EXPECT_EQ(receive(last, {1, 2, 3}), 0x400u);
  EXPECT_EQ(calls(),
            (Lines{"setContentFavoriteFlag(4, 4294967294, 1, false)", "setContentFavoriteFlag(4, 4294967295, 2, false)",
                   "setContentFavoriteFlag(4, 0, 3, true)"}));
  last.setBlockInfo(Address(0x71, 0x00, 0x02), 0, 0);
  EXPECT_EQ(receive(last, {1, 2, 3}), 0x400u) << "the first number has wrapped to 0, which is below the end";
  EXPECT_EQ(calls(), settings(0, {1, 2, 3}, 3));
}

TEST_F(Favorites, AFlagThatCannotBeSetStopsTheBlock) {
  const Bytes flags = pattern(128);
  for (unsigned nth = 1; nth <= 128; ++nth) {
    for (long result = 1; result <= 5; ++result) {
      record.heal();
      record.answer("setContentFavoriteFlag", result, nth);
      const bool isGood = result == ContSrv::ContRes_DoNothing;
      char number[9];
      std::snprintf(number, sizeof number, "%x", 2048 + nth - 1);
      ASSERT_EQ(receive(bank(kFirstUserBank), flags), isGood ? 0x400u : 0x80000400u) << nth << " " << result;
      ASSERT_EQ(reports(),
                isGood ? Lines{} : Lines{failed("execBulkBlockForBulkDump", "setContentFavoriteFlag", result, number)});
      ASSERT_EQ(calls(), settings(2048, flags, isGood ? 128 : nth));
      record.heal();
      ASSERT_EQ(receive(bank(kFirstUserBank), flags), 0x400u);
      ASSERT_EQ(calls(), settings(2048, flags, 128));
    }
  }
}

TEST_F(Favorites, AFlagThatCannotBeReadStopsTheBlockAndThoseBeforeItStay) {
  for (std::uint32_t i = 0; i < 128; ++i) work.favourites[{4, 2048 + i}] = std::uint8_t(i + 1);
  for (unsigned nth = 1; nth <= 128; ++nth) {
    for (long result = 1; result <= 5; ++result) {
      record.heal();
      record.answer("getContentInformation", result, nth);
      const bool isGood = result == ContSrv::ContRes_EmptyContent;
      char number[9];
      std::snprintf(number, sizeof number, "%x", 2048 + nth - 1);
      Bytes data(128);
      ASSERT_EQ(dump(bank(kFirstUserBank), data), isGood ? 0x400u : 0x80000400u) << nth << " " << result;
      ASSERT_EQ(reports(),
                isGood ? Lines{} : Lines{failed("execBulkBlockForBulkReq", "getContentInformation", result, number)});
      ASSERT_EQ(calls(), readings(2048, isGood ? 128 : nth));
      for (unsigned i = 0; i < 128; ++i) ASSERT_EQ(data[i], isGood || i + 1 < nth ? i + 1 : 0) << i;
    }
  }
  record.heal();
  Bytes data(128);
  EXPECT_EQ(dump(bank(kFirstUserBank), data), 0x400u);
  EXPECT_EQ(data[127], 128);
  calls();
}

TEST_F(Favorites, ADumpThatCannotBeReadIsNoMessage) {
  record.fail("getContentInformation", 7);
  std::vector<Bytes> messages;
  EXPECT_EQ(bank(kFirstUserBank).getBulkDumpMessage(messages), 0x80000400u);
  EXPECT_EQ(messages, std::vector<Bytes>{{}});
  EXPECT_EQ(reports(),
            (Lines{failed("execBulkBlockForBulkReq", "getContentInformation", 3, "806"),
                   "BulkExecuter.cpp [BDA::BulkExecuter::getBulkDumpMessageImplement] Bulk create Error !!!\n"}));
  calls();
}

TEST_F(Favorites, OtherDirectionsDoNothing) {
  for (unsigned direction = 2; direction < 256; ++direction) {
    Bytes data(128, 0xEE);
    EXPECT_EQ(exec(bank(kFirstUserBank, "71 0A 7F"), data, std::uint8_t(direction)), 0u);
    EXPECT_EQ(exec(bank(73), data, std::uint8_t(direction)), 0u) << "the range is not looked at";
    EXPECT_THAT(data, Each(0xEE));
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Favorites, ReceivedFlagsAreNotWrittenTo) {
  Bytes data = pattern(128);
  EXPECT_EQ(exec(bank(kFirstUserBank), data, 1), 0x400u);
  EXPECT_EQ(data, pattern(128));
  calls();
}

TEST_F(Favorites, NoBytesAreAWrongLength) {
  for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}})
    EXPECT_EQ(bank(kFirstUserBank).execBulkBlock(nullptr, 128, direction), 0x88000000u);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Favorites, WithoutAStoreNothingSucceeds) {
  BulkExecuterFavorite poor(nullptr, &tools, nullptr, nullptr, 4, nullptr, 4, 0, 4);
  Bytes data(4);
  EXPECT_EQ(receive(poor, data), 0x80000000u);
  EXPECT_EQ(dump(poor, data), 0x80000000u);
}

}  // namespace
}  // namespace BDA
