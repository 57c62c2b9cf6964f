#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "wire/Asking.h"
#include "wire/ReadBack.h"
#include "wire/WireEnd.h"

namespace Editor {

// What became of one unit that was sent to an instrument.
struct SentUnit {
  enum class State : std::uint8_t {
    sent,        // it went out, to its last byte
    equal,       // the instrument gives the same back, or had it already
    different,   // it gives something else back
    unanswered,  // it gives nothing whole back
  };

  std::size_t unit = 0;  // of those to send, from 0
  State state = State::sent;
  std::vector<ReadBackDifference> differences;
  unsigned tries = 0;  // requests that went out for it
};

const char* wordOf(SentUnit::State state);

// Sends units to an instrument, and looks whether it has them.
//
// All of them go out first, file dumps with their triggers; then each is asked for, once nothing has come for as long
// as an answer may take: what an instrument, or a cable, gives back of what it was sent has come by then. Such an echo
// is no answer: as soon as one was heard, each message that went out may come back once without counting.
class Send final : public WireEnd {
 public:
  struct Unit {
    std::optional<BulkAddress> asked;  // to be asked for, isAnsweredByUnit(); nothing: that is not possible
    std::vector<std::vector<std::uint8_t>> messages;  // whole, in their order
    std::vector<std::vector<std::uint8_t>> behind;    // a trigger that follows it
  };
  struct Options {
    bool verifies = false;     // asks for all of them again
    bool onlyChanged = false;  // asks for all of them first, and leaves out what is equal
    AskingTerms terms;
  };
  using Receiver = std::function<void(SentUnit)>;

  // Each unit is told in its order: as soon as it went out, or with `verifies` at the end.
  Send(std::vector<Unit> units, const Options& options, Pacer pacer, Receiver receiver);

  void receive(std::span<const std::uint8_t> bytes, WireTime now) override;
  void lost(std::uint64_t count, WireTime now) override { asking_.lose(count, now); }
  void pass(WireTime now) override;
  std::optional<WireTime> due() const override;
  std::span<const std::uint8_t> toSend(WireTime now) override { return pacer_.take(now); }
  void sent(std::size_t count) override { pacer_.sent(count); }
  bool isDone() const override { return phase_ == Phase::done; }

  // Ends it early. A unit that has begun goes out to its end, or the instrument would wait for it: then it is done.
  void stop() { isStopping_ = true; }

 private:
  using Message = std::vector<std::uint8_t>;
  enum class Phase : std::uint8_t { begin, looking, sending, quiet, verifying, done };

  bool isEcho(std::span<const std::uint8_t> message);
  void enter(Phase phase);
  bool goOn(WireTime now);
  bool ask(WireTime now);
  bool sendNext(WireTime now);
  void push(const Unit& unit, WireTime now);
  SentUnit judge(const Asking::Result& result);
  void tellAll();

  const std::vector<Unit> units_;
  const Options options_;
  const Receiver receiver_;
  Pacer pacer_;
  Asking asking_;
  ReadBack readBack_;
  std::vector<SentUnit> results_;
  Phase phase_ = Phase::begin;
  std::size_t unit_ = 0;   // which one the phase has come to
  bool isAsking_ = false;  // for it
  bool isPushed_ = false;  // sending: it is on its way
  bool isStopping_ = false;
  WireTime heardAt_{};  // the last byte that counts
  std::map<Message, unsigned> mayComeBack_;
  bool hasEchoes_ = false;
  bool isDoubtful_ = false;  // verifying: an echo was heard for the first time, and may have been taken for an answer
};

}  // namespace Editor
