#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "wire/Port.h"

namespace Editor {

// What goes on at one end of a wire. It is told what arrives and what time it is, says what goes out and when it wants
// to be asked next, and never waits: the same runs in a program, in a page, and in a test whose clock it moves.
class WireEnd {
 public:
  WireEnd() = default;
  WireEnd(const WireEnd&) = delete;
  WireEnd& operator=(const WireEnd&) = delete;
  virtual ~WireEnd() = default;

  // Bytes have arrived, cut anywhere.
  virtual void receive(std::span<const std::uint8_t> bytes, WireTime now) = 0;
  // So many bytes would have arrived next, but are lost: the port had no room for them.
  virtual void lost(std::uint64_t /*count*/, WireTime /*now*/) {}
  // It is due() or later, or nothing in particular.
  virtual void pass(WireTime now) = 0;
  // When to be asked next, whatever arrives until then; nothing: only when something arrives.
  virtual std::optional<WireTime> due() const = 0;
  // What may go out now, and how many of these bytes have. Valid until the next call of anything.
  virtual std::span<const std::uint8_t> toSend(WireTime /*now*/) { return {}; }
  virtual void sent(std::size_t /*count*/) {}
  // How long the port may take none of them before nobody waits for it any longer; nothing: for ever.
  virtual std::optional<WireTime> patience() const { return std::nullopt; }
  // All is done, and everything sent.
  virtual bool isDone() const = 0;
};

// Lets it go on at a port until it is done, or until `isStopped` after somebody has woken the port. Throws PortError,
// also for a port that takes no bytes any more, and what the end throws.
void run(WireEnd& end, Port& port, const std::function<bool()>& isStopped);

// Lets go out what it still has to send, where nothing more arrives. Throws PortError.
void sendRest(WireEnd& end, Port& port, const std::function<bool()>& isStopped);

}  // namespace Editor
