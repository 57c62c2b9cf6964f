#include "contents/ContentFormat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <rapidcheck/gtest.h>

namespace Editor {
namespace {

using ::testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kHeaderSize = 6;

ModelSet systemSet() {
  ModelSet set;
  set.system.emplace();
  set.additional.emplace();
  return set;
}

struct Kind {
  const char* name;
  ModelSet fresh;
  std::size_t size;
};

// Every shape that is stored, and its size as the documentation states it.
std::vector<Kind> kinds() {
  return {{"normal voice", emptySetFor(1), 3668},
          {"drum voice", emptySetFor(5), 11827},
          {"multi", emptySetFor(11), 2223},
          {"performance", emptySetFor(12), 2223},
          {"master", emptySetFor(14), 167},
          {"remote", emptySetFor(16), 371},
          {"system", systemSet(), 337}};
}

// Fills a set with arbitrary values: the longest and the shortest names, the largest and the smallest parameters.
struct Filler {
  std::mt19937 random;

  unsigned below(std::size_t end) { return unsigned(random() % end); }
  void group(const char* /*key*/, ArrayGroup& group) {
    std::vector<std::uint16_t> values(group.values().size());
    for (std::uint16_t& value : values) value = std::uint16_t(random() & group.maximum());
    RC_ASSERT(group.assign(values));
  }
  void name(const char* /*key*/, NameText& name) {
    std::string text(below(name.capacity() + 1), ' ');
    for (char& character : text) character = char(1 + below(255));
    RC_ASSERT(name.assign(text));
  }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

ModelSet filled(ModelSet models, unsigned seed) {
  Filler filler{std::mt19937(seed)};
  forEachModel(models, [&](const char* /*key*/, auto& model) { visitFields(model, filler); });
  return models;
}

RC_GTEST_PROP(ContentFormat, GivesBackExactlyTheModelsThatWereEncoded, (unsigned seed)) {
  const std::vector<Kind> all = kinds();
  const Kind& kind = all[seed % all.size()];
  const ModelSet models = filled(kind.fresh, seed);
  const Bytes bytes = encodeContent(models);
  RC_ASSERT(bytes.size() == kind.size);
  ModelSet decoded = kind.fresh;
  RC_ASSERT(decodeContent(bytes, decoded) == std::nullopt);
  RC_ASSERT(decoded == models);
  RC_ASSERT(encodeContent(decoded) == bytes);
}

TEST(ContentFormat, HasAHeaderOfItsOwnBeforeTheModels) {
  const Bytes bytes = encodeContent(emptySetFor(14));
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 6), (Bytes{'B', 'D', 'A', 'C', 1, 0x10}));
  EXPECT_TRUE(isContentFormat(bytes));
}

TEST(ContentFormat, WritesNamesGroupsAndWordsInPlace) {
  ModelSet master = emptySetFor(14);
  ASSERT_TRUE(master.master->name.assign("Ab"));
  const std::uint8_t last = 0x7B;
  ASSERT_TRUE(master.master->zone[3].params.set(&last, 32, 0));
  const Bytes bytes = encodeContent(master);
  EXPECT_EQ(bytes[6], 2);
  EXPECT_EQ(bytes[7], 'A');
  EXPECT_EQ(bytes[8], 'b');
  EXPECT_EQ(bytes[9], 0);
  EXPECT_EQ(bytes.back(), 0x7B);

  ModelSet multi = emptySetFor(11);
  const std::uint16_t tempo = 0x1234;
  ASSERT_TRUE(multi.arpeggio->tempo.set(&tempo, 0, 0));
  const Bytes words = encodeContent(multi);
  EXPECT_EQ(words[6 + 1392], 0x12);  // after the header and the multi
  EXPECT_EQ(words[6 + 1393], 0x34);
}

TEST(ContentFormat, SizesAreTheDocumentedOnes) {
  for (const Kind& kind : kinds()) EXPECT_EQ(encodeContent(kind.fresh).size(), kind.size) << kind.name;
}

// Seven bytes travel as eight, and two lengths of two bytes stand before name and data.
TEST(ContentFormat, EveryContentFitsAFileDump) {
  const auto packed = [](std::size_t size) { return size + (size + 6) / 7; };
  constexpr std::size_t kLongestName = 20;
  for (const Kind& kind : kinds())
    EXPECT_LE(packed(encodeContent(kind.fresh).size()) + packed(kLongestName) + 4, 0x3FFFU) << kind.name;
  EXPECT_EQ(packed(encodeContent(emptySetFor(5)).size()) + packed(kLongestName) + 4, 13544U);
}

TEST(ContentFormat, RefusesEveryTruncationAndEveryAddition) {
  for (const Kind& kind : kinds()) {
    const Bytes bytes = encodeContent(kind.fresh);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      const Bytes cut(bytes.begin(),
                      bytes.begin() + std::ptrdiff_t(size));  // of its own: sanitizers see every step beyond
      ModelSet models = kind.fresh;
      ASSERT_TRUE(decodeContent(cut, models)) << kind.name << ", " << size << " bytes";
      ASSERT_TRUE(models == kind.fresh);
    }
    Bytes longer = bytes;
    longer.push_back(0);
    ModelSet models = kind.fresh;
    EXPECT_THAT(decodeContent(longer, models).value_or(""), HasSubstr(" bytes instead of ")) << kind.name;
  }
}

