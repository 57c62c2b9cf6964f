#include "salvage/Remains.h"

#include <algorithm>
#include <deque>
#include <random>

#include "SalvageFixture.h"

using Editor::Addresses;
using Editor::BulkAddress;
using Editor::Capture;
using Editor::Group;
using Editor::Pieces;

namespace {

// The same as it is said: every capture with every other.

Addresses plainDifferencesOf(const Group& captures) {
  Addresses found;
  for (const Capture* const a : captures)
    for (const Capture* const b : captures)
      for (const auto& [address, piece] : a->pieces)
        if (const auto other = b->pieces.find(address); other != b->pieces.end() && !carrySame(piece, other->second))
          found.insert(address);
  return found;
}

bool haveSomethingInCommon(const Capture& a, const Capture& b) {
  return a.device == b.device && std::ranges::any_of(a.pieces, [&](const Pieces::value_type& one) {
           const auto other = b.pieces.find(one.first);
           const bool hasParameters = one.first.hi != BDA::kHeaderHi && one.first.hi != BDA::kFooterHi;
           return hasParameters && other != b.pieces.end() && carrySame(one.second, other->second);
         });
}

std::vector<Group> plainConnected(Group captures) {
  std::vector<Group> groups;
  while (!captures.empty()) {
    Group group{captures.front()};
    captures.erase(captures.begin());
    for (std::size_t i = 0; i < group.size(); ++i) {
      const auto others = std::stable_partition(captures.begin(), captures.end(), [&](const Capture* one) {
        return !haveSomethingInCommon(*group[i], *one);
      });
      group.insert(group.end(), others, captures.end());
      captures.erase(others, captures.end());
    }
    groups.push_back(std::move(group));
  }
  return groups;
}

Group plainUncontradicted(const Group& captures, std::optional<std::size_t> preferred) {
  Group left;
  for (const Capture* const one : captures)
    if (one->source == preferred || std::ranges::none_of(captures, [&](const Capture* other) {
          return other->source == preferred && !plainDifferencesOf({one, other}).empty();
        }))
      left.push_back(one);
  return left;
}

bool plainHaveAll(const std::vector<std::vector<Editor::Piece>>& units, const Pieces& pieces) {
  return std::ranges::any_of(units, [&](const std::vector<Editor::Piece>& unit) {
    return std::ranges::all_of(pieces, [&](const Pieces::value_type& one) {
      return std::ranges::any_of(unit, [&](const Editor::Piece& piece) {
        return Editor::readMessage(piece.bytes).address == one.first && carrySame(piece, one.second);
      });
    });
  });
}

class Remains : public testing::Test {
 protected:
  std::size_t below(std::size_t end) { return random_() % end; }

  // Some blocks of a voice, each with one of `values` values.
  Capture capture(std::size_t values, std::size_t most) {
    Capture one{kVoice6, below(3), {}, false, 1 + unsigned(below(2))};
    for (std::size_t count = 1 + below(most); count > 0; --count) {
      const BulkAddress address = blocks_[below(6)];
      const Bytes message = Editor::findBlock(address)->dataLength == 0
                                ? blockDump(address)
                                : blockDump(address, std::uint8_t(below(values)));
      one.pieces.insert_or_assign(address, Editor::Piece{one.source, 1, 0, message, std::nullopt});
    }
    return one;
  }

  std::mt19937 random_{1};
  std::vector<BulkAddress> blocks_ = [] {
    std::vector<BulkAddress> blocks = blocksOf(BDA::List::normalVoice);
    blocks.insert(blocks.begin(), kVoice6);
    return blocks;
  }();
};

}  // namespace

TEST_F(Remains, areJudgedAsIfEachWereHeldAgainstEachOther) {
  std::size_t groups = 0;
  std::size_t contradicted = 0;
  for (int i = 0; i < 300; ++i) {
    std::deque<Capture> captures;
    const std::size_t values = 1 + below(20);
    const std::size_t most = 1 + below(3);
    Group all;
    for (std::size_t count = below(15); count > 0; --count) {
      captures.push_back(capture(values, most));
      all.push_back(&captures.back());
    }
    EXPECT_TRUE(std::ranges::equal(differencesOf(all), plainDifferencesOf(all)));
    const std::vector<Group> found = connected(all);
    ASSERT_EQ(found, plainConnected(all)) << i;
    const Group left = uncontradicted(all, 1);
    ASSERT_EQ(left, plainUncontradicted(all, 1)) << i;
    EXPECT_EQ(uncontradicted(all, std::nullopt), all);
    groups += found.size() > 1 && found.size() < all.size();
    contradicted += left.size() < all.size();
  }
  EXPECT_GT(groups, 50U);
  EXPECT_GT(contradicted, 50U);
}

TEST_F(Remains, areFoundInTheUnitsThatAreKept) {
  std::size_t found = 0;
  for (int i = 0; i < 100; ++i) {
    Editor::KeptBlocks kept;
    std::vector<std::vector<Editor::Piece>> units(1 + below(5));
    for (std::vector<Editor::Piece>& unit : units)
      for (const auto& [address, piece] : capture(2, 10).pieces) unit.push_back(piece);
    for (const std::vector<Editor::Piece>& unit : units) kept.add(unit);
    for (int j = 0; j < 10; ++j) {
      const Capture orphan = capture(2, 3);
      const bool areAll = kept.haveAll(orphan.pieces);
      ASSERT_EQ(areAll, plainHaveAll(units, orphan.pieces)) << i;
      found += areAll;
    }
  }
  EXPECT_GT(found, 100U);
  EXPECT_LT(found, 900U);
}
