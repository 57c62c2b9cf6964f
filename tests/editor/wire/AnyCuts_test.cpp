#include "editor/wire/AnyCuts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/wire/WireFixture.h"

namespace Editor::AnyCuts {
namespace {

#ifdef BDA_SAMPLED
constexpr std::uint64_t kStreams = 30;
#else
constexpr std::uint64_t kStreams = 500;
#endif

// Answers, requests, notes, clock, and messages that are broken, cut short or repeated, as they come.
Stream streamOf(std::uint64_t seed) {
  constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
  constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};
  static const std::vector<std::vector<Bytes>> kPieces{
      unitOf(kVoice, BDA::List::normalVoice, 1),
      unitOf(kMaster, BDA::List::master, 1),
      unitOf(kMaster, BDA::List::master, 2),
      {blockDump({0x00, 0x00, 0x00}, 1)},
      {blockDump({0x00, 0x00, 0x00}, 2)},
      {dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 0})},
      {request(kVoice)},
      {request(kMaster)},
      {dump(kVoice)},
      {{0x90, 0x40, 0x40}},
      {{0xFE}},
      {{0xF0, 0x43, 0x10, 0xF7}},
  };
  std::minstd_rand random(static_cast<std::uint_fast32_t>(seed + 1));
  Stream stream{{}, seed};
  std::size_t pieces[12];  // all of them twice: the second time they may be what is asked for
  for (std::size_t piece = 0; piece < std::size(pieces); ++piece)
    pieces[piece] = piece < std::size(pieces) / 2 ? random() % kPieces.size() : pieces[piece - std::size(pieces) / 2];
  for (const std::size_t piece : pieces)
    for (Bytes message : kPieces[piece]) {
      const auto happens = [&] { return random() % 60 == 0; };
      if (happens()) message[random() % message.size()] ^= std::uint8_t(1U << random() % 8);
      if (happens()) message.resize(random() % message.size());
      const int times = happens() ? 2 : 1;
      for (int time = 0; time < times; ++time) stream.bytes.insert(stream.bytes.end(), message.begin(), message.end());
      if (happens()) stream.bytes.insert(stream.bytes.end() - std::ptrdiff_t(message.size() / 2), 0xF8);
    }
  return stream;
}

TEST(AnyCuts, WhateverTheyAreMessagesAndResultsAreTheSame) {
  for (std::uint64_t seed = 0; seed < kStreams; ++seed) {
    const Stream stream = streamOf(seed);
    for (const auto& [name, end] : kEnds) {
      const Log whole = end(stream, std::nullopt);
      for (std::uint64_t cuts = 1; cuts < 3; ++cuts)
        ASSERT_EQ(end(stream, cuts), whole) << name << ", stream " << seed << ", cuts " << cuts;
    }
  }
}

// Or there would be nothing to compare.
TEST(AnyCuts, EveryOutcomeIsAmongTheResults) {
  std::string all;
  for (std::uint64_t seed = 0; seed < 200; ++seed)
    for (const auto& [name, end] : kEnds)
      for (const std::string& line : end(streamOf(seed), std::nullopt)) all += line + "\n";
  for (const char* const word :
       {"state 0", "state 1", "state 2", "tries 2", "incomplete", "broken", " equal", " different", " unanswered",
        " sent", "answered", "stored", "refused", "message without end"})
    EXPECT_THAT(all, testing::HasSubstr(word));
}

}  // namespace
}  // namespace Editor::AnyCuts
