#include "BulkExecuterEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "ExecuterFixture.h"

namespace BDA {
namespace {

using Testing::dumpMessage;
using ::testing::Each;
using ::testing::IsEmpty;
using Testing::pattern;

// Tables of names ---------------------------------------------------------------------------------------------------

struct NameTable {
  std::size_t executer;
  const char* address;
  const char* className;
  const char* wrongLength;
  const char* requestOnly;
  std::uint32_t slots;
  std::uint32_t slotSize;
};
constexpr NameTable kWave{57,
                          "70 20 02",
                          "WaveName",
                          "Wrong data length. (Editor Wave Name): Correct = [%02x], Data = [%02x]\n",
                          "Editor wave bulk is request only !!!\n",
                          16,
                          28};
constexpr NameTable kArp{58,
                         "70 10 02",
                         "ArpName",
                         "Wrong data length. (Editor Arp Name): Correct = [%02x], Data = [%02x]\n",
                         "Editor arp bulk is request only !!!\n",
                         16,
                         28};
constexpr NameTable kMulti{59,
                           "70 30 00",
                           "MultiName",
                           "Wrong data length. (Editor Multi Name): Correct = [%02x], Data = [%02x]\n",
                           "error : multi name bulk is request only !\n",
                           128,
                           20};

class EditorNames : public ExecuterFixture {
 protected:
  void SetUp() override {
    tools.manager = &manager;
    manager.work = &work;
    ExecuterFixture::SetUp();
  }

  BulkExecuter& block(const NameTable& table) { return executer(table.executer, table.address, 49); }
  static Bytes zeros(const NameTable& table) { return Bytes(table.slots * table.slotSize); }
  // In a buffer of exactly the data's size.
  static BDAErr exec(BulkExecuter& executer, Bytes& data, std::uint8_t isReceive) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[data.size()]);
    std::copy(data.begin(), data.end(), exact.get());
    const BDAErr result = executer.execBulkBlock(exact.get(), std::uint32_t(data.size()), isReceive);
    data.assign(exact.get(), exact.get() + data.size());
    return result;
  }
  static void put(Bytes& data, const NameTable& table, std::uint32_t slot, const std::string& name) {
    std::copy(name.begin(), name.end(), data.begin() + std::ptrdiff_t(slot * table.slotSize));
  }
  static std::string report(const NameTable& table, const std::string& message) {
    return std::string("BulkExecuterEditor.cpp [BDA::BulkExecuterEditor") + table.className + "::execBulkBlock] " +
           message;
  }
  // What is asked for `count` slots, the first of them for number `first`.
  static Lines asked(const char* call, unsigned first, unsigned count) {
    Lines all;
    for (unsigned i = 0; i < count; ++i) all.push_back(std::string(call) + "(" + std::to_string(first + i) + ", 1)");
    return all;
  }
  static Lines askedOfStore(unsigned count) {
    Lines all;
    for (unsigned i = 0; i < count; ++i) all.push_back("getContentName(1, " + std::to_string(i) + ")");
    return all;
  }
  // Slot `slot` has this name, the others what they had.
  void nameOnce(const char* call, unsigned slot, const std::string& name) {
    const std::string before = tools.contentName;
    record.during(call, [this, call, slot, name, before] {
      tools.contentName = record.uses().at(call) == slot + 1 ? name : before;
    });
  }

  Testing::FakeEventPortManager manager{record};
};

TEST_F(EditorNames, WaveformsAreNumberedFromOne) {
  tools.contentName = "Piano";
  Bytes data = zeros(kWave);
  EXPECT_EQ(exec(block(kWave), data, 0), 0x400u);
  EXPECT_EQ(calls(), asked("waveformName", 33, 16));
  Bytes expected = zeros(kWave);
  for (std::uint32_t slot = 0; slot < 16; ++slot) put(expected, kWave, slot, "Piano");
  EXPECT_EQ(data, expected);
}

TEST_F(EditorNames, ArpeggiosAreNumberedFromZero) {
  tools.contentName = "Up";
  Bytes data = zeros(kArp);
  EXPECT_EQ(exec(block(kArp), data, 0), 0x400u);
  EXPECT_EQ(calls(), asked("arpeggioName", 32, 16));
  Bytes expected = zeros(kArp);
  for (std::uint32_t slot = 0; slot < 16; ++slot) put(expected, kArp, slot, "Up");
  EXPECT_EQ(data, expected);
}

