#include "AddressRows.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "InstrumentMap.h"

namespace BDA {
namespace {

using Seen = std::tuple<unsigned, unsigned, unsigned, unsigned, unsigned, std::size_t>;

// Type, address, index and executer of every block, list by list, in the order in which the table appends them.
std::array<std::vector<Seen>, kListCount> blocksOfTheModule() {
  std::array<std::vector<Seen>, kListCount> lists;
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    lists[listOf(row.hi)].emplace_back(row.type, row.hi, mid, lo, indexOf(row, mid), executerOf(row, mid));
  });
  return lists;
}

const InstrumentMap::Block* find(unsigned hi, unsigned mid, unsigned lo) {
  const int position = InstrumentMap::walk(hi, mid, lo);
  if (position < 0) return nullptr;
  return &InstrumentMap::lists()[std::size_t(InstrumentMap::listOfHighByte(hi))][std::size_t(position)];
}

class ListOfBlocks : public testing::TestWithParam<int> {};

TEST_P(ListOfBlocks, HoldsTypeAddressIndexAndExecuterOfEachBlockInOrder) {
  const auto list = std::size_t(GetParam());
  const std::vector<InstrumentMap::Block>& expected = InstrumentMap::lists()[list];
  const std::vector<Seen> actual = blocksOfTheModule()[list];
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const InstrumentMap::Block& block = expected[i];
    ASSERT_EQ(actual[i], Seen(block.type, block.hi, block.mid, block.lo, block.index, block.executer)) << "block " << i;
  }
}
INSTANTIATE_TEST_SUITE_P(AllThirteen, ListOfBlocks, testing::Range(0, int(kListCount)));

TEST(AddressRows, HaveEightThousandThreeHundredAndThirtyBlocks) {
  std::size_t total = 0;
  for (const auto& list : blocksOfTheModule()) total += list.size();
  EXPECT_EQ(total, 8330u);
  EXPECT_EQ(kBlockCount, 8330u);
}

TEST(AddressRows, GiveEachListItsSize) {
  const std::array<std::size_t, 13> expected{2105, 2105, 24, 81, 41, 17, 5, 13, 14, 81, 3828, 1, 15};
  const auto lists = blocksOfTheModule();
  for (std::size_t list = 0; list < expected.size(); ++list) EXPECT_EQ(lists[list].size(), expected[list]) << list;
}

TEST(AddressRows, HoldNoAddressTwice) {
  std::set<std::tuple<unsigned, unsigned, unsigned>> seen;
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    EXPECT_TRUE(seen.emplace(row.hi, mid, lo).second)
        << unsigned(row.hi) << ' ' << unsigned(mid) << ' ' << unsigned(lo);
  });
}

TEST(AddressRows, LetEachFooterFollowItsHeaderAtOnce) {
  bool headerOpen = false;
  std::pair<unsigned, unsigned> last{};
  unsigned lastType = 0;
  std::size_t pairs = 0;
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (row.hi == 0x0E) {
      EXPECT_FALSE(headerOpen);
      headerOpen = true;
      last = {mid, lo};
      lastType = row.type;
    } else if (row.hi == 0x0F) {
      EXPECT_TRUE(headerOpen);
      headerOpen = false;
      EXPECT_EQ(last, std::make_pair(unsigned(mid), unsigned(lo)));
      EXPECT_EQ(row.type, lastType < 16 ? lastType + 18 : lastType);
      ++pairs;
    }
  });
  EXPECT_EQ(pairs, 2105u);
}

TEST(AddressRows, GiveSomeTypesToNoBlock) {
  std::set<unsigned> types;
  forEachBlock([&](const AddressRow& row, std::uint8_t, std::uint8_t) { types.insert(row.type); });
  for (const int unused : {0, 18, 34, 35, 36, 48, 55, 56, 60, 71, 81, 93, 105, 108, 111, 115, 117, 124, 125})
    EXPECT_FALSE(types.contains(unsigned(unused))) << unused;
  EXPECT_EQ(types.size(), 124u - 17u);
  EXPECT_EQ(*types.rbegin(), 123u);
}

TEST(AddressRows, LeaveFavoriteExecuter73WithoutABlock) {
  std::set<std::size_t> used;
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t) { used.insert(executerOf(row, mid)); });
  EXPECT_FALSE(used.contains(73));
  EXPECT_EQ(used.size(), 76u);
  EXPECT_EQ(*used.begin(), 1u);
  EXPECT_EQ(*used.rbegin(), 77u);
}

TEST(AddressRows, RouteEveryHighByteToItsList) {
  for (unsigned hi = 0; hi < 256; ++hi) {
    EXPECT_EQ(listOf(std::uint8_t(hi)), std::size_t(InstrumentMap::listOfHighByte(hi))) << hi;
    EXPECT_EQ(findRoute(std::uint8_t(hi)) != nullptr, InstrumentMap::listOfHighByte(hi) != InstrumentMap::listCount);
  }
}

TEST(AddressRows, AdmitBlocksOfAListOnlyUnderItsHeaders) {
  for (unsigned hi = 0; hi < 256; ++hi) {
    const Route* const route = findRoute(std::uint8_t(hi));
    if (route == nullptr) continue;
    for (unsigned type = 0; type <= 20; ++type) {
      bool expected = true;
      if (hi == 0x01) expected = type == 16 || type == 17;
      if (hi == 0x30 || hi == 0x31 || hi == 0x34 || hi == 0x35) expected = type == 12 || type == 13;
      if (hi == 0x32 || hi == 0x33) expected = type == 14 || type == 15;
      if (hi >= 0x36 && hi <= 0x39) expected = type == 11;
      EXPECT_EQ(route->admits(type), expected) << "high byte " << hi << ", header type " << type;
    }
  }
}

TEST(AddressRows, NameTheListBetweenAHeaderAndItsFooter) {
  for (unsigned type = 0; type < 300; ++type) {
    std::size_t expected = kListCount;
    if ((type >= 1 && type <= 4) || type == 10) expected = InstrumentMap::normalVoice;
    if (type >= 5 && type <= 8) expected = InstrumentMap::drumVoice;
    if (type == 11) expected = InstrumentMap::multi;
    if (type == 12 || type == 13) expected = InstrumentMap::performance;
    if (type == 14 || type == 15) expected = InstrumentMap::master;
    if (type == 16 || type == 17) expected = InstrumentMap::remote;
    EXPECT_EQ(listBetween(type), expected) << type;
  }
}

// What the second map says of the addresses that are easy to get wrong; the lists above agree with it.
TEST(AddressRows, PutTheControllerBlockAt06InNormalVoicesAndAt08InDrumVoices) {
  ASSERT_NE(find(0x40, 0x06, 0), nullptr);
  EXPECT_EQ(find(0x40, 0x06, 0)->type, 67u);
  EXPECT_EQ(find(0x46, 0x06, 0), nullptr);
  ASSERT_NE(find(0x46, 0x08, 0), nullptr);
  EXPECT_EQ(find(0x46, 0x08, 0)->type, 78u);
}

}  // namespace
}  // namespace BDA
