#include "BulkExecuterMulti.h"

#include "ParameterBlockFixture.h"

// What is special to single blocks of multis; ParameterBlocks_test.cpp has what all blocks have in common.

namespace BDA {
namespace {

using Testing::FakeMulti;

// A part that corrects a voice selection to other values.
struct CorrectingPart : FakeMulti::Part {
  using Part::Part;
  bool correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb, std::uint8_t& bankSelectLsb,
                                   std::uint8_t& programNumber, bool bulk) override {
    const bool canPlay = Part::correctBankSelAndProgramNum(part, bankSelectMsb, bankSelectLsb, programNumber, bulk);
    bankSelectMsb = 0x3F;
    bankSelectLsb = 0x05;
    programNumber = 0x66;
    return canPlay;
  }
};

class MultiTest : public ParameterBlockFixture {
 protected:
  FakeMulti& multi() { return *tools.temporaryMulti; }
  std::vector<int> selectionOf(std::size_t part) {
    Testing::FakeGroup& group = multi().parts[part]->bankProgram;
    return {group[0], group[1], group[2]};
  }
  void select(std::size_t part, std::vector<int> values) {
    for (std::size_t i = 0; i < 3; ++i) multi().parts[part]->bankProgram[i] = std::uint16_t(values[i]);
  }
};

TEST_F(MultiTest, AVoiceSelectionIsSetAsCorrected) {
  serve(90, false, 4);
  multi().parts[4] = std::make_unique<CorrectingPart>(record, "temporary.multi.part[4]");
  const Lines told = receive(pattern());
  EXPECT_EQ(Lines(told.begin() + 1, told.begin() + 4),
            (Lines{"set(temporary.multi.part[4].bankProgram, 0, 63, flag 1)",
                   "set(temporary.multi.part[4].bankProgram, 1, 5, flag 1)",
                   "set(temporary.multi.part[4].bankProgram, 2, 102, flag 1)"}));
  EXPECT_EQ(selectionOf(4), (std::vector{0x3F, 0x05, 0x66}));
}

TEST_F(MultiTest, ARefusedVoiceSelectionLeavesThePartsOwnAndSetsEverythingElse) {
  for (const unsigned type : {90U, 102U}) {
    serve(type, false, 2);
    multi().parts[2] = std::make_unique<CorrectingPart>(record, "temporary.multi.part[2]");
    select(2, {7, 8, 9});
    record.fail("correctBankSelAndProgramNum");
    const Bytes data = pattern();
    Lines expected = expectedCalls(data);
    std::erase_if(expected, [](const std::string& call) { return call.find("bankProgram") != std::string::npos; });
    EXPECT_EQ(receive(data), expected);
    EXPECT_EQ(selectionOf(2), (std::vector{7, 8, 9}));
    record.heal();
  }
}

TEST_F(MultiTest, AVoiceSelectionIsDumpedWithoutCorrection) {
  serve(90, false, 15);
  multi().parts[15] = std::make_unique<CorrectingPart>(record, "temporary.multi.part[15]");
  select(15, {0x12, 0x34, 0x56});
  const Bytes data = dump();
  EXPECT_EQ(Bytes(data.begin(), data.begin() + 4), bytesOf("00 12 34 56"));
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(MultiTest, AVoiceSelectionIsNotCorrectedWhenTheBlockIsRefusedOrOfAnotherDirection) {
  for (const unsigned type : {90U, 102U}) {
    serve(type, false, 2);
    Bytes data(kind->length - 1, 1);
    EXPECT_EQ(exec(data, kReceive), 0x88000000u);
    reports();
    data.resize(kind->length);
    EXPECT_EQ(exec(data, 2), 0u);
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(MultiTest, ANibbleSplitParameterOf35ReadsBackAs03And35) {
  serve(90, false, 1);
  multi().parts[1]->main[13] = 0x35;
  const Bytes data = dump();
  EXPECT_EQ(data[16], 0x03);
  EXPECT_EQ(data[17], 0x35);
  Bytes other(62, 0);
  other[16] = 0x03;
  other[17] = 0x05;
  receive(other);
  EXPECT_EQ(multi().parts[1]->main[13], 0x35);
}

TEST_F(MultiTest, Mask10OfByte32CarriesNothing) {
  serve(90, false, 0);
  for (unsigned index = 0; index < 256; ++index) multi().parts[0]->main[index] = 1;
  const Bytes data = dump();
  EXPECT_EQ(data[31], 0x7C);
  EXPECT_EQ(data[32], 0x6F);
  EXPECT_EQ(data[33], 0x7F);
}

TEST_F(MultiTest, A79ByteCommonBlockChangesNothing) {
  serve(82, false);
  Bytes data(79, 1);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  EXPECT_EQ(reports(), Lines{"BulkExecuterMulti.cpp [BDA::BulkExecuterMultiCommon::execBulkBlock] Wrong data length. "
                             "(Multi Common): Correct = [50], Data = [4f]\n"});
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(MultiTest, InsertionSwitchesGoOffBetweenTheBytesAndTheSwitches) {
  for (const unsigned type : {82U, 94U}) {
    serve(type, false);
    const Lines told = receive(pattern());
    const auto off = std::find(told.begin(), told.end(), "insertionSwitchAllOff(temporary.multi)");
    ASSERT_NE(off, told.end());
    for (auto call = told.begin(); call != told.end(); ++call) {
      if (call == off) continue;
      const bool isSwitch =
          call->find(".main, 54,") != std::string::npos || call->find("adPart[0].params, 7,") != std::string::npos;
      EXPECT_EQ(isSwitch, call > off) << *call;
    }
  }
}

TEST_F(MultiTest, InsertionSwitchesStayWhenACommonBlockIsDumpedOrOfAnotherDirection) {
  for (const unsigned type : {82U, 94U})
    for (const unsigned direction : {0U, 2U, 255U}) {
      serve(type, false);
      Bytes data(kind->length, 0);
      EXPECT_EQ(exec(data, std::uint8_t(direction)), 0u);
      EXPECT_EQ(calls(), Lines{});
    }
}

TEST_F(MultiTest, EachSwitchOfACommonBlockIsThatOfItsPart) {
  const auto bytesWithOnly = [this](std::size_t part) {
    for (std::size_t i = 0; i < 16; ++i) multi().parts[i]->main[54] = i == part ? 1 : 0;
    multi().adPart->params[7] = part == 16 ? 1 : 0;
    const Bytes data = dump();
    return Bytes{data[77], data[78], data[79]};
  };
  serve(82, false);
  for (std::size_t part = 0; part < 7; ++part) EXPECT_EQ(bytesWithOnly(part), (Bytes{0, 0, std::uint8_t(1 << part)}));
  for (std::size_t part = 7; part < 14; ++part)
    EXPECT_EQ(bytesWithOnly(part), (Bytes{0, std::uint8_t(1 << (part - 7)), 0}));
  EXPECT_EQ(bytesWithOnly(14), (Bytes{0x01, 0, 0}));
  EXPECT_EQ(bytesWithOnly(15), (Bytes{0x02, 0, 0}));
  EXPECT_EQ(bytesWithOnly(16), (Bytes{0x20, 0, 0}));
}

TEST_F(MultiTest, ACommonBlockNeedsAllSixteenParts) {
  serve(82, false);
  multi().parts.pop_back();
  for (const std::uint8_t isReceive : {kReceive, kDump}) {
    Bytes data(80, 1);
    EXPECT_EQ(exec(data, isReceive), 0x80000000u);
    EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
    EXPECT_EQ(data, Bytes(80, 1));
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(MultiTest, APerformancesArpeggioLosesTheLowSevenBitsOfItsLastParameter) {
  serve(101, false);
  Testing::FakeGroup& common = tools.temporaryArpeggio->common;
  common[5] = 0xB3;
  EXPECT_EQ(dump()[12], 1);
  common[5] = 0x73;
  EXPECT_EQ(dump()[12], 0);
  // What follows the 13 bytes in a message, its checksum, is not read.
  const Bytes message = bytesOf("00 00 00 00 00 00 00 00 00 00 00 00 01 7F F7");
  EXPECT_EQ(served->setBulkDumpMessage(message.data(), 13), 0u);
  EXPECT_EQ(common[5], 0x80);
  Bytes data(15, 0x55);
  EXPECT_EQ(served->execBulkBlock(data.data(), 13, kDump), 0u);
  EXPECT_EQ(data[13], 0x55);
}

TEST_F(MultiTest, AnInsertionBlockOfAnyOtherTypeIsRefusedBeforeItsLength) {
  for (unsigned type = 0; type <= 130; ++type) {
    if (type == 85 || type == 86 || type == 97 || type == 98) continue;
    for (const unsigned from : {85U, 86U, 97U, 98U})
      for (const unsigned length : {35U, 36U}) {
        serve(from, false);
        served->setBlockInfo(Address(0x36, 3, 0), type, 0);
        Bytes data(length, 0x55);
        for (const std::uint8_t isReceive : {kReceive, kDump}) {
          ASSERT_EQ(exec(data, isReceive), 0x80000000u);
          ASSERT_EQ(data, Bytes(length, 0x55));
          ASSERT_EQ(reports(), Lines{ParameterBlocks::report(*kind, "Multi AD Part Ins Block Error !\n")});
          ASSERT_EQ(calls(), Lines{});
        }
      }
  }
}

TEST_F(MultiTest, AnInsertionBlockMissesItsModelBeforeItLooksAtItsType) {
  serve(85, false);
  served->setBlockInfo(Address(0x36, 3, 0), 99, 0);
  record.fail("temporary.multi");
  Bytes data(35, 1);
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
}

TEST_F(MultiTest, TheInsertionIsChosenByTypeNotByExecuter) {
  for (const unsigned from : {85U, 86U, 97U, 98U})
    for (const unsigned type : {85U, 86U, 97U, 98U}) {
      serve(from, false);
      served->setBlockInfo(Address(0x36, 3, 0), type, 0);
      const std::string effect = type == 85 || type == 97 ? "insertionA" : "insertionB";
      EXPECT_EQ(receive(Bytes(36, 7))[0], "set16(temporary.multi." + effect + ", 0, 7, flag 1)");
    }
}

TEST_F(MultiTest, RunsSkipBytesAndIndicesAsEffectsAndEqualizersDo) {
  serve(87, false);
  for (unsigned index = 0; index < 256; ++index) multi().masterEq[index] = 0x55;
  receive(Bytes(20, 0x11));
  EXPECT_EQ(multi().masterEq[7], 0x55);
  EXPECT_EQ(multi().masterEq[18], 0x55);
  const Bytes equalizer = dump();
  for (const unsigned byte : {7U, 11U, 15U}) EXPECT_EQ(equalizer[byte], 0) << byte;
  serve(88, false);
  for (unsigned index = 0; index < 256; ++index) multi().masterEffect[index] = 0x55;
  receive(Bytes(38, 0x11));
  EXPECT_EQ(multi().masterEffect[2], 0x55);
  EXPECT_EQ(multi().masterEffect[3], 0x55);
  EXPECT_EQ(multi().masterEffect[4], 0x11);
  EXPECT_EQ(dump()[3], 0);
  EXPECT_EQ(dump()[37], 0);
  serve(92, false);
  receive(Bytes{0, 1, 2, 3, 4, 5, 6, 7});
  EXPECT_EQ(multi().adPart->params[5], 6);
  EXPECT_EQ(dump(), (Bytes{0, 1, 2, 3, 4, 0, 6, 0}));
}

}  // namespace
}  // namespace BDA