TEST_F(EditorNames, EveryLowByteAsksForItsOwnSixteen) {
  for (unsigned lo = 0; lo < 256; ++lo) {
    const std::string low = Testing::textOf({std::uint8_t(lo)});
    Bytes data = zeros(kWave);
    EXPECT_EQ(exec(executer(57, "70 20 " + low, 49), data, 0), 0x400u);
    EXPECT_EQ(calls(), asked("waveformName", lo * 16 + 1, 16));
    EXPECT_EQ(exec(executer(58, "70 10 " + low, 49), data, 0), 0x400u);
    EXPECT_EQ(calls(), asked("arpeggioName", lo * 16, 16));
  }
}

TEST_F(EditorNames, MultiNamesAreThoseOfTheEventPortManagersStore) {
  work.contents[{1, 0}] = {"First", {}};
  work.contents[{1, 5}] = {std::string(20, 'x'), {}};
  work.contents[{1, 127}] = {"Last", {}};
  work.contents[{4, 6}] = {"A voice", {}};
  Bytes data(2560);
  EXPECT_EQ(exec(block(kMulti), data, 0), 0x400u);
  EXPECT_EQ(calls(), askedOfStore(128));
  Bytes expected(2560);
  put(expected, kMulti, 0, "First");
  put(expected, kMulti, 5, std::string(20, 'x'));
  put(expected, kMulti, 127, "Last");
  EXPECT_EQ(data, expected);
}

TEST_F(EditorNames, AnEmptyNameLeavesItsSlotAsItWas) {
  work.contents[{1, 3}] = {"Three", {}};
  Bytes data(2560, 0xEE);
  EXPECT_EQ(exec(block(kMulti), data, 0), 0x400u);
  Bytes expected(2560, 0xEE);
  put(expected, kMulti, 3, "Three");
  EXPECT_EQ(data, expected) << "neither terminated nor padded";
  calls();
  tools.contentName = "";
  for (const NameTable& table : {kWave, kArp}) {
    Bytes other(448, 0xEE);
    EXPECT_EQ(exec(block(table), other, 0), 0x400u);
    EXPECT_THAT(other, Each(0xEE));
  }
}

TEST_F(EditorNames, ANameDoesNotCarryOverToTheNextSlot) {
  work.contents[{1, 3}] = {"Three", {}};
  Bytes data(2560);
  EXPECT_EQ(exec(block(kMulti), data, 0), 0x400u);
  EXPECT_EQ(data[4 * 20], 0);
  calls();
}

TEST_F(EditorNames, ANameMayFillItsSlotAndItsBytesAreTakenAsTheyAre) {
  tools.contentName = std::string(28, '\xFF');
  for (const NameTable& table : {kWave, kArp}) {
    Bytes data = zeros(table);
    EXPECT_EQ(exec(block(table), data, 0), 0x400u);
    EXPECT_THAT(data, Each(0xFF));
  }
}

TEST_F(EditorNames, ANameOneCharacterTooLongStopsTheBlockAndThoseBeforeItStay) {
  struct Row {
    const NameTable& table;
    const char* call;
    const char* message;
  };
  // The same words for both, by contract.
  for (const Row& row : {Row{kWave, "waveformName", "WaveName is too long !!!\n"},
                         Row{kArp, "arpeggioName", "WaveName is too long !!!\n"}}) {
    for (std::uint32_t slot = 0; slot < 16; ++slot) {
      record.heal();
      tools.contentName = "ok";
      nameOnce(row.call, slot, std::string(29, 'x'));
      Bytes data = zeros(row.table);
      EXPECT_EQ(exec(block(row.table), data, 0), 0x80000000u);
      EXPECT_EQ(reports(), Lines{report(row.table, row.message)});
      EXPECT_EQ(calls().size(), slot + 1);
      Bytes expected = zeros(row.table);
      for (std::uint32_t i = 0; i < slot; ++i) put(expected, row.table, i, "ok");
      EXPECT_EQ(data, expected);
    }
  }
}

