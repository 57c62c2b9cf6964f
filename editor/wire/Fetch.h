#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "wire/Asking.h"
#include "wire/WireEnd.h"

namespace Editor {

// What became of one unit that an instrument was asked for.
struct Fetched {
  enum class State : std::uint8_t {
    whole,
    empty,  // nothing is stored there
    lost,
  };

  std::size_t unit = 0;  // of those asked for, from 0
  BulkAddress address{};
  State state = State::lost;
  bool isEmptyBySilence = false;  // empty: it was not said, but nothing came, from an instrument that answers
  unsigned tries = 0;             // requests that went out for it
  std::vector<BulkAddress> missing;
  std::string reason;                               // lost: why, as far as can be known
  std::optional<BulkAddress> other;                 // lost: a dump that came and is of no answer to this
  std::vector<std::vector<std::uint8_t>> messages;  // whole and empty: the answer
};

// Something of it came too late, as is known by now: nobody says any longer that it is empty.
void loseAsLate(Fetched& fetched);

// Asks an instrument for units, one after the other. What comes of one when it is told already comes too late for it.
//
// An instrument answers a request for a file dump or a mixing voice also where nothing is stored, and a request for
// another empty place not at all, not even with a dump of something else. Where nobody is there nobody is asked for
// anything more; one that has answered before is believed to have gone when it is silent twice.
class Fetch final : public WireEnd {
 public:
  using Receiver = std::function<void(Fetched)>;

  // Each of `units` isAnsweredByUnit(). What became of each is told in their order, as soon as it is known.
  Fetch(std::vector<BulkAddress> units, const AskingTerms& terms, Pacer pacer, Receiver receiver);

  void receive(std::span<const std::uint8_t> bytes, WireTime now) override;
  void lost(std::uint64_t count, WireTime now) override { asking_.lose(count, now); }
  void pass(WireTime now) override;
  std::optional<WireTime> due() const override;
  std::span<const std::uint8_t> toSend(WireTime now) override { return pacer_.take(now); }
  void sent(std::size_t count) override { pacer_.sent(count); }
  bool isDone() const override { return areAllTold() || (isStopped_ && !pacer_.due()); }

  // Ends it early, or the wire is no more: what is just asked for is lost, and told so. Of what comes behind it nothing
  // is told. A request that has begun goes out to its end.
  void stop();

  // Units that were told empty by silence, or lost, and of which a header or a single dump has come since.
  const std::vector<std::size_t>& late() const { return late_; }

 private:
  bool areAllTold() const { return unit_ == units_.size(); }
  void hear(std::span<const std::uint8_t> message);
  void begin(WireTime now);
  void heed(Asking::Result result, WireTime now);
  void tell(Fetched::State state, Asking::Result result);
  void giveUp(Asking::Result last);

  const std::vector<BulkAddress> units_;
  const Receiver receiver_;
  Pacer pacer_;
  Asking asking_;
  std::size_t unit_ = 0;
  bool hasBegun_ = false;
  bool isStopped_ = false;
  bool hasAnswered_ = false;             // before
  unsigned silences_ = 0;                // nobody was there, one after the other
  std::vector<std::size_t> unanswered_;  // those of which it was told that nothing came, and nothing has since
  std::vector<std::size_t> late_;
};

}  // namespace Editor
