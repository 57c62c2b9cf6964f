#include "messages/Verification.h"

#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"

namespace Editor {
namespace {

TEST(Verification, countsMessagesAndUnitsAndWhatIsBrokenOfThem) {
  Verification verification;
  std::uint64_t number = 0;
  const auto send = [&](const Bytes& message) { return verification.next(readMessage(message), ++number).size(); };
  EXPECT_EQ(send(blockDump({0x0E, 0x70, 0x02})), 0u);
  for (const BulkAddress block : blocksOf(BDA::List::master)) EXPECT_EQ(send(blockDump(block)), 0u);
  EXPECT_EQ(send(blockDump({0x0F, 0x70, 0x02})), 1u);
  EXPECT_TRUE(verification.areAllWhole());
  EXPECT_EQ(verification.units(), 1u);
  EXPECT_EQ(verification.messages(), number);

  EXPECT_EQ(send(damaged(blockDump({0, 0, 0}))), 0u);
  EXPECT_EQ(verification.brokenMessages(), 1u);
  EXPECT_EQ(verification.brokenUnits(), 0u);
  EXPECT_FALSE(verification.areAllWhole());
}

TEST(Verification, whatIsBrokenIsSaidByItsKind) {
  const Reading good = readMessage(blockDump({0, 0, 0}));
  const Reading broken = readMessage(damaged(blockDump({0, 0, 0})));
  EXPECT_TRUE(faultsIn(good).empty());
  ASSERT_EQ(faultsIn(broken).size(), 1u);
  EXPECT_EQ(faultsIn(broken).front().kind, wordOf(broken.verdict));
  EXPECT_EQ(faultsIn(broken).front().text, describeFault(broken));
  Verification verification;
  verification.next(readMessage(blockDump({0x0E, 0x70, 0x02})), 1);
  const std::vector<UnitReport> open = verification.finish();
  ASSERT_EQ(faultsIn(open).size(), 1u);
  EXPECT_EQ(faultsIn(open).front().kind, wordOf(UnitReport::State::open));
  EXPECT_EQ(faultsIn(open).front().text, describeUnit(open.front()));
}

TEST(Verification, aUnitThatIsStillOpenIsBroken) {
  Verification verification;
  verification.next(readMessage(blockDump({0x0E, 0x70, 0x02})), 1);
  EXPECT_TRUE(verification.areAllWhole());
  EXPECT_EQ(verification.finish().size(), 1u);
  EXPECT_EQ(verification.brokenUnits(), 1u);
  EXPECT_FALSE(verification.areAllWhole());
}

TEST(Verification, knowsWhetherAMessageIsForThisInstrument) {
  Verification verification;
  verification.next(readMessage(Bytes{0xF0, 0x41, 0xF7}), 1);
  EXPECT_FALSE(verification.isAnyOurs());
  verification.next(readMessage(request({0, 0, 0})), 2);
  verification.next(readMessage(Bytes{0xF0, 0x41, 0xF7}), 3);
  EXPECT_TRUE(verification.isAnyOurs());
}

}  // namespace
}  // namespace Editor
