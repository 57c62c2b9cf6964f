#pragma once

// One stream at an end of a wire, cut into chunks in any way: what the end makes of it.

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "midi/Hex.h"
#include "wire/Fetch.h"
#include "wire/Instrument.h"
#include "wire/Recording.h"
#include "wire/SendPlan.h"

namespace Editor::AnyCuts {

using Log = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

// A stream, and when what of it arrives: between two moments the end is handed bytes only, at each it is asked what it
// sends, and time goes on.
struct Stream {
  Bytes bytes;
  std::uint64_t moments = 0;  // another number, other ones
};

// How the bytes between two moments are cut; nothing: not at all.
using Cuts = std::optional<std::uint64_t>;

inline void sendAll(WireEnd& end, WireTime now, Log& log) {
  for (std::span<const std::uint8_t> bytes = end.toSend(now); !bytes.empty(); bytes = end.toSend(now)) {
    log.push_back("sends " + formatHex(bytes));
    end.sent(bytes.size());
  }
}

inline void play(WireEnd& end, const Stream& stream, Cuts cuts, Log& log) {
  constexpr WireTime kSteps[] = {WireTime(1), std::chrono::milliseconds(3), std::chrono::milliseconds(300),
                                 std::chrono::seconds(3)};
  constexpr unsigned kMostMoments = 1'000;
  std::minstd_rand moments(static_cast<std::uint_fast32_t>(stream.moments));
  std::minstd_rand chunks(static_cast<std::uint_fast32_t>(cuts.value_or(0)));
  std::span<const std::uint8_t> left = stream.bytes;
  WireTime now{};
  end.pass(now);
  sendAll(end, now, log);
  while (!left.empty() && !end.isDone()) {
    std::span<const std::uint8_t> part = left.first(std::min<std::size_t>(left.size(), 1 + moments() % 400));
    left = left.subspan(part.size());
    while (!part.empty()) {
      const std::size_t chunk = cuts ? std::min<std::size_t>(part.size(), 1 + chunks() % 40) : part.size();
      end.receive(part.first(chunk), now);
      part = part.subspan(chunk);
    }
    now += kSteps[moments() % std::size(kSteps)];
    end.pass(now);
    sendAll(end, now, log);
  }
  for (unsigned i = 0; i < kMostMoments && !end.isDone() && end.due(); ++i) {
    now = std::max(now, *end.due());
    end.pass(now);
    sendAll(end, now, log);
  }
  log.push_back(end.isDone() ? "done" : "not done");
}

inline Pacer pacer() { return {kNoPace, {}, Pacer::Takes::bytes}; }
constexpr AskingTerms kTerms{0, std::chrono::seconds(1), 1};

// Up to four that dumps of the stream are for, or one that none is for.
inline std::vector<BulkAddress> addressesIn(const Bytes& stream) {
  struct Finder final : StreamJoiner::Receiver {
    void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override {
      const Reading reading = readMessage(bytes);
      if (found.size() < 4 && reading.kind == Reading::Kind::dump && isAnsweredByUnit(*reading.address) &&
          std::ranges::find(found, *reading.address) == found.end())
        found.push_back(*reading.address);
    }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
    std::vector<BulkAddress> found;
  } finder;
  StreamJoiner(finder).feed(stream);
  return finder.found.empty() ? std::vector{BulkAddress{0x0E, 0x0A, 0x05}} : finder.found;
}

inline Log fetched(const Stream& stream, Cuts cuts) {
  Log log;
  Fetch end(addressesIn(stream.bytes), kTerms, pacer(), [&](const Fetched& fetched) {
    log.push_back("unit " + std::to_string(fetched.unit) + ", state " + std::to_string(int(fetched.state)) + " " +
                  fetched.reason + ", tries " + std::to_string(fetched.tries) + ", missing " +
                  std::to_string(fetched.missing.size()) + (fetched.isEmptyBySilence ? ", by silence" : ""));
    for (const Bytes& message : fetched.messages) log.push_back(formatHex(message));
  });
  play(end, stream, cuts, log);
  end.stop();
  return log;
}

// The whole units of the stream, to whoever sends them at the same time. `stream.moments` chooses whether they are
// asked for before and afterwards, too.
inline Log sent(const Stream& stream, Cuts cuts) {
  struct Reader final : StreamJoiner::Receiver {
    void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override { builder.add(bytes); }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
    BatchBuilder builder;
  } reader;
  StreamJoiner(reader).feed(stream.bytes);
  Log log;
  std::vector<Send::Unit> units = SendPlan(reader.builder.finish()).units;
  units.resize(std::min<std::size_t>(units.size(), 4));
  const Send::Options options{stream.moments % 2 == 0, stream.moments % 3 == 0, kTerms};
  Send end(std::move(units), options, pacer(), [&](const SentUnit& unit) {
    log.push_back("unit " + std::to_string(unit.unit) + " " + wordOf(unit.state) + ", tries " +
                  std::to_string(unit.tries) + ", differences " + std::to_string(unit.differences.size()));
  });
  play(end, stream, cuts, log);
  return log;
}

inline Log served(const Stream& stream, Cuts cuts) {
  struct Observer final : Instrument::Observer {
    void handled(std::uint64_t number, std::uint64_t offset, std::span<const std::uint8_t> message,
                 const Record& record) override {
      log.push_back(std::to_string(number) + " at " + std::to_string(offset) + " " + wordOf(record.outcome) + " " +
                    record.reason + ": " + formatHex(message));
    }
    void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
      log.push_back(std::to_string(count) + " at " + std::to_string(offset) + " " + describe(reason));
    }
    void tooLong(std::uint64_t /*number*/, std::size_t /*length*/) override {}
    Log log;
  } observer;
  EmbeddedEditor editor;
  Instrument end(editor, {}, pacer(), observer);
  play(end, stream, cuts, observer.log);
  for (const ContentId content : editor.library().contents())
    observer.log.push_back(nameOf(content) + " " + formatHex(editor.library().content(content)->bytes));
  return observer.log;
}

inline Log recorded(const Stream& stream, Cuts cuts) {
  struct Heard final : StreamJoiner::Receiver {
    void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
      log.push_back(std::to_string(offset) + ": " + formatHex(bytes));
    }
    void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
      log.push_back(std::to_string(count) + " at " + std::to_string(offset) + " " + describe(reason));
    }
    Log log;
  } heard;
  Recording end(heard, std::chrono::seconds(5));
  play(end, stream, cuts, heard.log);
  end.finish();
  return heard.log;
}

// What each kind of end makes of it.
inline constexpr std::pair<const char*, Log (*)(const Stream&, Cuts)> kEnds[] = {
    {"fetch", fetched}, {"send", sent}, {"instrument", served}, {"record", recorded}};

}  // namespace Editor::AnyCuts