TEST_F(EditorNames, AMultiNameOneCharacterTooLongStopsTheBlock) {
  for (const std::size_t size : {21U, 300U}) {
    work.contents[{1, 2}] = {"Two", {}};
    work.contents[{1, 77}] = {std::string(size, 'x'), {}};
    Bytes data(2560);
    EXPECT_EQ(exec(block(kMulti), data, 0), 0x80000000u);
    EXPECT_EQ(reports(), Lines{report(kMulti, "error : too long multi name [size = " + std::to_string(size) + "]\n")});
    EXPECT_EQ(calls(), askedOfStore(78));
    Bytes expected(2560);
    put(expected, kMulti, 2, "Two");
    EXPECT_EQ(data, expected);
  }
}

TEST_F(EditorNames, ANameThatCannotBeHadStopsTheBlockWhateverTheResult) {
  struct Row {
    const NameTable& table;
    const char* call;
    const char* message;
  };
  for (const Row& row : {Row{kWave, "waveformName", "Wave Name getting error !!!\n"},
                         Row{kArp, "arpeggioName", "Arp Name getting error !!!\n"}}) {
    for (unsigned nth = 1; nth <= 16; ++nth) {
      for (long result = 1; result <= 7; ++result) {
        record.heal();
        tools.contentName = "ok";
        record.answer(row.call, result, nth);
        Bytes data = zeros(row.table);
        ASSERT_EQ(exec(block(row.table), data, 0), 0x80000000u);
        ASSERT_EQ(reports(), Lines{report(row.table, row.message)});
        ASSERT_EQ(calls().size(), nth);
        ASSERT_EQ(data[0], nth == 1 ? 0 : 'o');
        record.heal();
        ASSERT_EQ(exec(block(row.table), data, 0), 0x400u);
        ASSERT_EQ(calls().size(), 16u);
      }
    }
  }
}

TEST_F(EditorNames, AMultiNameMayBeEmptyOrNothingButNoOtherResult) {
  for (unsigned nth = 1; nth <= 128; ++nth) {
    for (long result = 1; result <= 5; ++result) {
      record.heal();
      record.answer("getContentName", result, nth);
      const bool isGood = result == ContSrv::ContRes_DoNothing || result == ContSrv::ContRes_EmptyContent;
      Bytes data(2560);
      ASSERT_EQ(exec(block(kMulti), data, 0), isGood ? 0x400u : 0x80000000u) << nth << " " << result;
      ASSERT_EQ(reports(),
                isGood
                    ? Lines{}
                    : Lines{report(kMulti, "error : can't get multi name [ret = " + std::to_string(result) + "]\n")});
      ASSERT_EQ(calls(), askedOfStore(isGood ? 128 : nth));
    }
  }
}

TEST_F(EditorNames, WithoutManagerOrStoreThereAreNoMultiNames) {
  const auto expectNone = [&] {
    Bytes data(2560);
    EXPECT_EQ(exec(block(kMulti), data, 0), 0x80000000u);
    EXPECT_EQ(reports(), Lines{report(kMulti, "error : can't get multi name [ret = -1]\n")});
    EXPECT_THAT(calls(), IsEmpty());
  };
  manager.work = nullptr;
  expectNone();
  tools.manager = nullptr;
  expectNone();
}

