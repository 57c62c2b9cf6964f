// A cable, or an instrument, that gives back what it was sent: that is never taken for what the instrument holds.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "editor/wire/SendFixture.h"
#include "midi/StreamJoiner.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

// Between the sender and an instrument: each message that it gets comes back after each of the delays, between those
// of the instrument.
class EchoingWire final : public WireEnd {
 public:
  EchoingWire(WireEnd& instrument, std::vector<WireTime> delays, bool echoesRequests, WireTime latency = {})
      : instrument_(instrument), delays_(std::move(delays)), echoesRequests_(echoesRequests), latency_(latency) {}

  void receive(std::span<const std::uint8_t> bytes, WireTime now) override {
    now_ = now;
    sent_.joiner.feed(bytes);
    instrument_.receive(bytes, now);
  }
  void pass(WireTime now) override {
    now_ = now;
    instrument_.pass(now);
    for (std::span<const std::uint8_t> bytes = instrument_.toSend(now); !bytes.empty();
         bytes = instrument_.toSend(now)) {
      answered_.joiner.feed(bytes);
      instrument_.sent(bytes.size());
    }
  }
  std::optional<WireTime> due() const override {
    std::optional<WireTime> due = instrument_.due();
    if (!waiting_.empty()) due = std::min(due.value_or(waiting_.begin()->first), waiting_.begin()->first);
    return due;
  }
  std::span<const std::uint8_t> toSend(WireTime now) override {
    if (waiting_.empty() || now < waiting_.begin()->first) return {};
    return waiting_.begin()->second;
  }
  void sent(std::size_t count) override {
    ASSERT_EQ(count, waiting_.begin()->second.size());
    waiting_.erase(waiting_.begin());
  }
  bool isDone() const override { return false; }

 private:
  struct Joined final : StreamJoiner::Receiver {
    explicit Joined(std::function<void(std::span<const std::uint8_t>)> taker) : take(std::move(taker)) {}
    void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override { take(bytes); }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
    std::function<void(std::span<const std::uint8_t>)> take;
    StreamJoiner joiner{*this, 65'536};
  };
  void keep(std::span<const std::uint8_t> message, WireTime delay) {
    waiting_.emplace(now_ + delay, Bytes(message.begin(), message.end()));
  }

