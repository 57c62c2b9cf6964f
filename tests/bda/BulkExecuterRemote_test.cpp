#include "BulkExecuterRemote.h"

#include "ParameterBlockFixture.h"

// What is special to the blocks of remote settings; ParameterBlocks_test.cpp has what all blocks have in common.

namespace BDA {
namespace {

class RemoteTest : public ParameterBlockFixture {
 protected:
  Testing::FakeRemote& remote() { return *tools.temporaryRemote; }
  static Bytes joined(const std::string& text, std::size_t length) {
    Bytes data(text.begin(), text.end());
    data.resize(length);
    return data;
  }
};

TEST_F(RemoteTest, TwoNamesOfACommonBlockMeetWithoutAGap) {
  serve(109, false);
  receive(joined("1234567890123abcdefghijkl", 27));
  EXPECT_EQ(remote().name1.text, "1234567890123");
  EXPECT_EQ(remote().name2.text, "abcdefghijkl");
  EXPECT_EQ(dump(), joined("1234567890123abcdefghijkl", 27));
}

TEST_F(RemoteTest, TwoNamesOfAControllerMeetWithoutAGap) {
  serve(110, false, 11);
  receive(joined("123456789abcdefghijklmno", 26));
  EXPECT_EQ(remote().controllers[11]->name1.text, "123456789");
  EXPECT_EQ(remote().controllers[11]->name2.text, "abcdefghijklmno");
  EXPECT_EQ(dump(), joined("123456789abcdefghijklmno", 26));
}

TEST_F(RemoteTest, LongNamesAreDumpedCut) {
  serve(109, false);
  remote().name1.text = "12345678901234567890";
  remote().name2.text = "abcdefghijklmnopqrst";
  EXPECT_EQ(dump(), joined("1234567890123abcdefghijkl", 27));
  serve(110, false, 0);
  remote().controllers[0]->name1.text = "12345678901234567890";
  remote().controllers[0]->name2.text = "abcdefghijklmnopqrst";
  EXPECT_EQ(dump(), joined("123456789abcdefghijklmno", 26));
}

TEST_F(RemoteTest, WrongLengthsAndMissingModelsAreReported) {
  const std::string common = "BulkExecuterRemote.cpp [BDA::BulkExecuterRemoteCommon::execBulkBlock] ";
  const std::string controller = "BulkExecuterRemote.cpp [BDA::BulkExecuterRemoteController::execBulkBlock] ";
  Bytes data(25, 1);
  serve(109, false);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  serve(110, false);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  EXPECT_EQ(reports(),
            (Lines{common + "error : wrong data length. (Remote Common): Correct = [1b], Data = [19]\n",
                   controller + "error : wrong data length. (Remote Controller): Correct = [1a], Data = [19]\n"}));
  record.fail("temporary.remote");
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  serve(109, false);
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), (Lines{controller + "Temporary Model is NULL !!!\n", common + "Temporary Model is NULL !!!\n"}));
  EXPECT_EQ(calls(), Lines{});
}

}  // namespace
}  // namespace BDA
