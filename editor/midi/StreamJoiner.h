#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace Editor {

inline constexpr std::uint8_t kFirstRealTime = 0xF8;  // of the bytes that are legal anywhere, and no part of a message

// A message of a stream that is longer is none, so that an endless one does not fill the memory.
inline constexpr std::size_t kLongestMessage = 16U << 20;

// Cuts a MIDI byte stream, arriving in chunks of any size, into complete System Exclusive messages F0..F7.
//
// Nothing is lost silently: every byte fed is either part of a delivered message or reported as dropped, and what is
// delivered and reported does not depend on how the stream was cut into chunks. A message may be of any length; one
// that lies whole inside a chunk is handed out in place, any other is collected in a buffer that is kept for the next.
class StreamJoiner {
 public:
  enum class Reason : std::uint8_t {
    RealTime,    // F8..FF; legal anywhere, also inside a message, which goes on after it
    Stray,       // outside of any message
    Abandoned,   // a message cut short by a status byte other than F7 and F8..FF
    Unfinished,  // a message that was still open when the stream ended
    TooLong,     // a message that is longer than any may be, whether it had an end or not
    Overrun,     // arrived while nobody had room for it
  };

  // Offsets count from the first byte fed. Calls come in the order in which the stream decides them, so a real-time
  // byte inside a message comes before the message. The receiver must not call the joiner; when it throws, the joiner
  // is of no further use.
  class Receiver {
   public:
    // A complete message, real-time bytes inside taken out. `offset` is that of its F0. The bytes are valid only during
    // the call.
    virtual void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) = 0;

    // `count` bytes were dropped, the first at `offset`. Neighbours that share the reason RealTime or Stray come as one
    // run; a message that was cut short comes as one piece of its own, `count` without the real-time bytes inside.
    virtual void dropped(std::uint64_t offset, std::uint64_t count, Reason reason) = 0;

    // The message that is reported as cut short by the next call begins so, without real-time bytes. Not called for one
    // that is too long. The bytes are valid only during the call.
    virtual void cutShort(std::span<const std::uint8_t> /*beginning*/) {}

   protected:
    ~Receiver() = default;
  };

  // The receiver must outlive the joiner. A message of more than `longest` bytes is dropped.
  explicit StreamJoiner(Receiver& receiver, std::size_t longest = std::numeric_limits<std::size_t>::max())
      : receiver_(receiver), longest_(longest) {}
  StreamJoiner(const StreamJoiner&) = delete;
  StreamJoiner& operator=(const StreamJoiner&) = delete;

  void feed(std::span<const std::uint8_t> chunk);

  // The stream ends here: reports what is still held back. A stream fed afterwards starts anew, its offsets go on.
  void finish();

  // So many bytes would come next, but nobody has them: what is held back is reported, and then they are.
  void lose(std::uint64_t count);

  // Whether a message has begun that may still go on.
  bool isInMessage() const { return open_; }

  // The next byte fed is at `offset`: for streams whose bytes lie scattered in a file. Never goes back.
  void skipTo(std::uint64_t offset) { position_ = offset; }

 private:
  std::size_t deliverWhole(std::span<const std::uint8_t> chunk, std::size_t at);
  void setAside(std::span<const std::uint8_t> bytes, std::size_t at);
  void deliver(std::span<const std::uint8_t> tail);
  void abandon(std::span<const std::uint8_t> tail, Reason reason);
  void drop(std::uint64_t offset, std::uint64_t count, Reason reason);
  void reportRun();

  Receiver& receiver_;
  const std::size_t longest_;
  std::uint64_t position_ = 0;  // of the next byte fed

  bool open_ = false;
  std::uint64_t messageOffset_ = 0;
  std::vector<std::uint8_t> held_;  // of the open message, what cannot be handed out in place
  std::uint64_t tooLong_ = 0;       // how much of the open message is not held any more

  std::uint64_t runOffset_ = 0;  // a run of dropped bytes that may still grow
  std::uint64_t runCount_ = 0;
  Reason runReason_ = Reason::Stray;
};

// In words, for a report line: "real-time", "outside of any message" ...
const char* describe(StreamJoiner::Reason reason);

}  // namespace Editor
