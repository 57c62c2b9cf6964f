#include "midi/StreamJoiner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include "midi/Hex.h"
#include "support/NaiveJoiner.h"

namespace Editor {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Reason = StreamJoiner::Reason;

Bytes bytes(const char* hex) { return parseHex(hex).value(); }

struct Event {
  std::uint64_t offset;
  Bytes message;          // empty: dropped
  std::uint64_t dropped;  // 0: delivered
  Reason reason;

  friend bool operator==(const Event&, const Event&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Event& event) {
    out << "at " << event.offset << ": ";
    if (event.dropped == 0) return out << formatHex(event.message);
    return out << event.dropped << " dropped, " << describe(event.reason);
  }
};

Event delivered(std::uint64_t offset, const char* hex) { return {offset, bytes(hex), 0, Reason::Stray}; }
Event dropped(std::uint64_t offset, std::uint64_t count, Reason reason) { return {offset, {}, count, reason}; }

// Keeps everything that a joiner reports, in order.
struct Recorder : StreamJoiner::Receiver {
  void message(std::span<const std::uint8_t> span, std::uint64_t offset) override {
    events.push_back({offset, Bytes(span.begin(), span.end()), 0, Reason::Stray});
    accounted += span.size();
  }
  void dropped(std::uint64_t offset, std::uint64_t count, Reason reason) override {
    events.push_back({offset, {}, count, reason});
    accounted += count;
  }

