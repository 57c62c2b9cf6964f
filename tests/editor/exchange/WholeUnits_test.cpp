#include "exchange/WholeUnits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "acceptance/Library.h"
#include "editor/messages/BulkMessages.h"

using Editor::BulkAddress;
using Editor::WholeUnits;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kFooter{0x0F, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};
constexpr BulkAddress kMulti5{0x0C, 0x50, 0x04};

class Whole : public testing::Test {
 public:
  Whole& send(const Bytes& message, bool isHeard = true) {
    take(units.next({++count_, Editor::readMessage(message), message}, isHeard));
    return *this;
  }
  Whole& sendBlocks(BulkAddress left = {0, 0, 0}) {
    for (const BulkAddress block : blocksOf(BDA::List::normalVoice))
      if (!(block == left)) send(blockDump(block));
    return *this;
  }
  Whole& finish() {
    take(units.finish());
    return *this;
  }

  WholeUnits units;
  std::vector<std::uint64_t> handedOn;
  std::vector<std::uint64_t> refused;
  std::vector<std::string> reasons;

 private:
  void take(const std::vector<WholeUnits::Decided>& decided) {
    for (const WholeUnits::Decided& one : decided) {
      if (!one.refusal.empty()) reasons.push_back(one.refusal);
      for (const WholeUnits::Message& message : one.messages)
        (one.refusal.empty() ? handedOn : refused).push_back(message.number);
    }
  }

  std::uint64_t count_ = 0;
};

}  // namespace

TEST_F(Whole, aUnitIsHandedOnWithItsFooterAndNotBefore) {
  send(blockDump(kHeader)).sendBlocks();
  EXPECT_THAT(handedOn, IsEmpty());
  send(blockDump(kFooter));
  EXPECT_THAT(handedOn, SizeIs(26));
  EXPECT_THAT(refused, IsEmpty());
}

TEST_F(Whole, aUnitThatLacksABlockIsRefusedWithAllItsMessages) {
  send(blockDump(kHeader)).sendBlocks(kElement).send(blockDump(kFooter)).finish();
  EXPECT_THAT(handedOn, IsEmpty());
  EXPECT_THAT(refused, SizeIs(25));
  EXPECT_THAT(reasons, ElementsAre(HasSubstr("1 block missing (messages 1 to 25): element 3 oscillator")));
}

TEST_F(Whole, aUnitThatIsAbandonedOrNeverEndsIsRefused) {
  send(blockDump(kHeader)).send(blockDump({0x00, 0x40, 0x00})).send(blockDump(kHeader)).finish();
  EXPECT_THAT(handedOn, ElementsAre(2));
  EXPECT_THAT(refused, ElementsAre(1, 3));
  EXPECT_THAT(reasons, ElementsAre(HasSubstr("abandoned"), HasSubstr("still open at the end")));
}

TEST_F(Whole, blocksAndFootersOfNoUnitAreRefused) {
  send(blockDump(kElement)).send(blockDump(kFooter));
  EXPECT_THAT(refused, ElementsAre(1, 2));
}

TEST_F(Whole, fileDumpsWaitForTheirTrigger) {
  send(fileDump(kMulti5, "One", {1}));
  EXPECT_THAT(handedOn, IsEmpty());
  send(dump(Editor::kWriteTrigger)).send(fileDump(kMulti5, "Two", {2})).finish();
  EXPECT_THAT(handedOn, ElementsAre(1, 2));
  EXPECT_THAT(refused, ElementsAre(3));
}

TEST_F(Whole, whatAnEndInTheMidstLeavesIsRefusedByItself) {
  send(blockDump(kHeader)).send({0xF0, 0x7D, 0x00, 0x7F, 0x14, 0xF7}).sendBlocks().send(blockDump(kFooter));
  EXPECT_THAT(refused, ElementsAre(2));
  EXPECT_THAT(reasons, ElementsAre(HasSubstr("wrong length: 6 bytes")));
  EXPECT_THAT(handedOn, SizeIs(26));
  send({0xF0, 0x41, 0x00, 0x7F, 0x14, 0xF7});
  EXPECT_THAT(refused, ElementsAre(2)) << "another maker's";
}

TEST_F(Whole, aTriggerThatRemovesMixingVoicesNeedsAllItsFileDumps) {
  const Bytes removing = dump({0x11, 0x01, 0x00});
  const Bytes mix = fileDump({0x0C, 0x14, 0x02}, "Mix", {1});
  send(mix).send(dump(kMulti5, {0, 0, 0, 9, 0})).send(removing);
  EXPECT_THAT(refused, ElementsAre(2, 1, 3));
  EXPECT_THAT(reasons.back(), HasSubstr("all mixing voices would be removed, and not all file dumps are whole: message "
                                        "2: file dump of multi 5: broken file dump: "));
  send(mix).send(removing);
  EXPECT_THAT(handedOn, ElementsAre(4, 5)) << "those before are not its own";
  send(damaged(mix)).send(removing);
  EXPECT_THAT(handedOn, ElementsAre(4, 5));
  send(mix).send(fileDump({0x0C, 0x00, 0x04}, "Preset", {1})).send(removing);
  EXPECT_THAT(handedOn, ElementsAre(4, 5));
  EXPECT_THAT(reasons.back(), HasSubstr("can be requested, but not stored"));
  units.lose();
  send(mix).send(removing);
  EXPECT_THAT(handedOn, ElementsAre(4, 5));
  EXPECT_THAT(reasons.back(), HasSubstr("not all file dumps are whole: a message was cut short"));
  send(damaged(mix)).send(mix).send(dump(Editor::kWriteTrigger)).send(removing);
  EXPECT_THAT(handedOn, ElementsAre(4, 5, 14, 15, 16)) << "a trigger that removes nothing writes what is whole";
}

TEST_F(Whole, brokenMessagesAreRefusedAndOthersGoOn) {
  send(damaged(blockDump({0, 0, 0}))).send(dump(kMulti5, {0, 0, 0, 9, 0})).send(request({0, 0, 0}));
  EXPECT_THAT(refused, ElementsAre(1, 2));
  EXPECT_THAT(handedOn, ElementsAre(3));
}

TEST_F(Whole, whatIsNotHeardIsOfNoUnit) {
  send(blockDump(kHeader)).send(blockDump({0x40, 0x00, 0x00}), false).sendBlocks({0x40, 0x00, 0x00});
  EXPECT_THAT(handedOn, ElementsAre(2));
  send(blockDump(kFooter));
  EXPECT_THAT(handedOn, ElementsAre(2));
  EXPECT_THAT(reasons, ElementsAre(HasSubstr("1 block missing")));
}

TEST_F(Whole, neverMoreThanSoMuchIsHeldBack) {
  WholeUnits few(100);
  const auto next = [&](std::uint64_t number, const Bytes& message) {
    return few.next({number, Editor::readMessage(message), message}, true);
  };
  EXPECT_THAT(next(1, blockDump(kHeader)), IsEmpty());
  const Bytes block = blockDump(kElement);
  ASSERT_GT(block.size(), 88U);
  ASSERT_THAT(next(2, block), SizeIs(1));
  EXPECT_THAT(next(3, blockDump({0x40, 0x00, 0x00}))[0].refusal, HasSubstr("more than 100 bytes"));
  EXPECT_THAT(next(4, blockDump(kFooter)), SizeIs(1));
  EXPECT_THAT(next(5, blockDump(kHeader)), IsEmpty()) << "the next one is held back again";
}
