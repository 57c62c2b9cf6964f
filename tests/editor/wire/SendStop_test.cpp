// What is sent in part only: because the rest is there already, because somebody stopped it, because the port did.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "convert/Batch.h"
#include "editor/wire/SendFixture.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

class SendStop : public SendFixture {
 protected:
  static constexpr BulkAddress kFile{0x0C, 0x0A, 0x05};
  static constexpr BulkAddress kOtherFile{0x0C, 0x0A, 0x06};
  const Send::Options changed{.verifies = false, .onlyChanged = true, .terms = {}};

  // Two file dumps that one trigger writes.
  void takeFileDumps(bool removesOthers = false) {
    EmbeddedEditor source;
    receive(source, units[0].messages);
    receive(source, units[1].messages);
    const Bytes message = removesOthers ? dump({0x11, 0x01, 0x00}) : writeTrigger();
    const Send::Trigger trigger{0, message, 1, removesOthers};
    units = {{kFile, answerOf(source, kFile), trigger}, {kOtherFile, answerOf(source, kOtherFile), trigger}};
  }
  // Stopped when it has gone on for so long.
  std::vector<SentUnit> sendUntil(WireTime time, const Send::Options& options = {}, Pauses pauses = {}) {
    Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    std::vector<SentUnit> all;
    Send end(units, options, Pacer(kCablePace, pauses, Pacer::Takes::bytes),
             [&](SentUnit unit) { all.push_back(std::move(unit)); });
    LoopPort port(instrument);
    Waker waker(port, time);
    run(end, waker, [&] {
      if (port.now() >= time) end.stop();
      return false;
    });
    elapsed = port.now();
    unwritten = end.unwritten();
    return all;
  }

  // A port at which somebody wakes who waits, once.
  class Waker final : public Port {
   public:
    Waker(Port& port, WireTime time) : port_(port), time_(time) {}
    const std::string& name() const override { return port_.name(); }
    Pacer::Takes takes() const override { return port_.takes(); }
    Pace defaultPace() const override { return port_.defaultPace(); }
    WireTime now() override { return port_.now(); }
    std::size_t send(std::span<const std::uint8_t> bytes) override { return port_.send(bytes); }
    std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override {
      if (now() < time_) until = std::min(until.value_or(time_), time_);
      return port_.wait(until, wantsToSend);
    }

   private:
    Port& port_;
    const WireTime time_;
  };
  std::vector<std::size_t> unwritten;
};

TEST_F(SendStop, theTriggerStandsBehindTheLastFileDumpThatIsSent) {
  takeFileDumps();
  const std::vector<Send::Unit> both = units;
  units = {both[1]};
  units[0].trigger->behind = 0;
  send({});
  units = both;
  EXPECT_EQ(statesOf(send({}, changed)), (std::vector{State::sent, State::equal}));
  EXPECT_TRUE(isThere(both[0]));
}

TEST_F(SendStop, noTriggerGoesOutWhereNoFileDumpDoes) {
  takeFileDumps();
  send({});
  class Counting final : public Instrument::Observer {
   public:
    void handled(std::uint64_t /*number*/, std::uint64_t /*offset*/, std::span<const std::uint8_t> message,
                 const Record& /*record*/) override {
      if (readMessage(message).role == Role::trigger) ++triggers;
    }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
    void tooLong(std::uint64_t /*number*/, std::size_t /*length*/) override {}
    unsigned triggers = 0;
  } counting;
  Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), counting);
  EXPECT_EQ(statesOf(sendTo(instrument, changed)), (std::vector{State::equal, State::equal}));
  EXPECT_EQ(counting.triggers, 0u);
  units[0].isNeverLeftOut = true;
  EXPECT_EQ(statesOf(sendTo(instrument, changed)), (std::vector{State::sent, State::equal}));
  EXPECT_EQ(counting.triggers, 1u);
}

TEST_F(SendStop, aGroupIsLeftOutTogetherOrNotAtAll) {
  send({});
  units[0].group = units[2].group = 0;
  EXPECT_EQ(statesOf(send({}, changed)), std::vector(3, State::equal));
  units[2].messages = unitOf(kMaster, BDA::List::master, 9);
  EXPECT_EQ(statesOf(send({}, changed)), (std::vector{State::sent, State::equal, State::sent}));
}

