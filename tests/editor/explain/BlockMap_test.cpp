#include "explain/BlockMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "editor/messages/BulkMessages.h"
#include "explain/BlockReceiver.h"

using Editor::BlockMap;
using Editor::BulkAddress;
using testing::ElementsAre;

namespace {

using Paths = std::set<std::string>;

// Everything that `show` says of models, one value behind the other.
class Shown {
 public:
  explicit Shown(const Editor::ModelSet& models) {
    forEachModel(models, [&](const char* /*key*/, const auto& model) { visitFields(model, *this); });
  }

  // The numbers of the values that differ, names first.
  std::vector<std::size_t> differing(const Shown& other) const {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < names_.size(); ++i)
      if (names_[i] != other.names_[i]) found.push_back(i);
    auto left = values_.begin();
    auto right = other.values_.begin();
    while (true) {
      std::tie(left, right) = std::mismatch(left, values_.end(), right);
      if (left == values_.end()) return found;
      found.push_back(names_.size() + std::size_t(left - values_.begin()));
      ++left;
      ++right;
    }
  }

  void group(const char* /*key*/, const Editor::ArrayGroup& group) {
    values_.insert(values_.end(), group.values().begin(), group.values().end());
  }
  void name(const char* /*key*/, const Editor::NameText& name) { names_.push_back(name.text()); }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }

 private:
  std::vector<std::string> names_;
  std::vector<std::uint16_t> values_;
};

// The paths of those numbers.
std::vector<std::string> pathsShown(const Editor::ModelSet& models) {
  std::vector<std::string> names;
  std::vector<std::string> values;
  for (const Editor::ModelField& field : fieldsOf(models)) {
    if (field.name != nullptr) names.push_back(field.path);
    for (std::size_t i = 0; field.group != nullptr && i < field.group->values().size(); ++i)
      values.push_back(parameterPath(field, i));
  }
  names.insert(names.end(), values.begin(), values.end());
  return names;
}

// Whether bytes 1 to 3 of the block select a voice.
bool hasBank(BulkAddress block) { return block.hi == 0x37 || block.hi == 0x31; }

// What each bit of a block's data changes, found out by turning it over.
class Experiment {
 public:
  explicit Experiment(BulkAddress block) : block_(block), size_(*Editor::findBlock(block)->dataLength) {
    paths_ = pathsShown(Editor::modelsAround(block));
    changed_.resize(size_ * 7);
    for (const Bytes& base : bases()) turnOver(base);
  }

  const Paths& changedBy(std::size_t byte, unsigned bit) const { return changed_[byte * 7 + bit]; }
  std::size_t size() const { return size_; }

 private:
  // Bits that are ORed with others show among zeros, names among characters, and bank bytes, which are taken as a voice
  // that there is or not at all, among those of voices.
  std::vector<Bytes> bases() const {
    std::vector<Bytes> all{Bytes(size_, 0x00), Bytes(size_, 0x7F)};
    if (!hasBank(block_)) return all;
    for (const Bytes& bank : {Bytes{0x3F, 0x00, 0x05}, Bytes{0x3F, 0x20, 0x05}, Bytes{0x7F, 0x00, 0x00}}) {
      all.emplace_back(size_);
      std::copy(bank.begin(), bank.end(), all.back().begin() + 1);
    }
    return all;
  }

  void turnOver(const Bytes& base) {
    const Shown before(receiver_.receive(block_, base));
    for (std::size_t byte = 0; byte < size_; ++byte)
      for (unsigned bit = 0; bit < 7; ++bit) {
        Paths& changed = changed_[byte * 7 + bit];
#ifdef BDA_SAMPLED
        if (!changed.empty() && !(hasBank(block_) && byte >= 1 && byte <= 3)) continue;
#endif
        Bytes data = base;
        data[byte] = std::uint8_t(data[byte] ^ 1U << bit);
        for (const std::size_t value : before.differing(Shown(receiver_.receive(block_, data))))
          changed.insert(paths_[value]);
      }
  }

  BulkAddress block_;
  std::size_t size_;
  Editor::BlockReceiver receiver_;
  std::vector<std::string> paths_;
  std::vector<Paths> changed_;
};

// All blocks of a list, in a sampled build the first and the last of each kind.
std::vector<BulkAddress> blocksToTry(BDA::List list) {
  std::vector<BulkAddress> blocks;
  BDA::forEachAddress(BDA::kParameterRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (BDA::listOf(row.hi) != std::size_t(list)) return;
#ifdef BDA_SAMPLED
    if (mid != row.mid.first && mid != row.mid.last) return;
#endif
    blocks.push_back({row.hi, mid, lo});
  });
  return blocks;
}

// The paths that the map names for some of those bits.
Paths namedBy(const BlockMap& map, std::size_t byte, unsigned bits) {
  Paths named;
  for (const BlockMap::Carried& carried : map.at(byte))
    if ((carried.bits & bits) != 0) named.insert(carried.path);
  return named;
}

