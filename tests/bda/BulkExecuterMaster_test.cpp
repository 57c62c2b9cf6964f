#include "BulkExecuterMaster.h"

#include "ParameterBlockFixture.h"

// What is special to the blocks of masters; ParameterBlocks_test.cpp has what all blocks have in common.

namespace BDA {
namespace {

class MasterTest : public ParameterBlockFixture {
 protected:
  Testing::FakeMaster& master() { return *tools.temporaryMaster; }
};

TEST_F(MasterTest, Byte3FOfAZoneIs15AndTwoSwitches) {
  serve(107, false, 2);
  Bytes data(16, 0);
  data[0] = 0x3F;
  receive(data);
  Testing::FakeGroup& zone = master().zones[2]->params;
  EXPECT_EQ(zone[0], 15);
  EXPECT_EQ(zone[1], 1);
  EXPECT_EQ(zone[2], 1);
  EXPECT_EQ(dump()[0], 0x3F);
}

TEST_F(MasterTest, TheLowNibbleOfAZoneJoinsItsSwitches) {
  serve(107, false, 0);
  Testing::FakeGroup& zone = master().zones[0]->params;
  for (const unsigned value : {0x00U, 0x0FU, 0xF5U, 0xFFU})
    for (const unsigned switches : {0U, 1U, 2U, 3U}) {
      zone[0] = std::uint16_t(value);
      zone[1] = std::uint16_t(switches % 2);
      zone[2] = std::uint16_t(switches / 2);
      EXPECT_EQ(dump()[0], switches * 16 + value % 16);
    }
}

TEST_F(MasterTest, TheSwitchesOfByte11AreOutOfOrder) {
  serve(107, false, 1);
  Bytes data(16, 0);
  std::vector<unsigned> indices;
  for (const unsigned bit : {0x01U, 0x02U, 0x04U, 0x08U, 0x10U}) {
    data[11] = std::uint8_t(bit);
    receive(data);
    for (unsigned index = 12; index <= 16; ++index)
      if (master().zones[1]->params[index] == 1) indices.push_back(index);
  }
  EXPECT_EQ(indices, (std::vector<unsigned>{12, 13, 16, 14, 15}));
}

TEST_F(MasterTest, Bit08OfByte13AndParameter27DoNotTravel) {
  serve(107, false, 3);
  Testing::FakeGroup& zone = master().zones[3]->params;
  for (unsigned index = 0; index < 256; ++index) zone[index] = 1;
  EXPECT_EQ(dump()[13], 0x77);
  receive(Bytes(16, 0));
  EXPECT_EQ(zone[27], 1);
}

TEST_F(MasterTest, AShortNameIsReadBackPaddedWithZeros) {
  serve(106, false);
  Bytes data(32, 0);
  const std::string text = "Stage";
  std::copy(text.begin(), text.end(), data.begin());
  receive(data);
  EXPECT_EQ(master().name.text, text);
  const Bytes back = dump();
  EXPECT_EQ(std::string(back.begin(), back.begin() + 20), text + std::string(15, '\0'));
}

TEST_F(MasterTest, A15ByteZoneBlockChangesNothing) {
  serve(107, false);
  Bytes data(15, 1);
  EXPECT_EQ(exec(data, kReceive), 0x88000000u);
  EXPECT_EQ(reports(), Lines{"BulkExecuterMaster.cpp [BDA::BulkExecuterMasterZone::execBulkBlock] error : invalid "
                             "length. (Master Zone): correct = [10], data = [0f]\n"});
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(MasterTest, AMissingModelIsReportedInTwoWays) {
  record.fail("temporary.master");
  Bytes data(32, 1);
  serve(106, false);
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{"BulkExecuterMaster.cpp [BDA::BulkExecuterMasterCommon::execBulkBlock] Temporary Model is "
                             "NULL !!!\n"});
  serve(107, false);
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(),
            Lines{"BulkExecuterMaster.cpp [BDA::BulkExecuterMasterZone::execBulkBlock] error :model is NULL !\n"});
}

}  // namespace
}  // namespace BDA
