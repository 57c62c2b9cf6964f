// Pace to the byte: what arrives when, by the clock of a loop-back port.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "wire/LoopPort.h"
#include "wire/Send.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

// Writes down when each byte arrives.
struct Arrivals final : WireEnd {
  void receive(std::span<const std::uint8_t> bytes, WireTime now) override {
    times.insert(times.end(), bytes.size(), now);
  }
  void pass(WireTime /*now*/) override {}
  std::optional<WireTime> due() const override { return std::nullopt; }
  bool isDone() const override { return false; }

  std::vector<WireTime> times;
};

// The most that arrives within any second.
std::size_t densest(const std::vector<WireTime>& times) {
  std::size_t most = 0;
  for (std::size_t first = 0, end = 0; first < times.size(); ++first) {
    while (end < times.size() && times[end] < times[first] + 1s) ++end;
    most = std::max(most, end - first);
  }
  return most;
}

// Messages of all sizes, for two and a half seconds at least.
struct Load {
  explicit Load(Pace pace) {
    constexpr std::size_t kSizes[] = {9, 12, 1, 90, 2'000, 31, 32, 33, 5, 500};
    const std::size_t seconds = std::max<std::size_t>(std::size_t(pace.bytesPerSecond) * 5 / 2, 60);
    for (std::size_t i = 0; bytes < seconds; ++i) {
      const std::size_t size = std::min(kSizes[i % std::size(kSizes)], seconds - bytes);
      longest = std::max(longest, size);
      units.push_back({std::nullopt, {Bytes(size, std::uint8_t(i))}, {}});
      starts.push_back(duration);
      duration += pace.timeOf(size);
      bytes += size;
    }
  }

  std::vector<Send::Unit> units;  // a message each
  std::vector<WireTime> starts;
  WireTime duration{};
  std::size_t bytes = 0;
  std::size_t longest = 0;
};

class PacerLoop : public testing::TestWithParam<std::uint64_t> {
 protected:
  // At a port that takes so many bytes at once, at most.
  void send(Pacer::Takes takes, std::size_t chunk) {
    Send end(load.units, {}, Pacer(pace, {}, takes), [](const SentUnit& /*unit*/) {});
    LoopPort port(arrivals, chunk);
    run(end, port, [] { return false; });
    EXPECT_EQ(port.now(), load.duration) << "when the last byte has passed";
    ASSERT_EQ(arrivals.times.size(), load.bytes);
  }

  const Pace pace{GetParam()};
  const Load load{pace};
  Arrivals arrivals;
};

}  // namespace

TEST_P(PacerLoop, eachByteGoesWhenItsPieceMayAndNoSecondHasMore) {
  constexpr std::size_t kPiece = 32;
  for (const std::size_t chunk : {4'096U, 7U}) {
    arrivals.times.clear();
    send(Pacer::Takes::bytes, chunk);
    EXPECT_LE(densest(arrivals.times), pace.bytesPerSecond + 64);
    std::size_t at = 0;
    for (std::size_t unit = 0; unit < load.units.size(); ++unit)
      for (std::size_t byte = 0; byte < load.units[unit].messages[0].size(); ++byte, ++at) {
        const WireTime time = arrivals.times[at] - load.starts[unit];
        ASSERT_LE(time, pace.timeOf(byte)) << at;
        ASSERT_GT(time + pace.timeOf(kPiece), pace.timeOf(byte)) << at;
      }
  }
}

TEST_P(PacerLoop, aWholeMessageGoesWhenTheOneBeforeWouldHavePassed) {
  send(Pacer::Takes::messages, 4'096);
  std::size_t at = 0;
  for (std::size_t unit = 0; unit < load.units.size(); ++unit)
    for (std::size_t byte = 0; byte < load.units[unit].messages[0].size(); ++byte, ++at)
      ASSERT_EQ(arrivals.times[at], load.starts[unit]) << at;
  EXPECT_LE(densest(arrivals.times), pace.bytesPerSecond + load.longest);
}

INSTANTIATE_TEST_SUITE_P(Paces, PacerLoop,
                         testing::Values(kCablePace.bytesPerSecond, kUsbPace.bytesPerSecond, 1, 12'345),
                         [](const auto& pace) { return std::to_string(pace.param); });

}  // namespace Editor