TEST(ContentFormat, RefusesEveryOtherValueOfEveryHeaderByte) {
  for (const Kind& kind : kinds()) {
    const Bytes bytes = encodeContent(kind.fresh);
    for (std::size_t at = 0; at < kHeaderSize; ++at)
      for (unsigned change = 1; change <= 0xFF; ++change) {
        Bytes flipped = bytes;
        flipped[at] = std::uint8_t(flipped[at] ^ change);
        ModelSet models = kind.fresh;
        ASSERT_TRUE(decodeContent(flipped, models)) << kind.name << ", byte " << at;
      }
  }
}

RC_GTEST_PROP(ContentFormat, AnyChangedByteIsRefusedOrKept, (unsigned seed, std::uint8_t value)) {
  const std::vector<Kind> all = kinds();
  const Kind& kind = all[seed % all.size()];
  Bytes bytes = encodeContent(filled(kind.fresh, seed));
  bytes[*rc::gen::inRange<std::size_t>(0, bytes.size())] = value;
  ModelSet models = kind.fresh;
  if (decodeContent(bytes, models))
    RC_ASSERT(models == kind.fresh);
  else
    RC_ASSERT(encodeContent(models) == bytes);
}

RC_GTEST_PROP(ContentFormat, AnyBytesCanBeDecoded, (unsigned seed, Bytes bytes, bool withHeader)) {
  const std::vector<Kind> all = kinds();
  ModelSet models = all[seed % all.size()].fresh;
  const Bytes header = encodeContent(models);
  if (withHeader) bytes.insert(bytes.begin(), header.begin(), header.begin() + kHeaderSize);
  RC_ASSERT(decodeContent(bytes, models).has_value());
}

TEST(ContentFormat, RefusesABrokenName) {
  const Bytes good = encodeContent(emptySetFor(14));
  for (const Bytes& name : {Bytes{21}, Bytes{255}, Bytes{0, 'x'}, Bytes{2, 'a', 0}, Bytes{1, 'a', 'b'}}) {
    Bytes bytes = good;
    std::copy(name.begin(), name.end(), bytes.begin() + kHeaderSize);
    ModelSet models = emptySetFor(14);
    EXPECT_EQ(decodeContent(bytes, models), "a name in it is broken");
  }
}

TEST(ContentFormat, SaysWhyBytesAreRefused) {
  const auto why = [](const Bytes& bytes, unsigned expected) {
    ModelSet models = emptySetFor(expected);
    return decodeContent(bytes, models).value_or("accepted");
  };
  Bytes newer = encodeContent(emptySetFor(14));
  newer[4] = 2;
  EXPECT_EQ(why({}, 14), "its bytes are not in this editor's format");
  EXPECT_EQ(why({'B', 'D', 'A'}, 14), "its bytes are not in this editor's format");
  EXPECT_EQ(why({'B', 'D', 'A', 'C', 1}, 14), "it ends inside its header");
  EXPECT_EQ(why(newer, 14), "it has version 2 of the format, which is not known");
  EXPECT_EQ(why(encodeContent(emptySetFor(5)), 1), "it holds models of another kind");
  EXPECT_EQ(why(encodeContent(ModelSet()), 0), "it holds models of another kind");
  EXPECT_EQ(why({'B', 'D', 'A', 'C', 1, 0x10}, 14), "it has 6 bytes instead of 167");
}

}  // namespace
}  // namespace Editor
