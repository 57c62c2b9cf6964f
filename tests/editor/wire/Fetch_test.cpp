#include "wire/Fetch.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "editor/wire/WireFixture.h"
#include "wire/Intake.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kFileDump{0x0C, 0x0A, 0x05};
constexpr BulkAddress kSystemCommon{0x00, 0x00, 0x00};
constexpr BulkAddress kMaster{0x0E, 0x70, 0x02};
constexpr BulkAddress kMixingVoice{0x0E, 0x31, 0x03};
constexpr BulkAddress kMulti{0x0E, 0x5F, 0x00};

bool never() { return false; }

// An instrument that answers with what a test says, at once.
class Scripted final : public WireEnd, private StreamJoiner::Receiver {
 public:
  using Answers = std::function<std::vector<Bytes>(BulkAddress asked, unsigned time)>;
  explicit Scripted(Answers answers) : answers_(std::move(answers)), joiner_(*this) {}

  void receive(std::span<const std::uint8_t> bytes, WireTime /*now*/) override { joiner_.feed(bytes); }
  void pass(WireTime /*now*/) override {}
  std::optional<WireTime> due() const override { return std::nullopt; }
  std::span<const std::uint8_t> toSend(WireTime /*now*/) override { return out_; }
  void sent(std::size_t count) override { out_.erase(out_.begin(), out_.begin() + std::ptrdiff_t(count)); }
  bool isDone() const override { return false; }

 private:
  void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override {
    const BulkAddress asked = readMessage(bytes).address.value();
    for (const Bytes& answer : answers_(asked, ++times_)) out_.insert(out_.end(), answer.begin(), answer.end());
  }
  void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}

  Answers answers_;
  StreamJoiner joiner_;
  unsigned times_ = 0;
  Bytes out_;
};

class FetchTest : public testing::Test {
 protected:
  std::vector<Fetched> fetch(WireEnd& instrument, std::vector<BulkAddress> units, const AskingTerms& terms = {}) {
    std::vector<Fetched> all;
    Fetch end(std::move(units), terms, Pacer(kCablePace, {}, Pacer::Takes::bytes),
              [&](Fetched fetched) { all.push_back(std::move(fetched)); });
    LoopPort port(instrument);
    run(end, port, never);
    elapsed = port.now();
    cameLate = end.late();
    return all;
  }
  Fetched fetchOne(WireEnd& instrument, BulkAddress unit, const AskingTerms& terms = {}) {
    std::vector<Fetched> all = fetch(instrument, {unit}, terms);
    EXPECT_EQ(all.size(), 1u);
    return all.empty() ? Fetched() : std::move(all.front());
  }

  static std::vector<Bytes> voice(std::uint8_t value = 0) { return unitOf(kVoice, BDA::List::normalVoice, value); }

  WireTime elapsed{};
  std::vector<std::size_t> cameLate;
};

