#include "BulkExecuterCreator.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <typeinfo>

#include "BulkExecuterFavorite.h"
#include "ExecuterFixture.h"
#include "InstrumentMap.h"
#include "support/Allocations.h"

namespace BDA {
namespace {

using Testing::allocations;

// Its name without the namespace. Compilers spell it N3BDA18BulkExecuterHeaderE or class BDA::BulkExecuterHeader.
std::string classOf(const BulkExecuter& executer) {
  std::string name = typeid(executer).name();
  if (name.starts_with('N') && name.ends_with('E')) name.pop_back();
  return name.substr(std::min(name.find("BulkExecuter"), name.size()));
}

class BulkExecuterCreatorTest : public ExecuterFixture {
 protected:
  BulkExecuterCreatorTest() { allocations.onlyNothrow = true; }
  ~BulkExecuterCreatorTest() override { allocations = {}; }
  std::unique_ptr<BulkExecuterCreator> make() {
    std::unique_ptr<BulkExecuterCreator> made;
    allocations.of([&] {
      made = std::make_unique<BulkExecuterCreator>(nullptr, &jobReceivers, &tools, &tools.temporaryModel, &work);
    });
    return made;
  }
};

TEST_F(BulkExecuterCreatorTest, MakesEveryExecuterOfItsClassAndLength) {
  ASSERT_EQ(InstrumentMap::kExecuters.size(), 77u);
  for (const InstrumentMap::Executer& expected : InstrumentMap::kExecuters) {
    const BulkExecuter* const made = creator.getExecuter(expected.number);
    ASSERT_NE(made, nullptr) << expected.number;
    EXPECT_EQ(classOf(*made), "BulkExecuter" + std::string(expected.name)) << expected.number;
    EXPECT_EQ(made->getDataLength(), expected.dataLength) << expected.number;
  }
}

TEST_F(BulkExecuterCreatorTest, MakesEachExecuterOnce) {
  std::set<const BulkExecuter*> made;
  for (std::size_t number = 1; number <= 77; ++number) made.insert(creator.getExecuter(number));
  EXPECT_EQ(made.size(), 77u);
}

TEST_F(BulkExecuterCreatorTest, HasNoNumbersBelow1OrAbove77) {
  EXPECT_EQ(creator.getExecuter(0), nullptr);
  EXPECT_EQ(creator.getExecuter(78), nullptr);
  EXPECT_EQ(creator.getExecuter(std::size_t(-1)), nullptr);
}

TEST_F(BulkExecuterCreatorTest, GivesAllExecutersOneStateOfTwoZeros) {
  const ExecuterSharedState* const state = creator.getExecuter(1)->getSharedState();
  ASSERT_NE(state, nullptr);
  EXPECT_EQ(state->currentNumber, 0);
  EXPECT_EQ(state->loadSkipped, 0);
  for (std::size_t number = 2; number <= 77; ++number)
    EXPECT_EQ(creator.getExecuter(number)->getSharedState(), state) << number;
}

TEST_F(BulkExecuterCreatorTest, SharesNoStateWithAnotherCreator) {
  const auto other = make();
  creator.getExecuter(1)->setCurrentNumber(7);
  EXPECT_EQ(other->getExecuter(1)->getCurrentNumber(), 0);
  EXPECT_NE(other->getExecuter(1)->getSharedState(), creator.getExecuter(1)->getSharedState());
}

TEST_F(BulkExecuterCreatorTest, ExecutersServeNoBlockAtFirst) {
  for (std::size_t number = 1; number <= 77; ++number) {
    EXPECT_EQ(creator.getExecuter(number)->getBlockType(), 0u);
    EXPECT_EQ(creator.getExecuter(number)->getBlockIndex(), 0);
  }
}

TEST_F(BulkExecuterCreatorTest, AsksForTheContentNumbersOfTheBanksInTheirOrder) {
  make();
  Lines expected;
  const auto bank = [&](int code, int count) {
    expected.push_back("voiceContentNumber(" + std::to_string(code) + ", 0)");
    expected.push_back("voiceContentNumber(" + std::to_string(code) + ", " + std::to_string(count) + ")");
  };
  for (int code = 0; code <= 10; ++code) bank(code, 128);
  bank(13, 128);
  bank(11, 64);
  bank(12, 32);
  bank(14, 1);
  EXPECT_EQ(calls(), expected);
}

TEST_F(BulkExecuterCreatorTest, AsksForContentNumbersAfterTheFirst61Executers) {
  std::set<long> madeBefore;
  record.during("voiceContentNumber", [&] { madeBefore.insert(allocations.count); });
  make();
  EXPECT_EQ(madeBefore, std::set<long>{61});
  EXPECT_EQ(allocations.count, 77);
}

TEST_F(BulkExecuterCreatorTest, GivesEachFavoriteExecuterTheRangeOfItsBank) {
  const auto rangeOf = [&](std::size_t number) {
    const auto* const favorite = dynamic_cast<const BulkExecuterFavorite*>(creator.getExecuter(number));
    if (favorite == nullptr) throw std::logic_error("no favourite executer");
    return std::pair{favorite->getFirstNumber(), favorite->getEndNumber()};
  };
  const auto bank = [](std::uint32_t code, std::uint32_t count) { return std::pair{code * 256, code * 256 + count}; };
  for (std::uint32_t code = 0; code <= 10; ++code) EXPECT_EQ(rangeOf(62 + code), bank(code, 128)) << code;
  EXPECT_EQ(rangeOf(74), bank(13, 128));
  EXPECT_EQ(rangeOf(75), bank(11, 64));
  EXPECT_EQ(rangeOf(76), bank(12, 32));
  EXPECT_EQ(rangeOf(77), bank(14, 1));
}

TEST_F(BulkExecuterCreatorTest, GivesFavorite73ItsFixedRange) {
  const auto* const favorite = dynamic_cast<const BulkExecuterFavorite*>(creator.getExecuter(73));
  ASSERT_NE(favorite, nullptr);
  EXPECT_EQ(favorite->getFirstNumber(), 0xCCCCCCCCu);
  EXPECT_EQ(favorite->getEndNumber(), 3u);
  EXPECT_EQ(favorite->getDataLength(), 128u);
}

TEST_F(BulkExecuterCreatorTest, LeavesAnExecuterNullThatCannotBeAllocated) {
  allocations.failing = {1, 48, 61, 62, 77};
  const auto poor = make();
  for (std::size_t number = 1; number <= 77; ++number)
    EXPECT_EQ(poor->getExecuter(number) == nullptr, allocations.fails(long(number))) << number;
}

TEST_F(BulkExecuterCreatorTest, StandsWithoutAnyExecuter) {
  allocations.failingFrom = 1;
  const auto poor = make();
  for (std::size_t number = 1; number <= 77; ++number) EXPECT_EQ(poor->getExecuter(number), nullptr) << number;
}

TEST_F(BulkExecuterCreatorTest, StandsWithoutStoreReceiversAndTemporaryModel) {
  const BulkExecuterCreator bare(nullptr, nullptr, &tools, nullptr, nullptr);
  for (std::size_t number = 1; number <= 77; ++number) EXPECT_NE(bare.getExecuter(number), nullptr) << number;
}

}  // namespace
}  // namespace BDA
