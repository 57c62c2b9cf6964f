#include "wire/WireEnd.h"

#include <algorithm>

#include "messages/Text.h"

namespace Editor {

namespace {

// Sends and waits once.
class Turn {
 public:
  enum class For : std::uint8_t { all, sending };

  Turn(WireEnd& end, Port& port, For purpose) : end_(end), port_(port), purpose_(purpose) {}

  // What has arrived, once there is nothing to send at once.
  std::span<const std::uint8_t> operator()() {
    constexpr WireTime kPatience = std::chrono::milliseconds(5);
    while (true) {
      const WireTime now = port_.now();
      const std::span<const std::uint8_t> bytes = end_.toSend(now);
      if (bytes.empty()) {
        stuckSince_.reset();
        if (end_.isDone() || (purpose_ == For::sending && !end_.due())) return {};
        return port_.wait(end_.due(), false);
      }
      const std::size_t count = port_.send(bytes);
      end_.sent(count);
      const bool wasStuck = stuckSince_.has_value();
      if (count > 0) stuckSince_.reset();
      if (count == bytes.size()) continue;
      if (count == 0) beStuck(now);
      // A port that has taken nothing may say all the same that it would.
      return port_.wait(std::max(end_.due().value_or(now), now + kPatience), !(stuckSince_ && wasStuck));
    }
  }

 private:
  void beStuck(WireTime now) {
    if (!stuckSince_) stuckSince_ = now;
    if (const std::optional<WireTime> patience = end_.patience(); patience && now - *stuckSince_ >= *patience)
      throw PortError(PortError::Kind::failed, "port " + escape(port_.name()) + ": it takes no bytes any more");
  }

  WireEnd& end_;
  Port& port_;
  const For purpose_;
  std::optional<WireTime> stuckSince_;  // it takes nothing of what is there for it
};

}  // namespace

void run(WireEnd& end, Port& port, const std::function<bool()>& isStopped) {
  Turn turn(end, port, Turn::For::all);
  std::uint64_t dropped = 0;
  end.pass(port.now());
  while (!end.isDone() && !isStopped()) {
    const std::span<const std::uint8_t> arrived = turn();
    const WireTime now = port.now();
    arrived.empty() ? end.pass(now) : end.receive(arrived, now);
    if (const std::uint64_t count = port.dropped() - dropped; count > 0) end.lost(count, now);
    dropped = port.dropped();
  }
  if (end.isDone()) port.drain();
}

void sendRest(WireEnd& end, Port& port, const std::function<bool()>& isStopped) {
  Turn turn(end, port, Turn::For::sending);
  while (end.due() && !isStopped()) turn();
  port.drain();
}

}  // namespace Editor