TEST_F(FetchTest, BringsWhatAnInstrumentHoldsIntoALibrary) {
  EmbeddedEditor source;
  receive(source, voice());
  NobodyIsTold nobody;
  Instrument instrument(source, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
  const std::vector<Fetched> all =
      fetch(instrument, {kVoice, kFileDump, kMulti, kSystemCommon, kMixingVoice, kMaster, {0x0C, 0x0A, 0x06}});
  ASSERT_EQ(all.size(), 7u);
  EmbeddedEditor target;
  Intake intake(target);
  for (std::size_t unit = 0; unit < 4; ++unit) {
    EXPECT_EQ(all[unit].state, Fetched::State::whole) << unit;
    EXPECT_EQ(all[unit].tries, 1u) << unit;
    EXPECT_EQ(intake.store({all[unit].messages}).state, Intake::Result::State::stored) << unit;
  }
  for (std::size_t unit = 4; unit < 7; ++unit) EXPECT_EQ(all[unit].state, Fetched::State::empty) << unit;
  EXPECT_FALSE(all[4].isEmptyBySilence);
  EXPECT_TRUE(all[5].isEmptyBySilence);
  EXPECT_EQ(all[5].tries, 3u);
  EXPECT_FALSE(all[6].isEmptyBySilence);
  const ContentId content{ContSrv::ContType_Voice, voiceContentNumber(8, 5)};
  EXPECT_EQ(target.library().contents(), std::vector{content});
  EXPECT_EQ(target.library().content(content), source.library().content(content));
}

TEST_F(FetchTest, AsksAgainForWhatCameBroken) {
  for (std::size_t which = 0; which < 26; ++which) {
    Scripted instrument([&](BulkAddress, unsigned time) {
      std::vector<Bytes> answer = voice();
      if (time == 1) answer[which] = damaged(answer[which]);
      return answer;
    });
    const Fetched fetched = fetchOne(instrument, kVoice);
    EXPECT_EQ(fetched.state, Fetched::State::whole) << which;
    EXPECT_EQ(fetched.tries, 2u) << which;
    EXPECT_EQ(fetched.messages, voice()) << which;
    EXPECT_LT(elapsed, 2s) << which;  // the answer has come to its end: there is nothing to wait for
  }
}

TEST_F(FetchTest, TellsWhichBlocksNeverCame) {
  Scripted instrument([](BulkAddress, unsigned) {
    std::vector<Bytes> answer = voice();
    answer.erase(answer.begin() + 3);
    return answer;
  });
  const Fetched fetched = fetchOne(instrument, kVoice, {.retries = 1});
  EXPECT_EQ(fetched.state, Fetched::State::lost);
  EXPECT_EQ(fetched.tries, 2u);
  EXPECT_EQ(fetched.reason, "incomplete");
  EXPECT_EQ(fetched.missing, std::vector{blocksOf(BDA::List::normalVoice)[2]});
  EXPECT_TRUE(fetched.messages.empty());
}

TEST_F(FetchTest, TellsThatHeaderOrFooterNeverCame) {
  const auto missingWithout = [&](std::size_t first, std::size_t behind) {
    Scripted instrument([&](BulkAddress, unsigned) {
      const std::vector<Bytes> answer = voice();
      return std::vector<Bytes>(answer.begin() + std::ptrdiff_t(first), answer.end() - std::ptrdiff_t(behind));
    });
    const Fetched fetched = fetchOne(instrument, kVoice, {.retries = 0});
    EXPECT_EQ(fetched.reason, "incomplete");
    return fetched.missing;
  };
  EXPECT_EQ(missingWithout(0, 1), std::vector{footerOf(kVoice)});
  EXPECT_EQ(missingWithout(0, 2), (std::vector{blocksOf(BDA::List::normalVoice).back(), footerOf(kVoice)}));
  EXPECT_EQ(missingWithout(1, 0).front(), kVoice);
  EXPECT_EQ(missingWithout(1, 0).size(), voice().size()) << "blocks without a header are of no unit";
}

TEST_F(FetchTest, PausesBehindEachUnit) {
  Scripted instrument([](BulkAddress asked, unsigned time) {
    return std::vector<Bytes>(time == 1 || time > 2 ? 1 : 0, blockDump(asked));
  });
  unsigned told = 0;
  Fetch end({kSystemCommon, kSystemCommon, kSystemCommon}, {}, Pacer(kCablePace, {0s, 10s}, Pacer::Takes::bytes),
            [&](const Fetched& fetched) {
              EXPECT_EQ(fetched.state, Fetched::State::whole);
              ++told;
            });
  LoopPort port(instrument);
  run(end, port, never);
  EXPECT_EQ(told, 3u);
  EXPECT_GE(port.now(), 22s) << "two pauses, and a try of two seconds without one behind it";
  EXPECT_LT(port.now(), 23s);
}

TEST_F(FetchTest, WhatHasNotGoneOutIsNoTry) {
  std::vector<Fetched> all;
  Fetch end({kSystemCommon}, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes),
            [&](Fetched fetched) { all.push_back(std::move(fetched)); });
  end.pass({});
  end.stop();
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0].tries, 0u);
}

