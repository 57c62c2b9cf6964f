#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "exchange/EmbeddedEditor.h"
#include "midi/StreamJoiner.h"
#include "wire/Faults.h"
#include "wire/Pacer.h"
#include "wire/WireEnd.h"

namespace Editor {

// A library at the end of a wire, as the instrument would be: takes what arrives, and sends what it answers.
class Instrument final : public WireEnd, private StreamJoiner::Receiver {
 public:
  // What is told of each message, and of bytes that became none. What it throws comes out of receive().
  class Observer {
   public:
    // A message that begins there is handled next.
    virtual void handling(std::uint64_t /*offset*/) {}
    virtual void handled(std::uint64_t number, std::uint64_t offset, std::span<const std::uint8_t> message,
                         const Record& record) = 0;
    virtual void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) = 0;
    // A message has arrived that a fault keeps from being handled as it is: what it has left, if anything, comes next.
    virtual void spoiled(std::span<const std::uint8_t> /*message*/) {}
    // Bytes are to go out next, of that answer or of none. It may be another one by then: a fault has got it.
    virtual void goesOut(const std::optional<Pacer::Answer>& /*answer*/) {}
    // A message of its answer has so many bytes that the port cannot carry it: it does not go out.
    virtual void tooLong(std::uint64_t number, std::size_t length) = 0;

   protected:
    ~Observer() = default;
  };

  struct Options {
    BDA::DevicePortNum port = BDA::DevicePort_Main;  // on which messages arrive
    bool echoes = false;                             // what it echoes goes out as well
    std::vector<Fault> faults = {};
    std::uint64_t seed = 0;                                                // of the faults
    std::size_t longestMessage = std::numeric_limits<std::size_t>::max();  // that the port carries
  };

  // Editor and observer outlive this object.
  Instrument(EmbeddedEditor& editor, const Options& options, Pacer pacer, Observer& observer)
      : editor_(editor),
        options_(options),
        observer_(observer),
        pacer_(std::move(pacer)),
        faults_(options.faults, options.seed),
        joiner_(*this, kLongest) {}
  // The library has room again where it was a fault that had none.
  ~Instrument() override { editor_.library().setRoom(std::nullopt); }

  // Throws LibraryError when the library fails: the message has changed nothing.
  void receive(std::span<const std::uint8_t> bytes, WireTime now) override;
  void lost(std::uint64_t count, WireTime now) override;
  void pass(WireTime now) override;
  std::optional<WireTime> due() const override { return pacer_.due(); }
  std::span<const std::uint8_t> toSend(WireTime now) override;
  void sent(std::size_t count) override;
  // It waits for more until it is stopped.
  bool isDone() const override { return isStopped_ && (!pacer_.due() || isNobodyThere_); }

  // Nothing more is handled: the message that has begun to go out is the last one.
  void stop();
  // Nothing more comes: what has begun has no end. Not behind an error of the library.
  void finish() { joiner_.finish(); }

 private:
  static constexpr std::size_t kLongest = 16U << 20;

  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override;
  void handle(std::span<const std::uint8_t> message, std::uint64_t offset);
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    observer_.dropped(offset, count, reason);
  }

  EmbeddedEditor& editor_;
  const Options options_;
  Observer& observer_;
  Pacer pacer_;
  Faults faults_;
  StreamJoiner joiner_;
  WireTime now_{};
  std::uint64_t number_ = 0;
  bool isStopped_ = false;
  std::optional<WireTime> offeredSince_;  // what nobody has taken yet
  bool isNobodyThere_ = false;            // who takes what it sends
};

}  // namespace Editor
