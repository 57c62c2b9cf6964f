#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "wire/Pacer.h"

namespace Editor {

// What went wrong with a port, as a line that names it.
class PortError : public std::runtime_error {
 public:
  enum class Kind : std::uint8_t {
    cannotOpen,  // no such port, not allowed, in use, no port at all
    gone,        // hung up, or pulled out: there is nobody at the other end any more
    ended,       // what arrives has come to its end, as a file does: it can still be sent
    failed,      // any other error of the system
  };

  PortError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

// Moves bytes and waits, and does nothing else: what is sent, and what comes of what arrives, others decide. Whatever
// waits or asks for the time does it here. Its operations throw PortError. One thread.
class Port {
 public:
  Port() = default;
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  virtual ~Port() = default;

  // As people know it, in full.
  virtual const std::string& name() const = 0;
  virtual Pacer::Takes takes() const = 0;
  // What is sent at unless somebody wants it otherwise.
  virtual Pace defaultPace() const = 0;
  // A longer message cannot be carried.
  virtual std::size_t longestMessage() const { return std::numeric_limits<std::size_t>::max(); }

  // Never goes back.
  virtual WireTime now() = 0;
  // Takes the first of these bytes, as many as go without waiting, maybe none; how many. A port that takes messages
  // takes a whole one or none.
  virtual std::size_t send(std::span<const std::uint8_t> bytes) = 0;
  // Waits until bytes have come, until `until` if there is one, until something can be sent if that is wanted, or until
  // somebody has woken it. The bytes, if there are any: valid until the next call.
  virtual std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) = 0;
  // How many bytes have arrived for which there was no room, all of them behind what the last wait() gave and before
  // what the next one gives. Counts up; discard() makes it 0.
  virtual std::uint64_t dropped() const { return 0; }
  // Throws away what has arrived before anybody asked for it, until nothing comes for a moment.
  virtual void discard() {}
  // Waits until all that was taken has left the machine, as far as that can be known.
  virtual void drain() {}
};

// Takes what arrives until nothing has for a moment, where anything has at all.
void discardUntilQuiet(Port& port);

}  // namespace Editor