class BitsOf : public testing::TestWithParam<BDA::List> {};

TEST_P(BitsOf, changeExactlyTheParametersThatTheMapNames) {
  for (const BulkAddress block : blocksToTry(GetParam())) {
    const Experiment experiment(block);
    const std::optional<BlockMap> map = BlockMap::of(block);
    ASSERT_TRUE(map) << describeAddress(block);
    ASSERT_EQ(map->size(), experiment.size()) << describeAddress(block);
    for (std::size_t byte = 0; byte < map->size(); ++byte) {
      const bool isBank = hasBank(block) && byte >= 1 && byte <= 3;  // which bits do depends on the other bytes
      Paths ofByte;
      for (unsigned bit = 0; bit < 7; ++bit) {
        const Paths& changed = experiment.changedBy(byte, bit);
        ofByte.insert(changed.begin(), changed.end());
        if (!isBank) {
          ASSERT_EQ(namedBy(*map, byte, 1U << bit), changed)
              << describeAddress(block) << ", data byte " << byte << ", bit " << bit;
        }
        ASSERT_EQ((map->unusedBits(byte) >> bit & 1) != 0, changed.empty());
      }
      ASSERT_EQ(namedBy(*map, byte, 0x7F), ofByte) << describeAddress(block) << ", data byte " << byte;
    }
  }
}

std::string nameOfList(const testing::TestParamInfo<BDA::List>& list) {
  constexpr const char* kNames[] = {"normalVoices", "drumVoices", "multis", "performances",
                                    "masters",      "remotes",    "systems"};
  return kNames[std::size_t(list.param) - std::size_t(BDA::List::normalVoice)];
}

INSTANTIATE_TEST_SUITE_P(Blocks, BitsOf,
                         testing::Values(BDA::List::normalVoice, BDA::List::drumVoice, BDA::List::multi,
                                         BDA::List::performance, BDA::List::master, BDA::List::remote,
                                         BDA::List::system),
                         nameOfList);

std::vector<std::string> carriedAt(BulkAddress block, std::size_t byte) {
  std::vector<std::string> lines;
  const std::optional<BlockMap> map = BlockMap::of(block);
  for (const BlockMap::Carried& carried : map->at(byte))
    lines.push_back(carried.path + " " + std::to_string(carried.bits) + " " + carried.how);
  return lines;
}

}  // namespace

TEST(BlockMap, saysHowAParameterIsPacked) {
  constexpr BulkAddress kVoiceCommon{0x40, 0x00, 0x00};
  EXPECT_THAT(carriedAt(kVoiceCommon, 3), ElementsAre("voice.name 127 a character: number 4"));
  EXPECT_THAT(carriedAt(kVoiceCommon, 44), ElementsAre("multi.part[0].extra[0] 1 bit 7"));
  EXPECT_THAT(carriedAt(kVoiceCommon, 45), ElementsAre("multi.part[0].extra[0] 127 bits 6-0"));
  EXPECT_THAT(carriedAt(kVoiceCommon, 30), ElementsAre("voice.common[4] 15 the value, in the low nibble",
                                                       "voice.common[3] 112 the value, in the high nibble"));
  EXPECT_THAT(carriedAt(kVoiceCommon, 20), ElementsAre());
  EXPECT_THAT(carriedAt({0x41, 0x02, 0x00}, 2), ElementsAre("voice.element[2].wave[0] 127 bits 13-7"));
  EXPECT_THAT(carriedAt({0x00, 0x00, 0x00}, 3), ElementsAre("system.tune[0] 15 bits 11-8"));
  EXPECT_THAT(carriedAt({0x32, 0x01, 0x00}, 11).front(), "master.zone[1].params[12] 1 a switch: 1 when the bit is set");
}

TEST(BlockMap, aByteThatFeedsTwoParametersNamesBoth) {
  EXPECT_THAT(carriedAt({0x31, 0x01, 0x00}, 30),
              ElementsAre("multi.part[1].main[55] 127 the value, when received: the byte is sent for another parameter",
                          "multi.part[1].main[23] 127 the value"));
}

TEST(BlockMap, aBankByteNamesAllThatACorrectionCanChange) {
  for (const std::size_t byte : {1u, 2u, 3u}) EXPECT_EQ(carriedAt({0x37, 0x00, 0x00}, byte).size(), 3u);
}

TEST(BlockMap, blocksWithoutParametersHaveNone) {
  for (const BulkAddress block :
       {BulkAddress{0x0E, 0x0A, 0x05}, BulkAddress{0x0C, 0x0A, 0x05}, BulkAddress{0x71, 0x0A, 0x00},
        BulkAddress{0x70, 0x30, 0x00}, BulkAddress{0x51, 0x00, 0x00}, BulkAddress{0x7F, 0x00, 0x00}})
    EXPECT_FALSE(BlockMap::of(block)) << formatAddress(block);
}
