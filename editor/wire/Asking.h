#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "midi/StreamJoiner.h"
#include "wire/Answer.h"
#include "wire/Pacer.h"

namespace Editor {

// How an instrument is asked.
struct AskingTerms {
  std::uint8_t device = 0;                     // its device number, 0 to 15
  WireTime timeout = std::chrono::seconds(2);  // without a byte of an answer
  unsigned retries = 2;                        // how often it is asked again
};

// How long a port that takes no bytes is waited for.
constexpr WireTime patienceOf(const AskingTerms& terms) {
  constexpr WireTime kLeast = std::chrono::seconds(1);
  return std::max<WireTime>((terms.retries + 2) * terms.timeout, kLeast);
}

// What was heard that may say why an answer did not come.
struct Overheard {
  bool isClockHeard = false;            // real-time bytes
  std::optional<unsigned> otherDevice;  // a bulk dump of such an instrument for that device number, from 1
  bool isOtherModelHeard = false;       // a message of the same maker's other instruments
};

// The first of these bytes, up to where one of them may decide a question: the end of a message, or of one that is cut
// short. Who is asked for the next thing then hears the rest, however the bytes came.
std::span<const std::uint8_t> upToADecision(std::span<const std::uint8_t> bytes);

// Asks an instrument for one unit, and again while the answer does not come or is not whole. It writes requests to a
// pacer and reads what arrives; who owns both sends and waits.
//
// Where nothing comes of an answer the instrument is asked once for what every instrument has: is nobody there, or has
// it nothing to say?
class Asking final : private StreamJoiner::Receiver {
 public:
  struct Result {
    Answer::State state = Answer::State::none;  // of the last try: none or spoilt also where more had begun
    unsigned tries = 0;                         // requests that went out
    bool isAnythingHeard = false;               // some of an answer, or of one to another question, in any try
    bool isBroken = false;                      // dumps came that were broken, in any try
    bool isSomebodyThere = true;                // false: nothing came, also of what every instrument has
    bool isOtherHeard = false;                  // a dump of another device came, or a message of another model
    std::optional<BulkAddress> other;           // what an answer to another question was of, the last one
    std::vector<BulkAddress> missing;
    std::vector<std::vector<std::uint8_t>> messages;  // whole and empty: the answer

    bool isAnswered() const { return state == Answer::State::whole || state == Answer::State::empty; }
  };

  // Is shown each message that arrives.
  using Listener = std::function<void(std::span<const std::uint8_t>)>;

  // The pacer outlives this object.
  Asking(Pacer& pacer, const AskingTerms& terms, Listener listener = {})
      : pacer_(pacer), terms_(terms), listener_(std::move(listener)), joiner_(*this, kLongestMessage) {}

  // Begins. The last question is decided. `waited`: so many timeouts have passed without a byte already, for which it
  // waits the less. `pause`: how long it waits before.
  void ask(BulkAddress address, WireTime now, unsigned waited = 0, WireTime pause = {});
  // Bytes that go no further than upToADecision().
  void receive(std::span<const std::uint8_t> bytes, WireTime now);
  // Bytes have arrived that are lost: they may have been of the answer.
  void lose(std::uint64_t count, WireTime now);
  void pass(WireTime now);
  // When it wants to be asked next, beside the pacer; nothing: it does not wait for anything.
  std::optional<WireTime> due() const;

  const AskingTerms& terms() const { return terms_; }
  bool isAsking() const { return answer_.has_value(); }
  // Does not wait any longer: what has become of the question by now.
  Result giveUp();

  // What became of the question, once that is decided.
  std::optional<Result> takeResult();
  // Why the last question got no answer, as far as can be known: "silent", "only clock", "other device 5", "other
  // model", "incomplete" or "broken".
  std::string whyUnanswered(const Result& result) const;

 private:
  static constexpr std::size_t kLongestMessage = 65'536;
  // One answer is far shorter. An instrument that sends so much is not going to answer this try.
  static constexpr std::uint64_t kMostBytes = 4 * kLongestMessage;

  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override;
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override;
  void hearCut();
  void hearOther(const Reading& reading);
  void request(BulkAddress address, WireTime now, WireTime pause = {});
  void endTry(WireTime now);
  void take(Answer& answer);
  void decide();

  Pacer& pacer_;
  const AskingTerms terms_;
  const Listener listener_;
  StreamJoiner joiner_;
  Overheard overheard_;  // since the beginning, of all questions

  BulkAddress asked_{};
  std::vector<BulkAddress> askedBefore_;
  unsigned waits_ = 0;               // timeouts that may still pass without a byte
  bool asksForAnybody_ = false;      // after the last try
  std::optional<Answer> answer_;     // of this try
  std::optional<Answer> late_;       // while it is asked whether anybody is there: what was asked for before
  std::optional<WireTime> heardAt_;  // when something of the answer came last in this try
  WireTime byteAt_{};                // when any byte of a message did
  std::uint64_t bytes_ = 0;          // in this try
  bool isHeard_ = false;             // something of an answer, just now
  Result result_;
  bool isDecided_ = false;
};

}  // namespace Editor
