#include "BulkExecuterPerf.h"

#include "ParameterBlockFixture.h"

// What is special to the blocks of performances; ParameterBlocks_test.cpp has what all blocks have in common.

namespace BDA {
namespace {

class PerfTest : public ParameterBlockFixture {
 protected:
  Testing::FakeMulti& multi() { return *tools.temporaryMulti; }
};

TEST_F(PerfTest, BothBlocksNameTheMultiCommonBlockWhenTheirLengthIsWrong) {
  for (const auto& [type, className, lengths] : {std::tuple{94U, "PerfCommon", "Correct = [51], Data = [50]\n"},
                                                 {102U, "PerfPart", "Correct = [3f], Data = [3e]\n"}}) {
    serve(type, false);
    Bytes data(kind->length - 1, 1);
    EXPECT_EQ(exec(data, kReceive), 0x88000000u);
    EXPECT_EQ(reports(), Lines{std::string("BulkExecuterPerf.cpp [BDA::BulkExecuter") + className +
                               "::execBulkBlock] Wrong data length. (Multi Common): " + lengths});
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(PerfTest, Byte30OfAPartFeedsTwoParametersAndIsDumpedFromTheSecond) {
  serve(102, false, 3);
  Bytes data(63, 0);
  data[30] = 0x42;
  receive(data);
  EXPECT_EQ(multi().parts[3]->main[55], 0x42);
  EXPECT_EQ(multi().parts[3]->main[23], 0x42);
  multi().parts[3]->main[55] = 0x11;
  multi().parts[3]->main[23] = 0x22;
  EXPECT_EQ(dump()[30], 0x22);
}

TEST_F(PerfTest, APartSetsItsOwnTwoParametersFirst) {
  serve(102, false, 1);
  const Lines told = receive(pattern());
  EXPECT_EQ(told[0].substr(0, 36), "set(temporary.multi.part[1].main, 0,");
  EXPECT_EQ(told[1].substr(0, 37), "set(temporary.multi.part[1].main, 55,");
  EXPECT_TRUE(told[2].starts_with("correctBankSelAndProgramNum(temporary.multi.part[1], 1,")) << told[2];
}

TEST_F(PerfTest, ACommonBlockNeedsFourPartsOnly) {
  serve(94, false);
  multi().parts.resize(4);
  const Bytes data = pattern();
  EXPECT_EQ(receive(data), expectedCalls(data));
  multi().parts.resize(3);
  for (const std::uint8_t isReceive : {kReceive, kDump}) {
    Bytes other(81, 1);
    EXPECT_EQ(exec(other, isReceive), 0x80000000u);
    EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
    EXPECT_EQ(other, Bytes(81, 1));
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(PerfTest, ItsNameIsThatOfTheMultiModel) {
  serve(94, false);
  Bytes data(81, 0);
  data[0] = 'P';
  data[1] = '1';
  receive(data);
  EXPECT_EQ(multi().name.text, "P1");
  multi().name.text = "A name of more than 20 characters";
  const Bytes back = dump();
  EXPECT_EQ(std::string(back.begin(), back.begin() + 20), "A name of more than ");
  EXPECT_EQ(back[20], 0);
}

TEST_F(PerfTest, APartIsGoneWhenTheInheritedTransferAsksForItAgain) {
  serve(102, false);
  record.fail("temporary.multi", 2);
  Bytes data(63, 1);
  EXPECT_EQ(exec(data, kReceive), 0u);  // its result is not used, by contract
  EXPECT_EQ(reports(), Lines{"BulkExecuterMulti.cpp [BDA::BulkExecuterMultiPart::execBulkBlock] "
                             "Temporary Model is NULL !!!\n"});
}

}  // namespace
}  // namespace BDA