  WireEnd& instrument_;
  const std::vector<WireTime> delays_;
  const bool echoesRequests_;
  const WireTime latency_;  // of the instrument's answers
  WireTime now_{};
  std::multimap<WireTime, Bytes> waiting_;
  Joined sent_{[this](std::span<const std::uint8_t> message) {
    if (echoesRequests_ || readMessage(message).kind != Reading::Kind::request)
      for (const WireTime delay : delays_) keep(message, delay);
  }};
  Joined answered_{[this](std::span<const std::uint8_t> message) { keep(message, latency_); }};
};

enum class Answers { rightly, differently, notAtAll };

class SendEcho : public SendFixture {
 protected:
  // The instrument holds something else, and keeps it unless it answers rightly.
  std::vector<SentUnit> sendOver(const std::vector<WireTime>& delays, bool echoesRequests, Answers answers,
                                 WireTime timeout) {
    receive(target, unitOf(kVoice, BDA::List::normalVoice, 5));
    receive(target, unitOf(kOther, BDA::List::normalVoice, 5));
    receive(target, unitOf(kMaster, BDA::List::master, 5));
    const char* const faults = answers == Answers::differently ? "full=1" : "deaf=1";
    Instrument instrument(target, {.faults = answers == Answers::rightly ? std::vector<Fault>() : parseFaults(faults)},
                          Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    EchoingWire wire(instrument, delays, echoesRequests);
    return sendTo(wire, {.verifies = true, .onlyChanged = false, .terms = {.timeout = timeout}});
  }

  static std::vector<std::vector<WireTime>> delays() {
    constexpr WireTime kDelays[] = {0s, 600ms, 1'200ms, 2'200ms, 8s};
    std::vector<std::vector<WireTime>> all;
    for (const WireTime one : kDelays) {
      all.push_back({one});
      for (const WireTime other : kDelays)
        if (one <= other) all.push_back({one, other});
    }
    return all;
  }

  template <typename Check>
  void forEachCable(Answers answers, Check check) {
    const std::vector<Send::Unit> all = units;
    for (const std::vector<WireTime>& delays : delays())
      for (const WireTime timeout : {500'000us, 2'000'000us})
        for (const bool echoesRequests : {false, true})
          for (const bool isShort : {false, true}) {
#ifdef BDA_SAMPLED
            if (!isShort && (delays.size() > 1 || echoesRequests)) continue;
#endif
            units = isShort ? std::vector<Send::Unit>{all.back()} : all;
            SCOPED_TRACE("echo after " + std::to_string(delays.front().count()) + " and " +
                         std::to_string(delays.back().count()) + ", " + std::to_string(delays.size()) +
                         " times, timeout " + std::to_string(timeout.count()) +
                         (echoesRequests ? ", of requests too, " : ", ") + std::to_string(units.size()) + " units");
            check(sendOver(delays, echoesRequests, answers, timeout));
          }
  }
};

TEST_F(SendEcho, whatTheInstrumentHoldsIsEqualBehindAnyEcho) {
  forEachCable(Answers::rightly, [&](const std::vector<SentUnit>& all) {
    EXPECT_EQ(statesOf(all), std::vector(units.size(), State::equal));
  });
}

TEST_F(SendEcho, whatItDoesNotHoldIsDifferentOrUnanswered) {
  std::size_t different = 0;
  forEachCable(Answers::differently, [&](const std::vector<SentUnit>& all) {
    ASSERT_EQ(all.size(), units.size());
    for (const SentUnit& unit : all) {
      EXPECT_NE(unit.state, State::equal) << unit.unit;
      different += unit.state == State::different ? 1U : 0U;
    }
  });
  EXPECT_GT(different, 100u);
}

TEST_F(SendEcho, aCableThatLeadsToNobodyAnswersNothing) {
  forEachCable(Answers::notAtAll, [&](const std::vector<SentUnit>& all) {
    EXPECT_EQ(statesOf(all), std::vector(units.size(), State::unanswered));
  });
}

TEST_F(SendEcho, anAnswerThatComesLateCounts) {
  for (const WireTime latency : {300ms, 600ms, 900ms})
    for (const unsigned retries : {1U, 2U}) {
      Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
      EchoingWire wire(instrument, {}, false, latency);
      EXPECT_EQ(statesOf(sendTo(
                    wire, {.verifies = true, .onlyChanged = false, .terms = {.timeout = 500ms, .retries = retries}})),
                std::vector(3, State::equal))
          << latency.count() << ", " << retries;
    }
}

// What it sends for ever is no echo.
TEST_F(SendEcho, anInstrumentThatNeverEndsEndsTheRunAllTheSame) {
  units = {units.back()};
  class Endless final : public WireEnd {
   public:
    explicit Endless(Bytes message) : message_(std::move(message)) {}
    void receive(std::span<const std::uint8_t> /*bytes*/, WireTime /*now*/) override {}
    void pass(WireTime /*now*/) override {}
    std::optional<WireTime> due() const override { return next_; }
    std::span<const std::uint8_t> toSend(WireTime now) override {
      return now < next_ ? std::span<const std::uint8_t>() : message_;
    }
    void sent(std::size_t /*count*/) override { next_ += 300ms; }
    bool isDone() const override { return false; }

   private:
    const Bytes message_;
    WireTime next_{};
  } endless(units[0].messages.front());
  EXPECT_EQ(statesOf(sendTo(endless, {.verifies = true, .onlyChanged = false, .terms = {.timeout = 400ms}})),
            std::vector{State::unanswered});
  EXPECT_LT(elapsed, 60s);
}

TEST_F(SendEcho, aSilentPortTakesNoLongerThanItsRetriesAndTwo) {
  for (const unsigned retries : {0U, 1U, 2U, 5U}) {
    units = {units.back()};
    Instrument deaf(target, {.faults = parseFaults("deaf=1")}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    EXPECT_EQ(
        statesOf(sendTo(deaf, {.verifies = true, .onlyChanged = false, .terms = {.timeout = 1s, .retries = retries}})),
        std::vector{State::unanswered});
    EXPECT_NEAR(double(elapsed.count()), double((timeOfAll() + (retries + 2) * 1s).count()), 50'000) << retries;
  }
}

// It plays on; an echo is what was sent.
TEST_F(SendEcho, notesDoNotPutTheReadingBackOff) {
  class Playing final : public WireEnd {
   public:
    explicit Playing(WireEnd& instrument) : instrument_(instrument) {}
    void receive(std::span<const std::uint8_t> bytes, WireTime now) override { instrument_.receive(bytes, now); }
    void pass(WireTime now) override {
      instrument_.pass(now);
      if (now < next_) return;
      next_ = now + 300ms;
      isPlaying_ = true;
    }
    std::optional<WireTime> due() const override { return std::min(instrument_.due().value_or(next_), next_); }
    std::span<const std::uint8_t> toSend(WireTime now) override {
      static constexpr std::array<std::uint8_t, 3> kNote{0x90, 0x40, 0x40};
      if (isPlaying_) return kNote;
      return instrument_.toSend(now);
    }
    void sent(std::size_t count) override {
      if (!std::exchange(isPlaying_, false)) instrument_.sent(count);
    }
    bool isDone() const override { return false; }

   private:
    WireEnd& instrument_;
    WireTime next_{};
    bool isPlaying_ = false;
  };
  units = {units.back()};
  Instrument instrument(target, {}, Pacer(kNoPace, {}, Pacer::Takes::messages), nobody);
  Playing playing(instrument);
  EXPECT_EQ(statesOf(sendTo(playing, {.verifies = true, .onlyChanged = false, .terms = {.timeout = 500ms}})),
            std::vector{State::equal});
  EXPECT_LT(elapsed, timeOfAll() + 1s);
}

}  // namespace
}  // namespace Editor
