// The joiner over 10 MB of voice-sized messages, beside memcpy of the same bytes and a byte-by-byte state machine that
// copies each message. Compare the three rows of one run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <vector>

#include "midi/StreamJoiner.h"
#include "support/NaiveJoiner.h"

namespace {

// The message lengths of one voice with eight elements, header and footer included: 79 bytes on average.
constexpr std::size_t kVoice[] = {12,  92,  50,  52,  48, 48, 80, 72, 98, 100, 100, 100, 100,
                                  100, 100, 100, 100, 86, 86, 86, 86, 86, 86,  86,  86,  12};

const std::vector<std::uint8_t>& voices() {
  static const std::vector<std::uint8_t> bytes = [] {
    std::vector<std::uint8_t> stream;
    std::uint32_t noise = 1;
    while (stream.size() < 10'000'000) {
      for (const std::size_t length : kVoice) {
        stream.push_back(0xF0);
        for (std::size_t i = 2; i < length; ++i) {
          noise = noise * 1664525u + 1013904223u;
          stream.push_back(static_cast<std::uint8_t>(noise >> 25));
        }
        stream.push_back(0xF7);
      }
    }
    return stream;
  }();
  return bytes;
}

// Uses of a message what every caller needs: where it is and how long.
struct Counter final : Editor::StreamJoiner::Receiver {
  void message(std::span<const std::uint8_t> bytes, std::uint64_t) override {
    benchmark::DoNotOptimize(bytes.data());
    delivered += bytes.size();
  }
  void dropped(std::uint64_t, std::uint64_t count, Editor::StreamJoiner::Reason) override { lost += count; }
  std::uint64_t delivered = 0;
  std::uint64_t lost = 0;
};

template <typename Joiner>
void join(benchmark::State& state, std::size_t chunk) {
  const std::span<const std::uint8_t> stream = voices();
  for (auto _ : state) {
    Counter counter;
    Joiner joiner(counter);
    for (std::size_t at = 0; at < stream.size(); at += chunk) {
      joiner.feed(stream.subspan(at, std::min(chunk, stream.size() - at)));
    }
    joiner.finish();
    if (counter.delivered != stream.size() || counter.lost != 0) state.SkipWithError("not every byte was delivered");
  }
  state.SetBytesProcessed(state.iterations() * std::ssize(stream));
}

void copy(benchmark::State& state) {
  const std::vector<std::uint8_t>& stream = voices();
  std::vector<std::uint8_t> target(stream.size());
  for (auto _ : state) {
    std::memcpy(target.data(), stream.data(), stream.size());
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * std::ssize(stream));
}

void joinWhole(benchmark::State& state) { join<Editor::StreamJoiner>(state, voices().size()); }
void joinChunks(benchmark::State& state) { join<Editor::StreamJoiner>(state, 4096); }
void joinNaively(benchmark::State& state) { join<Editor::NaiveJoiner>(state, voices().size()); }

BENCHMARK(copy)->Name("StreamJoiner/memcpy");
BENCHMARK(joinWhole)->Name("StreamJoiner/whole");
BENCHMARK(joinChunks)->Name("StreamJoiner/chunks of 4096");
BENCHMARK(joinNaively)->Name("StreamJoiner/naive");

}  // namespace