// The second of one place is there already, until the first one overwrites it.
TEST_F(SendStop, ofAPlaceThatComesTwiceTheLastStays) {
  send({});
  units = {{kMaster, unitOf(kMaster, BDA::List::master, 9), {}, 0}, units[2]};
  units[1].group = 0;
  EXPECT_EQ(statesOf(send({}, changed)), std::vector(2, State::sent));
  EXPECT_TRUE(isThere(units[1]));
}

TEST_F(SendStop, whatWasDifferentBeforeIsSentAndSaysSo) {
  send({});
  units[2].messages = unitOf(kMaster, BDA::List::master, 9);
  const std::vector<SentUnit> all = send({}, changed);
  EXPECT_EQ(all[2].state, State::sent);
  EXPECT_TRUE(all[2].differences.empty());
  EXPECT_FALSE(all[2].before.empty());
  units[2].messages = unitOf(kMaster, BDA::List::master, 5);
  const SentUnit verified = send({}, {.verifies = true, .onlyChanged = true, .terms = {}})[2];
  EXPECT_EQ(verified.state, State::equal);
  EXPECT_FALSE(verified.before.empty()) << "it was, before it was sent";
}

TEST_F(SendStop, fileDumpsThatAreOutAreWritten) {
  takeFileDumps();
  const WireTime inTheFirst = kCablePace.timeOf(units[0].messages[0].size()) / 2;
  for (const Pauses pauses : {Pauses{}, Pauses{0s, 1h}}) {
    EXPECT_EQ(statesOf(sendUntil(inTheFirst, {}, pauses)), std::vector{State::sent});
    EXPECT_TRUE(isThere(units[0]));
    EXPECT_FALSE(isThere(units[1]));
    EXPECT_LT(elapsed, 2 * inTheFirst + 100ms);
    EXPECT_TRUE(unwritten.empty());
  }
}

TEST_F(SendStop, aTriggerThatRemovesVoicesDoesNotGoOutForAPart) {
  takeFileDumps(true);
  EXPECT_TRUE(sendUntil(kCablePace.timeOf(units[0].messages[0].size()) / 2).empty()) << "nothing is stored";
  EXPECT_EQ(unwritten, std::vector<std::size_t>{0});
  EXPECT_EQ(statesOf(sendUntil(1h)), std::vector(2, State::sent));
}

// A unit stands between two file dumps, and the trigger that is to store these does not go out.
TEST_F(SendStop, whatIsStoredBehindAFileDumpThatIsNotIsTold) {
  const Send::Unit between = units[2];
  takeFileDumps(true);
  units.insert(units.begin() + 1, between);
  for (const std::size_t unit : {0U, 2U}) units[unit].trigger->behind = 2;
  const Pacer pacer(kCablePace, {}, Pacer::Takes::bytes);
  const WireTime inTheSecond = durationOf({units[1]}, pacer) + kCablePace.timeOf(units[0].messages[0].size()) - 1ms;
  const std::vector<SentUnit> told = sendUntil(inTheSecond);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].unit, 1u);
  EXPECT_EQ(unwritten, std::vector<std::size_t>{0});
  EXPECT_TRUE(isThere(units[1]));
  EXPECT_FALSE(isThere(units[0]));
}

// Its last byte has gone out, and the port takes no more.
TEST_F(SendStop, whatIsOutWhenThePortEndsIsTold) {
  std::vector<SentUnit> all;
  Send end(units, {.verifies = false, .onlyChanged = false, .terms = {.timeout = 1s, .retries = 0}},
           Pacer(kNoPace, {}, Pacer::Takes::bytes), [&](SentUnit unit) { all.push_back(std::move(unit)); });
  WireTime now{};
  end.pass(now);
  for (std::size_t i = 0; i < units[0].messages.size(); ++i) end.sent(end.toSend(now).size());
  EXPECT_TRUE(all.empty());
  end.giveUp();
  EXPECT_EQ(all.size(), 1u);
  EXPECT_FALSE(end.unfinished());
}