TEST_F(EditorNames, ReceivingIsRefusedWithoutAskingForAnything) {
  for (const NameTable& table : {kWave, kArp, kMulti}) {
    for (unsigned direction = 1; direction < 256; ++direction) {
      Bytes data(table.slots * table.slotSize, 0x55);
      EXPECT_EQ(exec(block(table), data, std::uint8_t(direction)), 0x80000000u);
      EXPECT_EQ(reports(), Lines{report(table, table.requestOnly)});
      EXPECT_THAT(data, Each(0x55));
    }
    EXPECT_EQ(block(table).setBulkDumpMessage(Bytes(table.slots * table.slotSize).data(), table.slots * table.slotSize),
              0x80000000u);
    EXPECT_EQ(reports(), Lines{report(table, table.requestOnly)});
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EditorNames, EveryOtherLengthIsRefusedFirst) {
  for (const NameTable& table : {kWave, kArp, kMulti}) {
    const std::uint32_t correct = table.slots * table.slotSize;
    for (std::uint32_t length = 0; length <= correct + 13; ++length) {
      if (length == correct) continue;
      char text[100];
      std::snprintf(text, sizeof text, table.wrongLength, correct, length);
      for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}}) {
        Bytes data(length);
        ASSERT_EQ(exec(block(table), data, direction), 0x88000000u) << length;
        ASSERT_EQ(reports(), Lines{report(table, text)}) << length;
      }
    }
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EditorNames, NoBytesAreAWrongLength) {
  for (const NameTable& table : {kWave, kArp, kMulti})
    EXPECT_EQ(block(table).execBulkBlock(nullptr, table.slots * table.slotSize, 0), 0x88000000u);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EditorNames, AnAnswerIsOneMessage) {
  tools.contentName = "Name";
  work.contents[{1, 0}] = {"Song", {}};
  for (const NameTable& table : {kWave, kArp, kMulti}) {
    Bytes expected = zeros(table);
    for (std::uint32_t slot = 0; slot < (table.slots == 128 ? 1 : 16); ++slot)
      put(expected, table, slot, table.slots == 128 ? "Song" : "Name");
    std::vector<Bytes> messages{{1}, {2}};
    EXPECT_EQ(block(table).getBulkDumpMessage(messages), 0u);
    EXPECT_EQ(messages, std::vector<Bytes>{dumpMessage(table.address, expected)}) << table.className;
  }
  calls();
}

TEST_F(EditorNames, AnAnswerThatFailsIsNoMessage) {
  record.fail("waveformName", 16);
  std::vector<Bytes> messages;
  EXPECT_EQ(block(kWave).getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{{}});
  EXPECT_EQ(reports(),
            (Lines{report(kWave, "Wave Name getting error !!!\n"),
                   "BulkExecuter.cpp [BDA::BulkExecuter::getBulkDumpMessageImplement] Bulk create Error !!!\n"}));
  calls();
}

// The screen --------------------------------------------------------------------------------------------------------

class ScreenCapture : public ExecuterFixture {
 protected:
  BulkExecuter& screen(std::string_view address = "51 00 00") { return executer(61, address, 48); }
  BDAErr capture(std::vector<Bytes>& messages) {
    messages = {{1}, {2}};
    return screen().getBulkDumpMessage(messages);
  }

  static Bytes start(std::size_t blocks) {
    return dumpMessage("51 00 00",
                       {std::uint8_t(blocks / 128), std::uint8_t(blocks % 128), 0x01, 0x20, 0x00, 0x40, 0x00});
  }
  static Bytes block(std::size_t number, const Bytes& image) {
    Bytes data{std::uint8_t(number / 128), std::uint8_t(number % 128)};
    for (std::size_t i = number * 1024; i < image.size() && i < (number + 1) * 1024; ++i) data.push_back(image[i]);
    return dumpMessage("51 00 01", data);
  }
};

TEST_F(ScreenCapture, AnEmptyImageIsAStartMessageOfNoBlocks) {
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D 00 7F 14 00 07 51 00 00 00 00 01 20 00 40 00 47 F7")});
  EXPECT_EQ(calls(), Lines{"screenImage"});
}

