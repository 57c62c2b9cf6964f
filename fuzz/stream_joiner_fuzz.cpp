// Arbitrary bytes in arbitrary chunks: the joiner delivers and drops what the plain state machine does, and every byte
// fed is accounted for. The first byte of the input chooses the chunk sizes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "midi/StreamJoiner.h"
#include "require.h"
#include "support/NaiveJoiner.h"

namespace {

using Editor::NaiveJoiner;
using Editor::StreamJoiner;

struct Recorder : StreamJoiner::Receiver {
  using Message = std::pair<std::uint64_t, std::vector<std::uint8_t>>;
  using Drop = std::tuple<std::uint64_t, std::uint64_t, StreamJoiner::Reason>;

  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
    messages.emplace_back(offset, std::vector(bytes.begin(), bytes.end()));
    accounted += bytes.size();
  }

  // Runs of single bytes are taken apart: the plain machine reports each byte on its own.
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    accounted += count;
    if (reason == StreamJoiner::Reason::RealTime || reason == StreamJoiner::Reason::Stray) {
      for (std::uint64_t i = 0; i < count; ++i) drops.emplace_back(offset + i, 1, reason);
    } else {
      drops.emplace_back(offset, count, reason);
    }
  }

  std::vector<Message> messages;
  std::vector<Drop> drops;
  std::uint64_t accounted = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t seed = data[0];
  const std::span<const std::uint8_t> stream(data + 1, size - 1);

  Recorder expected;
  NaiveJoiner naive(expected);
  naive.feed(stream);
  naive.finish();

  Recorder actual;
  StreamJoiner joiner(actual);
  for (std::size_t at = 0, step = seed; at < stream.size(); ++step) {
    // Chunks of 1 to 16 bytes of changing size, or all at once.
    const std::size_t chunk = seed == 0 ? stream.size() : std::min(stream.size() - at, 1 + step * 7 % 16);
    joiner.feed(stream.subspan(at, chunk));
    at += chunk;
  }
  joiner.finish();

  std::sort(expected.drops.begin(), expected.drops.end());
  std::sort(actual.drops.begin(), actual.drops.end());
  require(actual.messages == expected.messages, "other messages than the plain state machine");
  require(actual.drops == expected.drops, "other dropped bytes than the plain state machine");
  require(actual.accounted == stream.size(), "bytes lost or counted twice");
  return 0;
}