TEST_F(SendStop, inThePauseBehindAUnitTheNextIsNotSent) {
  std::swap(units[0], units[2]);
  const WireTime first = durationOf({units[0]}, Pacer(kCablePace, {}, Pacer::Takes::bytes));
  EXPECT_EQ(statesOf(sendUntil(first + 1s, {}, {0s, 1h})), std::vector{State::sent});
  EXPECT_FALSE(isThere(units[1]));
  EXPECT_LT(elapsed, first + 1'100ms) << "the pause is not waited out";
}

TEST_F(SendStop, noPauseBehindTheLastByteIsWaitedOut) {
  Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
  sendTo(instrument, {}, {0s, 5s});
  EXPECT_NEAR(double(elapsed.count()), double((timeOfAll() + 10s).count()), 20'000) << "behind two of three";
  EXPECT_EQ(durationOf(units, Pacer(kCablePace, {0s, 5s}, Pacer::Takes::bytes)), timeOfAll() + 10s);
}

TEST_F(SendStop, whatIsReadBackByThenIsTold) {
  const Send::Options verify{.verifies = true, .onlyChanged = false, .terms = {}};
  EXPECT_EQ(statesOf(sendUntil(timeOfAll() + 1s, verify)), std::vector(3, State::sent)) << "in the quiet time";
  const WireTime stop =
      timeOfAll() + 2s + 3 * durationOf({units[0]}, Pacer(kCablePace, {}, Pacer::Takes::bytes)) + 200ms;
  EXPECT_EQ(statesOf(sendUntil(stop, verify)), (std::vector{State::equal, State::sent, State::sent}));
  EXPECT_LT(elapsed, stop + 100ms);
}

TEST_F(SendStop, aPortThatTakesNoBytesEndsIt) {
  std::vector<SentUnit> all;
  Send end(units, {.verifies = false, .onlyChanged = false, .terms = {.timeout = 1s, .retries = 2}},
           Pacer(kNoPace, {}, Pacer::Takes::bytes), [&](SentUnit unit) { all.push_back(std::move(unit)); });
  const std::size_t first = units[0].messages[0].size() + 20;
  StuckPort port(first);
  EXPECT_THROW(run(end, port, [] { return false; }), PortError);
  EXPECT_NEAR(double(port.now().count()), 4e6, 50'000);
  EXPECT_TRUE(all.empty());
  ASSERT_TRUE(end.unfinished());
  EXPECT_EQ(end.unfinished()->unit, 0u);
  EXPECT_EQ(end.unfinished()->missing.size(), units[0].messages.size() - 1);
  EXPECT_EQ(end.unfinished()->missing.back(), footerOf(kVoice));
}

TEST_F(SendStop, aPortThatIsSlowIsNotStuck) {
  units = {units[2]};
  Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
  Send end(units, {.verifies = false, .onlyChanged = false, .terms = {.timeout = 100ms, .retries = 0}},
           Pacer(Pace{1}, {}, Pacer::Takes::bytes), [](const SentUnit&) {});
  LoopPort port(instrument, 1);
  run(end, port, [] { return false; });
  EXPECT_TRUE(isThere(units[0]));
}

TEST_F(SendStop, whoDoesNotAnswerSaysWhy) {
  const Send::Options verify{.verifies = true, .onlyChanged = false, .terms = {.timeout = 500ms}};
  for (const SentUnit& unit : send({.faults = parseFaults("deaf=1")}, verify)) EXPECT_EQ(unit.reason, "silent");
  units[2].asked.reset();
  EXPECT_EQ(statesOf(send({.faults = parseFaults("deaf=1")}, verify)),
            (std::vector{State::unanswered, State::unanswered, State::sent}))
      << "nobody could be asked for the last";
  units.pop_back();
  const std::vector<SentUnit> other = send({.faults = parseFaults("wrong-device=1")}, verify);
  for (const SentUnit& unit : other) EXPECT_EQ(unit.reason.substr(0, 13), "other device ");
  for (const SentUnit& unit : send({}, verify)) EXPECT_EQ(unit.reason, "");
}

TEST_F(SendStop, whatWasNotLookedAtIsMissed) {
  Send::Options options{.verifies = true, .onlyChanged = false, .terms = {}};
  units[0].asked.reset();
  std::vector<SentUnit> told = sendUntil(timeOfAll() / 2, options);
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(statesOf(told), (std::vector{State::sent, State::sent}));
  EXPECT_EQ(told[0].reason, "cannot be asked for");
  EXPECT_EQ(told[1].reason, "not verified");
  EXPECT_TRUE(isMissed(told[0]) && isMissed(told[1]));
  options.verifies = false;
  for (const SentUnit& unit : send({}, options)) EXPECT_FALSE(isMissed(unit)) << unit.reason;
}

TEST_F(SendStop, whatIsOtherwiseThereIsMissed) {
  EXPECT_TRUE(isMissed({0, State::different, {}, 1, ""}));
  EXPECT_TRUE(isMissed({0, State::unanswered, {}, 1, "silent"}));
  EXPECT_FALSE(isMissed({0, State::equal, {}, 1, ""}));
}

}  // namespace
}  // namespace Editor
