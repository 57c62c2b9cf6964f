#include "wire/Pacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include <rapidcheck/gtest.h>

namespace Editor {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

// A wire with a clock of its own: what went out, and when.
struct Wire {
  std::vector<std::pair<WireTime, std::size_t>> pieces;
  Bytes bytes;

  void put(std::span<const std::uint8_t> piece, WireTime now) {
    pieces.emplace_back(now, piece.size());
    bytes.insert(bytes.end(), piece.begin(), piece.end());
  }
  // The most that went out within any second.
  std::size_t densest() const {
    std::size_t most = 0;
    for (auto first = pieces.begin(); first != pieces.end(); ++first) {
      std::size_t sum = 0;
      for (auto piece = first; piece != pieces.end() && piece->first < first->first + 1s; ++piece) sum += piece->second;
      most = std::max(most, sum);
    }
    return most;
  }
};

// Sends all, called when the pacer says or so much later.
Wire drain(
    Pacer& pacer, const std::function<WireTime()>& lateness = [] { return WireTime(); }) {
  Wire wire;
  WireTime now{};
  while (const std::optional<WireTime> due = pacer.due()) {
    now = std::max(now, *due + lateness());
    const std::span<const std::uint8_t> piece = pacer.take(now);
    EXPECT_FALSE(piece.empty());
    wire.put(piece, now);
    pacer.sent(piece.size());
  }
  return wire;
}

Bytes message(std::size_t size, std::uint8_t byte) { return Bytes(size, byte); }

TEST(Pace, IsANameOrANumber) {
  EXPECT_EQ(parsePace("cable"), Pace{3'125});
  EXPECT_EQ(parsePace("usb"), Pace{1'000'000});
  EXPECT_EQ(parsePace("none"), Pace{0});
  EXPECT_EQ(parsePace("1"), Pace{1});
  for (const char* wrong : {"", "0", "-1", "+1", "1.5", "cables", "3125 ", "99999999999999999999", "2000000000000"})
    EXPECT_EQ(parsePace(wrong), std::nullopt) << wrong;
}

TEST(Pace, SaysHowLongBytesTake) {
  EXPECT_EQ(kCablePace.timeOf(1), 320us);
  EXPECT_EQ(kCablePace.timeOf(3'125), 1s);
  EXPECT_EQ(kNoPace.timeOf(1'000'000), 0s);
  EXPECT_EQ((Pace{3}.timeOf(1)), 333'334us) << "never too fast";
  EXPECT_EQ((Pace{1}.timeOf(100'000'000'000)), 100'000'000'000s);
}

TEST(Pacer, APunctualSenderTakesTheTimeOfTheWire) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::bytes);
  for (int i = 0; i < 10; ++i) pacer.push({message(1'000, std::uint8_t(i))}, 0s);
  EXPECT_EQ(pacer.duration(), 3'200ms);
  const Wire wire = drain(pacer);
  EXPECT_EQ(pacer.end(), 3'200ms);
  EXPECT_EQ(wire.bytes.size(), 10'000U);
  EXPECT_LE(wire.densest(), 3'125U + 64U);
  std::size_t before = 0;
  for (const auto& [time, size] : wire.pieces) {
    EXPECT_GE(time, kCablePace.timeOf(before)) << before;
    before += size;
  }
}

TEST(Pacer, AByteAtATimeWhereTheWireIsSlow) {
  Pacer pacer(Pace{1}, {}, Pacer::Takes::bytes);
  pacer.push({{0xF0, 0x01, 0xF7}}, 0s);
  const Wire wire = drain(pacer);
  EXPECT_EQ(wire.pieces, (std::vector<std::pair<WireTime, std::size_t>>{{0s, 1}, {1s, 1}, {2s, 1}}));
  EXPECT_EQ(pacer.end(), 3s);
}

TEST(Pacer, APortThatTakesWholeMessagesGetsTheNextWhenTheOneBeforeHasPassed) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::messages);
  pacer.push({message(3'125, 1)}, 0s);
  pacer.push({message(100, 2)}, 0s);
  const Wire wire = drain(pacer);
  EXPECT_EQ(wire.pieces, (std::vector<std::pair<WireTime, std::size_t>>{{0s, 3'125}, {1s, 100}}));
}

TEST(Pacer, PausesAreKeptBehindMessagesAndUnits) {
  Pacer pacer(Pace{1'000}, {20ms, 300ms}, Pacer::Takes::messages);
  pacer.push({message(100, 1)}, 0s);
  pacer.push({message(100, 2), true}, 0s);
  pacer.push({message(100, 3), true}, 0s);
  EXPECT_EQ(pacer.duration(), 100ms + 20ms + 100ms + 320ms + 100ms);
  const Wire wire = drain(pacer);
  EXPECT_EQ(wire.pieces, (std::vector<std::pair<WireTime, std::size_t>>{{0s, 100}, {120ms, 100}, {540ms, 100}}));
  EXPECT_EQ(pacer.end(), 640ms) << "without the pauses behind the last";
  pacer.push({message(1, 4)}, 0s);
  EXPECT_EQ(pacer.due(), 960ms) << "which keep the next one waiting";
}

TEST(Pacer, AMessageThatStandsStillIsOne) {
  Pacer pacer(Pace{100}, {20ms, 300ms}, Pacer::Takes::bytes);
  pacer.push({.bytes = message(4, 1), .stall = Pacer::Stall{2, 700ms}}, 0s);
  pacer.push({message(1, 2)}, 0s);
  EXPECT_EQ(pacer.duration(), 40ms + 700ms + 20ms + 10ms);
  EXPECT_FALSE(pacer.take(0s).empty());
  pacer.sent(1);
  EXPECT_EQ(pacer.take(10ms).size(), 1u);
  pacer.sent(1);
  EXPECT_TRUE(pacer.take(719ms).empty());
  EXPECT_FALSE(pacer.isBetweenMessages());
  pacer.forgetWaiting();
  EXPECT_EQ(pacer.waiting(), 1u) << "what has begun has an end";
  EXPECT_EQ(drain(pacer).pieces, (std::vector<std::pair<WireTime, std::size_t>>{{720ms, 1}, {730ms, 1}}));
  EXPECT_EQ(pacer.end(), 740ms);
}

TEST(Pacer, AStallEndsAPieceAndBeginsAnother) {
  Pacer pacer(kNoPace, {}, Pacer::Takes::bytes);
  pacer.push({.bytes = message(10, 1), .stall = Pacer::Stall{7, 1s}}, 0s);
  pacer.push({.bytes = message(3, 2), .stall = Pacer::Stall{5, 1s}}, 0s);
  EXPECT_EQ(drain(pacer).pieces, (std::vector<std::pair<WireTime, std::size_t>>{{0s, 7}, {1s, 3}, {1s, 3}}));
  Pacer cable(kCablePace, {}, Pacer::Takes::bytes);
  cable.push({.bytes = message(3'125, 1), .stall = Pacer::Stall{50, 1s}}, 0s);
  const Wire wire = drain(cable);
  EXPECT_EQ(wire.bytes.size(), 3'125u);
  EXPECT_EQ(cable.end(), 2s);
}

TEST(Pacer, WhereMessagesAreTakenAsAWholeTheyStandStillBefore) {
  Pacer pacer(Pace{100}, {}, Pacer::Takes::messages);
  pacer.push({.bytes = message(4, 1), .stall = Pacer::Stall{2, 700ms}}, 0s);
  EXPECT_EQ(drain(pacer).pieces, (std::vector<std::pair<WireTime, std::size_t>>{{700ms, 4}}));
}

TEST(Pacer, APauseCanBeSkipped) {
  Pacer pacer(Pace{1'000}, {20ms, 300ms}, Pacer::Takes::messages);
  pacer.push({message(100, 1), true}, 0s);
  drain(pacer);
  pacer.skipPause();
  pacer.push({message(1, 2)}, 0s);
  EXPECT_EQ(pacer.due(), 100ms);
  EXPECT_EQ(pacer.waiting(), 1u);
}

TEST(Pacer, WithoutAPaceAllGoesAtOnce) {
  Pacer pacer(kNoPace, {}, Pacer::Takes::bytes);
  pacer.push({message(100'000, 1)}, 0s);
  pacer.push({message(5, 2)}, 0s);
  const Wire wire = drain(pacer);
  EXPECT_EQ(wire.pieces, (std::vector<std::pair<WireTime, std::size_t>>{{0s, 100'000}, {0s, 5}}));
}

TEST(Pacer, APortThatTakesFewerBytesGetsTheRestAtOnce) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::bytes);
  pacer.push({message(40, 1)}, 5s);
  EXPECT_EQ(pacer.take(5s).size(), 31U);
  pacer.sent(10);
  EXPECT_FALSE(pacer.isBetweenMessages());
  EXPECT_EQ(pacer.due(), 5s);
  EXPECT_EQ(pacer.take(5s).size(), 21U);
  pacer.sent(21);
  EXPECT_EQ(pacer.due(), 5s + kCablePace.timeOf(31));
  EXPECT_TRUE(pacer.take(5s).empty());
  EXPECT_EQ(pacer.take(6s).size(), 9U);
  pacer.sent(9);
  EXPECT_TRUE(pacer.isBetweenMessages());
  EXPECT_EQ(pacer.due(), std::nullopt);
}

TEST(Pacer, WhatWaitsCanBeForgottenButNotWhatHasBegun) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::bytes);
  for (int i = 0; i < 3; ++i) pacer.push({message(40, std::uint8_t(i))}, 0s);
  pacer.sent(pacer.take(0s).size());
  pacer.forgetWaiting();
  EXPECT_EQ(drain(pacer).bytes, message(9, 0));
  pacer.push({message(2, 7)}, 0s);
  EXPECT_EQ(pacer.take(1s).size(), 2U) << "of which the port takes none";
  pacer.forgetWaiting();
  EXPECT_EQ(pacer.due(), std::nullopt);
  pacer.push({message(2, 8)}, 5s);
  EXPECT_EQ(pacer.due(), 5s);
}

TEST(Pacer, AMessageBeginsWhenTheOneBeforeHasPassedOrWhenItComes) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::messages);
  pacer.push({message(3'125, 1)}, 0s);
  pacer.sent(pacer.take(0s).size());
  pacer.push({message(1, 2)}, 500ms);
  EXPECT_EQ(pacer.due(), 1s);
  EXPECT_TRUE(pacer.take(999'999us).empty());
  pacer.sent(pacer.take(1s).size());
  pacer.push({message(1, 3)}, 20s);
  EXPECT_EQ(pacer.due(), 20s);
  pacer.sent(pacer.take(20s).size());
  EXPECT_EQ(pacer.end(), 20s + 320us);
}

TEST(Pacer, ALittleLatenessIsMadeUpForMoreIsNot) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::messages);
  for (std::uint8_t i = 0; i < 3; ++i) pacer.push({message(3'125, i)}, 0s);
  pacer.sent(pacer.take(10ms).size());
  EXPECT_EQ(pacer.due(), 1s);
  pacer.sent(pacer.take(2s).size());
  EXPECT_EQ(pacer.due(), 3s - kCablePace.timeOf(32));
}

RC_GTEST_PROP(Pacer, NoSecondHasMoreThanThePaceAnd64BytesHoweverLateTheSenderIs, ()) {
  const Pace pace{*rc::gen::inRange<std::uint64_t>(1, 20'000)};
  Pacer pacer(pace, {}, Pacer::Takes::bytes);
  std::size_t all = 0;
  for (const std::size_t size : *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(1, 600))) {
    pacer.push({message(size, 1)}, 0s);
    all += size;
  }
  const std::int64_t latest = *rc::gen::inRange<std::int64_t>(1, 50'000);
  std::uint64_t state = *rc::gen::arbitrary<std::uint64_t>();
  const Wire wire = drain(pacer, [&] {
    state = state * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
    return WireTime(std::int64_t(state >> 33U) % latest);
  });
  RC_ASSERT(wire.bytes.size() == all);
  RC_ASSERT(wire.densest() <= pace.bytesPerSecond + 64);
}

TEST(Pacer, SendsOneMessageLaterOrSlower) {
  Pacer pacer(kCablePace, {}, Pacer::Takes::messages);
  pacer.push({message(3'125, 1)}, 0s);
  pacer.push({.bytes = message(3'125, 2), .delay = 500ms}, 0s);
  pacer.push({.bytes = message(100, 3), .pace = Pace{100}}, 0s);
  pacer.push({message(1, 4)}, 0s);
  EXPECT_EQ(pacer.duration(), 3'500ms + 320us);
  const Wire wire = drain(pacer);
  ASSERT_EQ(wire.pieces.size(), 4u);
  EXPECT_EQ(wire.pieces[1].first, 1'500ms);
  EXPECT_EQ(wire.pieces[2].first, 2'500ms);
  EXPECT_EQ(wire.pieces[3].first, 3'500ms);
}

}  // namespace
}  // namespace Editor
