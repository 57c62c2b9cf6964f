#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "wire/Asking.h"
#include "wire/ReadBack.h"
#include "wire/WireEnd.h"

namespace Editor {

// What became of one unit that was sent to an instrument.
struct SentUnit {
  enum class State : std::uint8_t {
    sent,        // it went out to its last byte, and so did the trigger that has it stored
    equal,       // the instrument gives the same back, or had it already
    different,   // it gives something else back
    unanswered,  // it gives nothing whole back
  };

  std::size_t unit = 0;  // of those to send, from 0
  State state = State::sent;
  std::vector<ReadBackDifference> differences;  // different
  unsigned tries = 0;                           // requests that went out for it
  std::string reason;  // unanswered, as far as can be known; sent: why nobody has looked, though that was wanted
  // Where it was asked for before it was sent: how that differs, or why it is not known.
  std::vector<ReadBackDifference> before = {};
  std::string whyUnknown = {};
};

const char* wordOf(SentUnit::State state);
// It is not there as it should be, or nobody knows.
bool isMissed(const SentUnit& unit);

// Sends units to an instrument, and looks whether it has them.
//
// All of them go out first, and triggers where they stand between them; then each is asked for, once nothing of what
// was sent has come back for as long as an answer may take. An instrument or a cable may give back what it gets, once
// or twice and late: such an echo says nothing. So an answer that is equal counts only when no echo can be so late, or
// when more of them have come than there can be echoes; until then the unit is asked for again. Where one may have come
// into the midst of an answer it is asked for again too, once it is quiet.
class Send final : public WireEnd {
 public:
  using Message = std::vector<std::uint8_t>;

  // Has all file dumps stored that the instrument has got. Those of the same number are one.
  struct Trigger {
    std::size_t number = 0;
    Message message;
    // The unit behind which it stands, the last of its own or a later one. It goes out there, for what it stores and
    // removes takes the place of what came before; but not where none of its own has gone out.
    std::size_t behind = 0;
    bool removesOthers = false;  // it goes out with all of its units or not at all
  };
  struct Unit {
    std::optional<BulkAddress> asked;  // to be asked for, isAnsweredByUnit(); nothing: that is not possible
    std::vector<Message> messages;     // whole, in their order
    std::optional<Trigger> trigger = {};
    std::optional<std::size_t> group = {};  // those of one group are left out together, or not at all
    bool isNeverLeftOut = false;
  };
  struct Options {
    bool verifies = false;     // asks for all of them again
    bool onlyChanged = false;  // asks for all of them first, and leaves out what is equal
    AskingTerms terms;
  };
  using Receiver = std::function<void(SentUnit)>;

  // Each unit is told in its order: as soon as it is sent, or with `verifies` at the end. Where it ends early those
  // whose trigger has not gone out are passed over.
  Send(std::vector<Unit> units, const Options& options, Pacer pacer, Receiver receiver);

  void receive(std::span<const std::uint8_t> bytes, WireTime now) override;
  void lost(std::uint64_t count, WireTime now) override { asking_.lose(count, now); }
  void pass(WireTime now) override;
  std::optional<WireTime> due() const override;
  std::span<const std::uint8_t> toSend(WireTime now) override { return pacer_.take(now); }
  void sent(std::size_t count) override;
  bool isDone() const override { return phase_ == Phase::done; }
  std::optional<WireTime> patience() const override { return patienceOf(options_.terms); }

  // Ends it early. A unit that has begun goes out to its end, or the instrument would wait for it, and so does the
  // trigger of file dumps that are out, unless it removes something: then what is known is told, and it is done.
  void stop() { isStopping_ = true; }

  // The wire is no more: what is known by now is told. Of the rest only the following can be said.
  void giveUp();
  struct Unfinished {
    std::size_t unit;
    std::vector<BulkAddress> missing;  // messages that have not gone out to their end
  };
  // The unit that had begun to go out.
  std::optional<Unfinished> unfinished() const;
  // Those that went out, but not the trigger that has them stored.
  std::vector<std::size_t> unwritten() const;

 private:
  enum class Phase : std::uint8_t { looking, sending, quiet, verifying, done };

  void hear(std::span<const std::uint8_t> message);
  WireTime quietUntil() const { return std::max(pacer_.end(), echoAt_) + options_.terms.timeout; }
  bool canStop() const;
  void enter(Phase phase);
  bool goOn(WireTime now);
  void leaveOut();
  bool sendNext(WireTime now);
  void settle();
  bool isSettled(std::size_t unit) const;
  void tellSettled();
  void tell(std::size_t unit);
  std::size_t nextFrom(std::size_t unit) const;
  const Trigger* triggerBefore(std::size_t unit) const;
  bool ask(WireTime now);
  void judge(const Asking::Result& result);
  std::size_t echoesOf(std::size_t asked, WireTime now) const;

  const std::vector<Unit> units_;
  const Options options_;
  const Receiver receiver_;
  Pacer pacer_;
  Asking asking_;
  ReadBack readBack_;
  std::vector<SentUnit> results_;
  std::vector<bool> isLeftOut_;
  std::vector<std::optional<WireTime>> outAt_;  // when the last byte of each had gone out
  std::set<std::size_t> triggersOut_;
  Phase phase_;
  std::size_t unit_ = 0;    // which one the phase has come to
  std::size_t told_ = 0;    // behind the last that was told
  bool isAsking_ = false;   // for it
  std::size_t equals_ = 0;  // answers for it that were equal, one after the other
  std::size_t spoilt_ = 0;  // such that an echo may have come between
  bool hasWaited_ = false;  // without a byte, for the first of them
  bool isStopping_ = false;

  // Sending: the unit or the trigger that is on its way, and whether a byte of it is out.
  bool isUnitPushed_ = false;
  std::optional<std::size_t> triggerPushed_;
  bool hasBegun_ = false;

  WireTime now_{};
  WireTime echoAt_{};  // when a message that was sent came back last
};

// How long it takes until all of them have gone out, where nothing is left out.
WireTime durationOf(const std::vector<Send::Unit>& units, Pacer pacer);

}  // namespace Editor