TEST_F(ScreenCapture, AnImageIsSentInBlocksOf1024Bytes) {
  struct Row {
    std::size_t size;
    std::size_t blocks;
    std::size_t last;
  };
  for (const Row& row : {Row{1, 1, 1}, Row{1023, 1, 1023}, Row{1024, 1, 1024}, Row{1025, 2, 1}, Row{2048, 2, 1024},
                         Row{10'239, 10, 1023}, Row{10'240, 10, 1024}, Row{10'241, 11, 1}}) {
    tools.screenImage = pattern(row.size);
    std::vector<Bytes> messages;
    EXPECT_EQ(capture(messages), 0u);
    ASSERT_EQ(messages.size(), row.blocks + 1) << row.size;
    EXPECT_EQ(messages[0], start(row.blocks)) << row.size;
    for (std::size_t number = 0; number < row.blocks; ++number)
      EXPECT_EQ(messages[number + 1], block(number, tools.screenImage)) << row.size << " " << number;
    EXPECT_EQ(messages.back().size(), row.last + 14) << row.size;
  }
  calls();
}

TEST_F(ScreenCapture, TwoBlocksOf1025BytesHaveByteCounts1026And3) {
  tools.screenImage = pattern(1025);
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_EQ(messages[1][5] * 128 + messages[1][6], 1026);
  EXPECT_EQ(messages[2][5] * 128 + messages[2][6], 3);
  calls();
}

TEST_F(ScreenCapture, AnImageThatCannotBeHadIsARefusalWithoutMessage) {
  tools.screenImage = pattern(1025);
  for (const std::uint32_t result : {0x80000000u, 0x82000000u, 1u, 8u, 0x400u}) {
    record.answer("screenImage", long(result));
    std::vector<Bytes> messages;
    EXPECT_EQ(capture(messages), 0x80000000u | result) << "whatever but 0 is a failure";
    EXPECT_THAT(messages, IsEmpty());
  }
  record.heal();
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  EXPECT_EQ(messages.size(), 3u);
  calls();
}

TEST_F(ScreenCapture, WithDeviceOffThereIsNoMessage) {
  setDevice(17);
  for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 10'240U}) {
    tools.screenImage = pattern(size);
    std::vector<Bytes> messages;
    EXPECT_EQ(capture(messages), 0x80000000u) << size;
    EXPECT_THAT(messages, IsEmpty()) << size;
  }
  calls();
}

TEST_F(ScreenCapture, WhenTheDeviceGoesOffOnTheWayWhatIsBuiltEndsThere) {
  tools.screenImage = pattern(3000);
  std::vector<Bytes> messages;
  record.heal();
  record.during("system.utility", [this] {
    if (record.uses().at("system.utility") == 3) setDevice(17);
  });
  EXPECT_EQ(capture(messages), 0x80000000u);
  EXPECT_EQ(messages, (std::vector<Bytes>{start(3), block(0, tools.screenImage)}));
  calls();
}

TEST_F(ScreenCapture, EveryMessageCarriesTheDeviceNumber) {
  setDevice(9);
  tools.screenImage = pattern(2000);
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  ASSERT_EQ(messages.size(), 3u);
  for (const Bytes& message : messages) EXPECT_EQ(message[2], 9);
  calls();
}

TEST_F(ScreenCapture, PixelsAreSentAsTheyAre) {
  tools.screenImage = bytesOf("FF 80 7F 00");
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[1], dumpMessage("51 00 01", bytesOf("00 00 FF 80 7F 00")));
  calls();
}

// Numbers have two times seven bits and no more.
TEST_F(ScreenCapture, NumbersOfBlocksAreCutToFourteenBits) {
  constexpr std::size_t kBlocks = 16'385;
  tools.screenImage.assign(kBlocks * 1024, 0x11);
  std::vector<Bytes> messages;
  EXPECT_EQ(capture(messages), 0u);
  ASSERT_EQ(messages.size(), kBlocks + 1);
  EXPECT_EQ(messages[0], start(kBlocks % 16'384));
  EXPECT_EQ(Bytes(messages[129].begin() + 10, messages[129].begin() + 12), bytesOf("01 00")) << "block 128";
  EXPECT_EQ(Bytes(messages[16'384].begin() + 10, messages[16'384].begin() + 12), bytesOf("7F 7F"));
  EXPECT_EQ(Bytes(messages[16'385].begin() + 10, messages[16'385].begin() + 12), bytesOf("00 00"));
  calls();
}

TEST_F(ScreenCapture, TheLowByteOfDataMessagesWraps) {
  tools.screenImage = pattern(1);
  std::vector<Bytes> messages;
  EXPECT_EQ(screen("51 00 FF").getBulkDumpMessage(messages), 0u);
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0][9], 0xFF);
  EXPECT_EQ(messages[1][9], 0x00);
  calls();
}

TEST_F(ScreenCapture, AnImageCannotBeReceived) {
  const Bytes data(10'240);
  EXPECT_EQ(screen().setBulkDumpMessage(data.data(), 10'240), 0x80000000u);
  EXPECT_THAT(calls(), IsEmpty());
}

}  // namespace
}  // namespace BDA