  std::vector<Event> events;
  std::uint64_t accounted = 0;
};

std::vector<Event> join(const std::vector<Bytes>& chunks) {
  Recorder recorder;
  StreamJoiner joiner(recorder);
  std::uint64_t fed = 0;
  for (const Bytes& chunk : chunks) {
    joiner.feed(chunk);
    fed += chunk.size();
  }
  joiner.finish();
  EXPECT_EQ(recorder.accounted, fed);
  return recorder.events;
}

std::vector<Event> join(const char* hex) { return join({bytes(hex)}); }

// Puts the single bytes that the plain state machine drops together into runs.
struct RunRecorder : Recorder {
  void dropped(std::uint64_t offset, std::uint64_t count, Reason reason) override {
    const bool inRun = reason == Reason::RealTime || reason == Reason::Stray;
    if (inRun && !events.empty() && events.back().dropped != 0 && events.back().reason == reason &&
        events.back().offset + events.back().dropped == offset) {
      events.back().dropped += count;
    } else {
      Recorder::dropped(offset, count, reason);
    }
  }
};

std::vector<Event> joinNaively(const Bytes& stream) {
  RunRecorder recorder;
  NaiveJoiner joiner(recorder);
  joiner.feed(stream);
  joiner.finish();
  return recorder.events;
}

using Events = std::vector<Event>;

TEST(StreamJoiner, DeliversMessagesWithTheirOffsets) {
  EXPECT_EQ(join("F0 7D 01 F7 F0 F7 F0 02 F7"),
            (Events{delivered(0, "F0 7D 01 F7"), delivered(4, "F0 F7"), delivered(6, "F0 02 F7")}));
}

TEST(StreamJoiner, DropsAndCountsStrayBytesBetweenMessages) {
  EXPECT_EQ(join("01 F7 02 F0 F7 90 40 40"),
            (Events{dropped(0, 3, Reason::Stray), delivered(3, "F0 F7"), dropped(5, 3, Reason::Stray)}));
}

TEST(StreamJoiner, TakesRealTimeBytesOutOfAMessageWithoutEndingIt) {
  EXPECT_EQ(join("F0 F8 01 FE FF 02 F7 F8"), (Events{dropped(1, 1, Reason::RealTime), dropped(3, 2, Reason::RealTime),
                                                     delivered(0, "F0 01 02 F7"), dropped(7, 1, Reason::RealTime)}));
}

TEST(StreamJoiner, EveryRealTimeByteAndNoOtherLeavesAMessageWhole) {
  for (int status = 0x80; status <= 0xFF; ++status) {
    const auto byte = static_cast<std::uint8_t>(status);
    const Events events = join({Bytes{0xF0, 0x01, byte, 0x02, 0xF7}});
    if (status >= 0xF8) {
      EXPECT_EQ(events, (Events{dropped(2, 1, Reason::RealTime), delivered(0, "F0 01 02 F7")})) << status;
    } else if (status == 0xF7) {
      EXPECT_EQ(events, (Events{delivered(0, "F0 01 F7"), dropped(3, 2, Reason::Stray)}));
    } else if (status == 0xF0) {
      EXPECT_EQ(events, (Events{dropped(0, 2, Reason::Abandoned), delivered(2, "F0 02 F7")}));
    } else {
      EXPECT_EQ(events, (Events{dropped(0, 2, Reason::Abandoned), dropped(2, 3, Reason::Stray)})) << status;
    }
  }
}

TEST(StreamJoiner, NeverMergesAnAbandonedMessageIntoTheNext) {
  EXPECT_EQ(join("F0 01 02 F0 03 90 04 F0 05 F7"),
            (Events{dropped(0, 3, Reason::Abandoned), dropped(3, 2, Reason::Abandoned), dropped(5, 2, Reason::Stray),
                    delivered(7, "F0 05 F7")}));
}

TEST(StreamJoiner, CountsAnAbandonedMessageWithoutTheRealTimeBytesInside) {
  EXPECT_EQ(join("F0 01 F8 02 F0 F7"),
            (Events{dropped(2, 1, Reason::RealTime), dropped(0, 3, Reason::Abandoned), delivered(4, "F0 F7")}));
}

TEST(StreamJoiner, ReportsTheMessageThatIsOpenAtTheEnd) {
  EXPECT_EQ(join("F0 F7 F0 01 02"), (Events{delivered(0, "F0 F7"), dropped(2, 3, Reason::Unfinished)}));
  EXPECT_EQ(join("F0"), (Events{dropped(0, 1, Reason::Unfinished)}));
  EXPECT_EQ(join(""), Events{});
}

TEST(StreamJoiner, ReportsWhatIsLostBehindWhatItHolds) {
  Recorder recorder;
  StreamJoiner joiner(recorder);
  joiner.feed(bytes("01 F0 02"));
  joiner.lose(0);
  joiner.lose(10);
  joiner.feed(bytes("F0 F7"));
  EXPECT_EQ(recorder.events, (Events{dropped(0, 1, Reason::Stray), dropped(1, 2, Reason::Unfinished),
                                     dropped(3, 10, Reason::Overrun), delivered(13, "F0 F7")}));
}

TEST(StreamJoiner, StartsAnewAfterTheEnd) {
  Recorder recorder;
  StreamJoiner joiner(recorder);
  joiner.feed(bytes("F0 01"));
  joiner.finish();
  joiner.feed(bytes("02 F0 F7"));
  joiner.finish();
  joiner.finish();
  EXPECT_EQ(recorder.events,
            (Events{dropped(0, 2, Reason::Unfinished), dropped(2, 1, Reason::Stray), delivered(3, "F0 F7")}));
}

TEST(StreamJoiner, GivesOffsetsOfTheFileWhenTheStreamLiesScatteredInOne) {
  Recorder recorder;
  StreamJoiner joiner(recorder);
  joiner.skipTo(20);
  joiner.feed(bytes("01"));
  joiner.skipTo(30);
  joiner.feed(bytes("02 F0 03"));
  joiner.skipTo(40);
  joiner.feed(bytes("04 F7"));
  EXPECT_EQ(recorder.events,
            (Events{dropped(20, 1, Reason::Stray), dropped(30, 1, Reason::Stray), delivered(31, "F0 03 04 F7")}));
}

TEST(StreamJoiner, HandsOutAWholeMessageInPlace) {
  struct Place : Recorder {
    void message(std::span<const std::uint8_t> span, std::uint64_t) override { data = span.data(); }
    const std::uint8_t* data = nullptr;
  } place;
  StreamJoiner joiner(place);
  const Bytes first = bytes("F8 F0 01");
  const Bytes second = bytes("02 F7 F0 03 F7");
  joiner.feed(first);
  joiner.feed(second);
  EXPECT_EQ(place.data, second.data() + 2);
}

TEST(StreamJoiner, SetsNoLimitToALength) {
  for (const std::size_t length : {100u, 16'395u, 5'000'000u}) {
    Bytes stream(length, 0x55);
    stream.front() = 0xF0;
    stream.back() = 0xF7;
    EXPECT_EQ(join({stream}), (Events{{0, stream, 0, Reason::Stray}}));
    const auto middle = stream.begin() + static_cast<std::ptrdiff_t>(length / 2);
    EXPECT_EQ(join({Bytes(stream.begin(), middle), Bytes(middle, stream.end())}),
              (Events{{0, stream, 0, Reason::Stray}}));
  }
}

TEST(StreamJoiner, FindsAStatusByteAtEveryDistance) {
  for (std::size_t data = 0; data < 70; ++data) {
    for (const std::uint8_t last : bytes("F7 F8 80 F0 EF")) {
      Bytes stream(data + 1, 0x7F);
      stream.front() = 0xF0;
      stream.push_back(last);
      stream.insert(stream.end(), {0x00, 0xF7});
      EXPECT_EQ(join({stream}), joinNaively(stream)) << formatHex(stream);
    }
  }
}

constexpr const char* kTrickyStreams[] = {
    "F0 7D 00 01 02 F7 F0 7D 03 F7",
    "F8 F8 F0 F8 01 F8 F8 F7 F8",
    "F0 F0 F0 F7 F7 F7 F0 F7",
    "F0 01 90 02 F7 F0 03 F7",
    "F0 01 F8 90 F8 02 F8 F7 F0 F8 F0 F8 F7",
    "00 01 F8 02 F1 03 F0 04 F2 05 06 F0 07 F6 F0 08 F7 09",
    "F0 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 F7 F0 00 01 02 03 04 05 06 F7",
    "F0 01 02 F8",
    "F0 01 02 F0",
    "F7 F8 F7 00 FF",
};

TEST(StreamJoiner, GivesTheSameForEverySplitPoint) {
  for (const char* hex : kTrickyStreams) {
    const Bytes stream = bytes(hex);
    const Events expected = joinNaively(stream);
    for (std::ptrdiff_t at = 0; at <= std::ssize(stream); ++at) {
      const auto split = stream.begin() + at;
      EXPECT_EQ(join({Bytes(stream.begin(), split), Bytes(split, stream.end())}), expected) << hex << " at " << at;
    }
  }
}

TEST(StreamJoiner, GivesTheSameByteByByte) {
  for (const char* hex : kTrickyStreams) {
    const Bytes stream = bytes(hex);
    std::vector<Bytes> chunks;
    for (const std::uint8_t byte : stream) {
      chunks.push_back({byte});
      chunks.emplace_back();
    }
    EXPECT_EQ(join(chunks), joinNaively(stream)) << hex;
  }
}

// Chunks of a stream: long runs of data, every status byte, and those that matter most often of all.
rc::Gen<Bytes> chunk() {
  const auto data = rc::gen::inRange<std::uint8_t>(0x00, 0x80);
  const auto status =
      rc::gen::map(rc::gen::inRange(0x80, 0x100), [](int byte) { return static_cast<std::uint8_t>(byte); });
  const auto frame = rc::gen::element<std::uint8_t>(0xF0, 0xF7, 0xF8);
  return rc::gen::container<Bytes>(rc::gen::weightedOneOf<std::uint8_t>({{12, data}, {1, status}, {3, frame}}));
}

RC_GTEST_PROP(StreamJoiner, EqualsThePlainStateMachineOnAnyStreamInAnyChunks, ()) {
  const auto chunks = *rc::gen::container<std::vector<Bytes>>(chunk());
  Bytes stream;
  for (const Bytes& part : chunks) stream.insert(stream.end(), part.begin(), part.end());
  const Events expected = joinNaively(stream);
  RC_ASSERT(join(chunks) == expected);
  RC_ASSERT(join({stream}) == expected);
}

// However the stream is cut: what is too long is one piece, and what follows it is as ever.
TEST(StreamJoiner, AMessageThatIsLongerThanAnyMayBeIsDroppedWhole) {
  constexpr std::size_t kLongest = 5;
  const Bytes stream = bytes("F0 01 02 03 F7 F0 01 02 F8 03 04 F7 05 F0 01 02 03 04 05 F0 01 F7 F0 01 02 03 04 05 06");
  const std::vector<Event> expected{delivered(0, "F0 01 02 03 F7"),  dropped(8, 1, Reason::RealTime),
                                    dropped(5, 6, Reason::TooLong),  dropped(12, 1, Reason::Stray),
                                    dropped(13, 6, Reason::TooLong), delivered(19, "F0 01 F7"),
                                    dropped(22, 7, Reason::TooLong)};
  for (std::size_t size = 1; size <= stream.size(); ++size) {
    Recorder recorder;
    StreamJoiner joiner(recorder, kLongest);
    for (std::size_t at = 0; at < stream.size(); at += size)
      joiner.feed(std::span(stream).subspan(at, std::min(size, stream.size() - at)));
    joiner.finish();
    EXPECT_EQ(recorder.events, expected) << size;
  }
}

}  // namespace
}  // namespace Editor