TEST_F(FetchTest, StoppedItIsDoneWhenItsRequestHasGoneOutToTheEnd) {
  std::vector<Fetched> all;
  Fetch end({kSystemCommon, kVoice}, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes),
            [&](Fetched fetched) { all.push_back(std::move(fetched)); });
  end.pass({});
  ASSERT_EQ(end.toSend({}).size(), requestMessage(kSystemCommon, 0).size());
  end.sent(3);
  end.stop();
  EXPECT_EQ(all.size(), 1u) << "it is told at once";
  EXPECT_FALSE(end.isDone());
  end.pass(1h);
  end.sent(end.toSend(1h).size());
  EXPECT_TRUE(end.isDone());
  EXPECT_TRUE(end.toSend(2h).empty());
  EXPECT_EQ(all.size(), 1u);

  Fetch notBegun({kSystemCommon}, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes), [](const Fetched&) { FAIL(); });
  notBegun.stop();
  notBegun.pass({});
  EXPECT_TRUE(notBegun.isDone());
}

// What was told of it cannot be taken back, but that something came can be said.
TEST_F(FetchTest, KnowsWhatCameWhenItWasWaitedForNoLonger) {
  const BulkAddress other{0x0E, 0x0A, 0x06};
  Scripted instrument([&](BulkAddress asked, unsigned) {
    std::vector<Bytes> answer;
    if (asked == kVoice) return answer;
    if (asked != other) return std::vector<Bytes>{blockDump(asked)};
    answer = voice(1);
    for (const Bytes& message : unitOf(other, BDA::List::normalVoice)) answer.push_back(message);
    return answer;
  });
  const std::vector<Fetched> all = fetch(instrument, {kVoice, other, {0x0E, 0x0A, 0x07}});
  EXPECT_TRUE(all[0].isEmptyBySilence);
  EXPECT_EQ(all[1].state, Fetched::State::whole);
  EXPECT_EQ(cameLate, std::vector<std::size_t>{0});
}

TEST_F(FetchTest, BelievesNobodyWhoSaysThatAPlaceIsEmptyWhileItComes) {
  const BulkAddress mixing{0x0E, 0x31, 0x00};
  Scripted instrument([&](BulkAddress, unsigned time) {
    const std::vector<Bytes> empty{dump({0x0E, 0x31, 0x40}), dump({0x0F, 0x31, 0x40})};
    if (time > 1) return empty;
    std::vector<Bytes> answer = unitOf(mixing, BDA::List::normalVoice);
    answer.insert(answer.end() - 1, empty.begin(), empty.end());
    return answer;
  });
  EXPECT_EQ(fetchOne(instrument, mixing, {.retries = 0}).state, Fetched::State::lost);
  Scripted sure([&](BulkAddress, unsigned) {
    return std::vector<Bytes>{dump({0x0E, 0x31, 0x40}), dump({0x0F, 0x31, 0x40})};
  });
  EXPECT_EQ(fetchOne(sure, mixing, {.retries = 0}).state, Fetched::State::empty);
}

TEST_F(FetchTest, TakesNoAnswerToAnotherAddress) {
  const BulkAddress other{0x0E, 0x0A, 0x06};
  Scripted instrument([&](BulkAddress asked, unsigned) {
    std::vector<Bytes> answer = voice(1);
    answer.front() = dump(other);
    answer.back() = dump(footerOf(other));
    if (asked != kVoice) answer = {blockDump(asked)};
    return answer;
  });
  const Fetched fetched = fetchOne(instrument, kVoice);
  EXPECT_EQ(fetched.state, Fetched::State::lost) << "that is no silence";
  EXPECT_EQ(fetched.reason, "incomplete");
  EXPECT_EQ(fetched.other, other);
  EXPECT_EQ(fetched.tries, 3u);
  EXPECT_TRUE(fetched.messages.empty());
}

