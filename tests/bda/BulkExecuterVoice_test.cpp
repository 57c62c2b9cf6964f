#include "BulkExecuterVoice.h"

#include "ParameterBlockFixture.h"

// What is special to single blocks of voices; ParameterBlocks_test.cpp has what all blocks have in common.

namespace BDA {
namespace {

using Testing::FakeVoice;

class VoiceTest : public ParameterBlockFixture {
 protected:
  FakeVoice& temporaryVoice() { return *tools.temporaryVoice(number); }
  Testing::FakeGroup& extraOfPart0() { return tools.temporaryMulti->parts[0]->extra; }
};

TEST_F(VoiceTest, A79ByteCommonBlockOfANormalVoiceIsRefused) {
  serve(61, false);
  Bytes data(79, 1);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  EXPECT_EQ(reports(), Lines{"BulkExecuterVoice.cpp [BDA::BulkExecuterVoiceCommon::execBulkBlock] Wrong data length. "
                             "(Voice Common): Correct = [50], Data = [4f]\n"});
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(VoiceTest, TheUnusedBytesOfACommonDumpAre0) {
  for (const unsigned type : {61U, 72U})
    for (const bool isLive : {false, true}) {
      serve(type, isLive);
      for (auto& [path, group] : models.groups)
        for (unsigned index = 0; index < 256; ++index) (*group)[index] = 0xFFFF;
      const Bytes data = dump();
      for (const unsigned byte : {20U, 21U, 22U, 23U, 26U, 27U, 28U, 29U, 39U, 47U, 55U, 60U, 61U, 62U})
        EXPECT_EQ(data[byte], 0) << byte;
      EXPECT_EQ(data[24], 0xFF);
    }
}

TEST_F(VoiceTest, Byte30IsTwoNibbles) {
  serve(61, false);
  Bytes data(80, 0);
  data[30] = 0x5A;
  receive(data);
  EXPECT_EQ(temporaryVoice().common[4], 0x0A);
  EXPECT_EQ(temporaryVoice().common[3], 0x05);
}

TEST_F(VoiceTest, TheEditBufferIsReadFromTheLiveVoiceAndMulti) {
  serve(61, true);
  tools.liveVoice(number).common[0] = 11;
  temporaryVoice().common[0] = 22;
  tools.liveMulti().parts[0]->extra[1] = 33;
  extraOfPart0()[1] = 44;
  const Bytes live = dump();
  EXPECT_EQ(live[24], 11);
  EXPECT_EQ(live[46], 33);
  served->setLoadSkipped(0);
  const Bytes loaded = dump();
  EXPECT_EQ(loaded[24], 22);
  EXPECT_EQ(loaded[46], 44);
}

TEST_F(VoiceTest, ReceivingWritesToTheLiveModelsWhenTheFlagSaysSo) {
  serve(61, true);
  receive(pattern());
  EXPECT_EQ(tools.liveVoice(number).common[0], pattern()[24]);
  EXPECT_EQ(temporaryVoice().common[0], 0);
}

TEST_F(VoiceTest, ACommonBlockOfAnotherTypeEndsWithByte63) {
  for (const unsigned type : {0U, 60U, 62U, 73U, 999U})
    for (const unsigned from : {61U, 72U}) {
      serve(from, false);
      served->setBlockInfo(Address(0x40, 0, 0), type, 0);
      const Bytes data = pattern();
      const Lines told = receive(data);
      Lines expected = expectedCalls(data);
      while (expected.back().find("voice.common, 23,") == std::string::npos) expected.pop_back();
      EXPECT_EQ(told, expected) << type;
      fillModels();
      Bytes dumped = expectedDump();
      std::fill(dumped.begin() + 64, dumped.end(), std::uint8_t{0});
      EXPECT_EQ(dump(), dumped) << type;
    }
}

TEST_F(VoiceTest, ADrumVoiceKeepsTheParametersThatItsCommonBlockDoesNotCarry) {
  serve(72, false);
  for (unsigned index = 0; index < 256; ++index) temporaryVoice().common[index] = 0x55;
  receive(Bytes(72, 0x11));
  for (const unsigned index : {2U, 21U, 22U, 24U, 25U, 26U, 27U, 30U, 31U, 32U, 33U, 34U, 39U})
    EXPECT_EQ(temporaryVoice().common[index], 0x55) << index;
  for (const unsigned index : {28U, 29U, 35U, 36U, 37U, 38U}) EXPECT_EQ(temporaryVoice().common[index], 0x11) << index;
}

TEST_F(VoiceTest, ANameIsCutAtItsFirstZeroAndPaddedWithZeros) {
  serve(61, false);
  Bytes data(80, 0);
  const std::string text = "Grand";
  std::copy(text.begin(), text.end(), data.begin());
  data[6] = 'x';  // after the zero
  receive(data);
  EXPECT_EQ(temporaryVoice().name.text, "Grand");
  const Bytes back = dump();
  EXPECT_EQ(std::string(back.begin(), back.begin() + 20), text + std::string(15, '\0'));
}

TEST_F(VoiceTest, ANameOf20CharactersTravelsWholeAndALongerOneIsCut) {
  serve(61, false);
  const std::string text = "12345678901234567890";
  Bytes data(80, 0);
  std::copy(text.begin(), text.end(), data.begin());
  receive(data);
  EXPECT_EQ(temporaryVoice().name.text, text);
  temporaryVoice().name.text = text + "12345";
  const Bytes back = dump();
  EXPECT_EQ(std::string(back.begin(), back.begin() + 20), text);
  EXPECT_EQ(back[20], 0);
}

TEST_F(VoiceTest, ThePairsOfPart0AreSetBeforeItsSingleBytes) {
  serve(61, false);
  std::vector<std::string> order;
  for (const std::string& call : receive(pattern()))
    if (call.find("multi.part[0].extra") != std::string::npos) order.push_back(call.substr(call.find(", ") + 2, 1));
  EXPECT_EQ(order, (std::vector<std::string>{"0", "2", "5", "1", "3", "4", "6"}));
}

TEST_F(VoiceTest, AnInsertionBlockOfAnyOtherTypeConvertsNothingAndSucceeds) {
  for (unsigned type = 0; type <= 130; ++type) {
    if (type == 64 || type == 65 || type == 75 || type == 76) continue;
    for (const unsigned from : {64U, 65U, 75U, 76U})
      for (const std::uint8_t isReceive : {kReceive, kDump}) {
        serve(from, false);
        served->setBlockInfo(Address(0x40, 3, 0), type, 0);
        fillModels();
        Bytes data(36, 0x55);
        ASSERT_EQ(exec(data, isReceive), 0u);
        ASSERT_EQ(data, Bytes(36, 0x55));
        ASSERT_EQ(reports(), Lines{ParameterBlocks::report(*kind, "Ins Block Error !\n")});
        ASSERT_EQ(calls(), Lines{});
      }
  }
}

TEST_F(VoiceTest, AnInsertionBlockLooksAtModelAndLengthBeforeItsType) {
  serve(64, false);
  served->setBlockInfo(Address(0x40, 3, 0), 99, 0);
  Bytes data(35, 1);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  EXPECT_EQ(reports(), Lines{ParameterBlocks::wrongLength(*kind, 35)});
  record.fail("temporary.voice");
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
}

TEST_F(VoiceTest, TheInsertionIsChosenByTypeNotByExecuter) {
  for (const unsigned from : {64U, 65U, 75U, 76U})
    for (const unsigned type : {64U, 65U, 75U, 76U}) {
      serve(from, false);
      served->setBlockInfo(Address(0x40, 3, 0), type, 0);
      const std::string effect = type == 64 || type == 75 ? "insertionA" : "insertionB";
      EXPECT_EQ(receive(Bytes(36, 7))[0], "set16(temporary.voice." + effect + ", 0, 7, flag 1)");
    }
}

TEST_F(VoiceTest, OnlyANormalVoiceHasControllersBeyondTheSixRows) {
  serve(67, false);
  served->setBlockInfo(Address(0x40, 6, 0), 78, 0);  // no normal voice's type, though as long as one
  fillModels();
  Lines expected = expectedCalls(pattern());
  expected.resize(18);
  EXPECT_EQ(receive(pattern()), expected);
  const Bytes back = dump();
  EXPECT_EQ(Bytes(back.begin() + 24, back.end()), Bytes(36, 0));
}

TEST_F(VoiceTest, ABlockThatIsTooShortForItsTypeIsRefused) {
  serve(78, false);                                  // 24 bytes
  served->setBlockInfo(Address(0x46, 8, 0), 67, 0);  // of which a normal voice's block has 60
  Bytes data(24, 1);
  data.shrink_to_fit();
  for (const std::uint8_t isReceive : {kReceive, kDump}) EXPECT_EQ(exec(data, isReceive), 0x88000000u);
  serve(72, false);                                  // 72 bytes
  served->setBlockInfo(Address(0x46, 0, 0), 61, 0);  // of which a normal voice's block has 80
  data = Bytes(72, 1);
  data.shrink_to_fit();
  for (const std::uint8_t isReceive : {kReceive, kDump}) EXPECT_EQ(exec(data, isReceive), 0x88000000u);
  EXPECT_EQ(data, Bytes(72, 1));
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(VoiceTest, TheArpeggioEntryIsTheOneThatTheModelNamesAtEachBlock) {
  for (const std::uint32_t entry : {0U, 3U, 7U}) {
    serve(68, false);
    temporaryVoice().arpeggioEntryIndex = entry;  // it has no other
    const Bytes data = pattern();
    EXPECT_EQ(receive(data), expectedCalls(data));
    EXPECT_EQ(dump(), ParameterBlocks::canonical(steps, data));
  }
}

TEST_F(VoiceTest, CorrectionIsSuspendedAroundTheConversionInBothDirections) {
  for (const unsigned type : {69U, 70U})
    for (const bool isLive : {false, true}) {
      serve(type, isLive, 4);
      recordReads();
      const std::string element = models.realPath("voice.element[4]");
      for (const std::uint8_t isReceive : {kReceive, kDump}) {
        Bytes data(kind->length, 1);
        calls();
        EXPECT_EQ(exec(data, isReceive), 0u);
        Lines told = calls();
        // The getters of nodes and groups come before it; every parameter is read or set inside.
        const std::string open = "changeCorrectType(" + element + ", false)";
        const auto begin = std::find(told.begin(), told.end(), open);
        ASSERT_NE(begin, told.end());
        EXPECT_EQ(told.back(), "changeCorrectType(" + element + ", true)");
        for (auto call = told.begin(); call != told.end(); ++call) {
          const bool isParameter = call->starts_with("set") || call->starts_with("get");
          EXPECT_EQ(isParameter, call > begin && call < told.end() - 1) << *call;
        }
      }
    }
}

TEST_F(VoiceTest, CorrectionIsNotTouchedWhenTheBlockIsRefused) {
  for (const unsigned type : {69U, 70U})
    for (const std::uint8_t isReceive : {kReceive, kDump}) {
      serve(type, false, 1);
      Bytes data(kind->length - 1, 1);
      EXPECT_EQ(exec(data, isReceive), 0x88000000u);
      record.fail("temporary.voice.element[1].params");
      data.resize(kind->length);
      EXPECT_EQ(exec(data, isReceive), 0x80000000u);
      record.heal();
      EXPECT_EQ(reports().size(), 2u);
      EXPECT_EQ(calls(), Lines{});
    }
}

// An element that lacks its exceptional parameter.
struct PlainElement : FakeVoice::Element {
  using Element::Element;
  ExceptionalParam8* getExceptionalParam() override { return nullptr; }
};

TEST_F(VoiceTest, AnElementWhoseCorrectionCannotBeSuspendedIsMissing) {
  for (const unsigned type : {69U, 70U}) {
    serve(type, false, 1);
    temporaryVoice().elements[1] = std::make_unique<PlainElement>(record, "temporary.voice.element[1]");
    for (const std::uint8_t isReceive : {kReceive, kDump}) {
      Bytes data(kind->length, 1);
      EXPECT_EQ(exec(data, isReceive), 0x80000000u);
      EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
      EXPECT_EQ(calls(), Lines{});
    }
  }
}

TEST_F(VoiceTest, ADrumVoiceHasNoElementsAndANormalVoiceNoKeys) {
  for (const unsigned type : {69U, 70U, 80U}) {
    serve(type, false, 0);
    tools.openTemporaryVoice(number, type == 80);
    Bytes data(kind->length, 1);
    EXPECT_EQ(exec(data, kReceive), 0x80000000u);
    EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(VoiceTest, TheOtherHalvesOfANodeAreNeededToo) {
  serve(69, false, 0);
  record.fail("temporary.voice.element[0].wave");
  Bytes data(88, 1);
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
  record.heal();
  serve(70, false, 0);  // the filter has no wave
  record.fail("temporary.voice.element[0].wave");
  data.resize(74);
  EXPECT_EQ(exec(data, kReceive), 0u);
}

TEST_F(VoiceTest, DrumKeysAreConvertedWithoutSuspendingCorrections) {
  serve(80, false, 72);
  const Bytes data = pattern();
  for (const std::string& call : receive(data)) EXPECT_TRUE(call.starts_with("set")) << call;
}

TEST_F(VoiceTest, ASwitchIsDumpedOnlyForAParameterOfExactly1) {
  serve(69, false, 3);
  for (const auto& [value, byte] : {std::pair{0, 0}, {1, 0x04}, {2, 0}, {127, 0}, {255, 0}}) {
    temporaryVoice().elements[3]->params[24] = std::uint16_t(value);
    EXPECT_EQ(dump()[19], byte) << value;
  }
}

}  // namespace
}  // namespace BDA