// It is one off, to either side: each answer is one to a question of before, or of behind.
TEST_F(FetchTest, CallsNoPlaceEmptyWhereAnotherIsAnswered) {
  for (const int step : {-1, 1})
    for (const unsigned retries : {0U, 2U}) {
      Scripted instrument([&](BulkAddress asked, unsigned) {
        if (asked == kSystemCommon) return std::vector<Bytes>{blockDump(asked)};
        asked.lo = std::uint8_t(asked.lo + step);
        return unitOf(asked, BDA::List::normalVoice);
      });
      for (const Fetched& fetched :
           fetch(instrument, {kVoice, {0x0E, 0x0A, 0x06}, {0x0E, 0x0A, 0x07}}, {.timeout = 2s, .retries = retries})) {
        EXPECT_EQ(fetched.state, Fetched::State::lost) << step << " " << retries << " " << fetched.unit;
        EXPECT_EQ(fetched.reason, "incomplete");
      }
    }
  Scripted dumb([&](BulkAddress, unsigned) { return std::vector<Bytes>{blockDump({0x00, 0x20, 0x00})}; });
  EXPECT_EQ(fetchOne(dumb, kFileDump).reason, "incomplete");
}

// What still comes of an earlier answer is no other one: the next try is without it.
TEST_F(FetchTest, TakesTheRestOfAnEarlierAnswerForNoOther) {
  Scripted instrument([](BulkAddress asked, unsigned time) {
    if (asked == kSystemCommon) return std::vector<Bytes>{blockDump(asked)};
    return time <= 2 ? voice() : std::vector<Bytes>();  // and once more
  });
  EXPECT_EQ(fetch(instrument, {kVoice, kMaster})[1].state, Fetched::State::empty);
}

TEST_F(FetchTest, NeverPutsTwoAnswersTogether) {
  // Half of one sound, then the other half of another.
  Scripted instrument([](BulkAddress, unsigned time) {
    const std::vector<Bytes> answer = voice(std::uint8_t(time));
    const auto half = answer.begin() + 12;
    if (time == 1) return std::vector<Bytes>(answer.begin(), half);
    if (time == 2) return std::vector<Bytes>(half, answer.end());
    return answer;
  });
  const Fetched fetched = fetchOne(instrument, kVoice);
  EXPECT_EQ(fetched.state, Fetched::State::whole);
  EXPECT_EQ(fetched.messages, voice(3));
}

TEST_F(FetchTest, DoubtsAUnitInWhichABlockCameTwiceAndDiffers) {
  Scripted instrument([](BulkAddress, unsigned time) {
    std::vector<Bytes> answer = voice();
    answer.insert(answer.begin() + 5, time == 1 ? blockDump(*readMessage(answer[4]).address, 1) : answer[4]);
    return answer;
  });
  const Fetched fetched = fetchOne(instrument, kVoice);
  EXPECT_EQ(fetched.state, Fetched::State::whole);
  EXPECT_EQ(fetched.tries, 2u);
  EXPECT_EQ(fetched.messages, voice());
}

TEST_F(FetchTest, KnowsAnEmptyPlaceFromAnInstrumentThatIsNotThere) {
  Scripted answersNothing([](BulkAddress, unsigned) { return std::vector<Bytes>(); });
  const std::vector<Fetched> all = fetch(answersNothing, {kMaster, kVoice, kSystemCommon});
  ASSERT_EQ(all.size(), 3u);
  for (const Fetched& fetched : all) {
    EXPECT_EQ(fetched.state, Fetched::State::lost);
    EXPECT_EQ(fetched.reason, "silent");
    EXPECT_EQ(fetched.tries, fetched.unit == 0 ? 3u : 0u);
  }
  EXPECT_GE(elapsed, 8s);  // three tries and the question whether anybody is there
  EXPECT_LT(elapsed, 8s + 20ms);
}

TEST_F(FetchTest, SaysOfASilentFileDumpThatItIsLost) {
  Scripted instrument(
      [](BulkAddress asked, unsigned) { return std::vector<Bytes>(asked == kSystemCommon ? 1 : 0, blockDump(asked)); });
  const Fetched fetched = fetchOne(instrument, kFileDump);
  EXPECT_EQ(fetched.state, Fetched::State::lost);
  EXPECT_EQ(fetched.reason, "silent");
  EXPECT_EQ(fetched.missing, std::vector{kFileDump});
}

struct Told {
  const char* reason;
  std::vector<Bytes> answer;
};

TEST_F(FetchTest, SaysWhyNothingCame) {
  for (const Told& told :
       {Told{"only clock", {{0xF8, 0xFE}}}, Told{"other device 5", {dump(kSystemCommon, Bytes(68), 4)}},
        Told{"other model", {{0xF0, 0x7D, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0xF7}}},
        Told{"silent", {{0x90, 0x40, 0x40}}}}) {
    Scripted instrument([&](BulkAddress, unsigned) { return told.answer; });
    const std::vector<Fetched> all = fetch(instrument, {kVoice, kMaster});
    EXPECT_EQ(all[0].reason, told.reason);
    EXPECT_EQ(all[1].reason, told.reason) << "for which nobody was asked";
    EXPECT_EQ(all[1].tries, 0u);
  }
}

// Clock for ever, also inside of a message that has no end.
TEST_F(FetchTest, DoesNotWaitForAClock) {
  class Clock final : public WireEnd {
   public:
    void receive(std::span<const std::uint8_t> /*bytes*/, WireTime /*now*/) override {}
    void pass(WireTime /*now*/) override {}
    std::optional<WireTime> due() const override { return next_; }
    std::span<const std::uint8_t> toSend(WireTime now) override {
      if (now < next_) return {};
      return next_ == WireTime() ? std::span<const std::uint8_t>(begin_) : std::span<const std::uint8_t>(tick_);
    }
    void sent(std::size_t count) override {
      if (next_ > WireTime() || count == begin_.size()) next_ += 20ms;
    }
    bool isDone() const override { return false; }

   private:
    const Bytes begin_{0xF0, 0x7D, 0x00};
    const Bytes tick_{0xF8};
    WireTime next_{};
  } clock;
  EXPECT_EQ(fetchOne(clock, kVoice).reason, "broken") << "there was a message that has no end";
  EXPECT_LT(elapsed, 9s);
}

// What came may have been of the answer: nobody says that the place is empty.
TEST_F(FetchTest, CallsNoPlaceEmptyOfWhichSomethingCame) {
  const Bytes header = dump(kVoice);
  const auto judge = [&](const std::function<std::vector<Bytes>(unsigned)>& answer) {
    Scripted instrument([&](BulkAddress asked, unsigned time) {
      return asked == kSystemCommon ? std::vector<Bytes>{blockDump(asked)} : answer(time);
    });
    return fetchOne(instrument, kVoice);
  };
  for (std::size_t size = 1; size < header.size(); ++size) {
    Bytes begun(header.begin(), header.begin() + std::ptrdiff_t(size));
    EXPECT_EQ(judge([&](unsigned) { return std::vector<Bytes>{begun}; }).state, Fetched::State::lost) << size;
    if (size < 4 || size == header.size() - 1) continue;  // it does not say whose it is, or is whole with an end
    begun.push_back(0xF7);
    const Fetched ended = judge([&](unsigned) { return std::vector<Bytes>{begun}; });
    EXPECT_EQ(ended.state, Fetched::State::lost) << size;
    EXPECT_EQ(ended.reason, "broken") << size;
  }
  const Fetched other = judge([](unsigned) { return std::vector<Bytes>{dump(kVoice, {}, 4)}; });
  EXPECT_EQ(other.state, Fetched::State::lost);
  EXPECT_EQ(other.reason, "other device 5");
  // Its answer comes while it is asked whether anybody is there: whole, or not.
  for (const bool isWhole : {true, false}) {
    Scripted late([&](BulkAddress asked, unsigned time) {
      std::vector<Bytes> answer = time < 4 ? std::vector<Bytes>() : voice();
      if (!isWhole && !answer.empty()) answer.pop_back();
      if (asked == kSystemCommon) answer.push_back(blockDump(asked));
      return answer;
    });
    EXPECT_EQ(fetchOne(late, kVoice).state, isWhole ? Fetched::State::whole : Fetched::State::lost);
  }
}

TEST_F(FetchTest, BelievesThatOneHasGoneWhichHasAnsweredBeforeWhenItIsSilentTwice) {
  Scripted instrument([](BulkAddress asked, unsigned time) {
    return std::vector<Bytes>(time == 1 || time > 5 ? 1 : 0, blockDump(asked == kSystemCommon ? asked : kSystemCommon));
  });
  const std::vector<Fetched> lives = fetch(instrument, {kSystemCommon, kMaster, kSystemCommon});
  EXPECT_EQ(lives[1].state, Fetched::State::lost);
  EXPECT_EQ(lives[2].state, Fetched::State::whole);
  Scripted dies(
      [](BulkAddress asked, unsigned time) { return std::vector<Bytes>(time == 1 ? 1 : 0, blockDump(asked)); });
  const std::vector<Fetched> dead = fetch(dies, {kSystemCommon, kMaster, kVoice, kSystemCommon});
  EXPECT_EQ(dead[1].tries, 3u);
  EXPECT_EQ(dead[2].tries, 3u);
  EXPECT_EQ(dead[3].tries, 0u);
}

TEST_F(FetchTest, DoesNotWaitForWhatBringsNothingOn) {
  for (const std::size_t which : {0U, 3U}) {
    class Repeating final : public WireEnd {
     public:
      explicit Repeating(std::vector<Bytes> messages) : messages_(std::move(messages)) {}
      void receive(std::span<const std::uint8_t> /*bytes*/, WireTime /*now*/) override {}
      void pass(WireTime /*now*/) override {}
      std::optional<WireTime> due() const override { return next_; }
      std::span<const std::uint8_t> toSend(WireTime now) override {
        if (now < next_) return {};
        return messages_[std::min(count_, messages_.size() - 1)];
      }
      void sent(std::size_t /*count*/) override {
        next_ += 500ms;
        ++count_;
      }
      bool isDone() const override { return false; }

     private:
      std::vector<Bytes> messages_;
      std::size_t count_ = 0;
      WireTime next_{};
    } instrument(which == 0 ? std::vector<Bytes>{voice()[0]} : std::vector<Bytes>{voice()[0], voice()[3]});
    EXPECT_EQ(fetchOne(instrument, kVoice).state, Fetched::State::lost) << which;
    EXPECT_LT(elapsed, 4min) << which;
  }
}

TEST_F(FetchTest, EndsThoughTheWireIsNeverQuiet) {
  class Chatter final : public WireEnd {
   public:
    void receive(std::span<const std::uint8_t> /*bytes*/, WireTime /*now*/) override {}
    void pass(WireTime /*now*/) override {}
    std::optional<WireTime> due() const override { return next_; }
    std::span<const std::uint8_t> toSend(WireTime now) override {
      return now < next_ ? std::span<const std::uint8_t>() : std::span<const std::uint8_t>(words_);
    }
    void sent(std::size_t count) override { next_ += kCablePace.timeOf(count); }
    bool isDone() const override { return false; }

   private:
    const Bytes words_{0xF0, 0x01, 0x02, 0xF7, 0xF0, 0x01};
    WireTime next_{};
  } chatter;
  EXPECT_EQ(fetchOne(chatter, kVoice).state, Fetched::State::lost);
}

}  // namespace
}  // namespace Editor
