#include "wire/WireEnd.h"

#include <algorithm>
#include <utility>

namespace Editor {

namespace {

// Sends and waits once.
class Turn {
 public:
  Turn(WireEnd& end, Port& port) : end_(end), port_(port) {}

  // What has arrived, once there is nothing to send at once.
  std::span<const std::uint8_t> operator()() {
    constexpr WireTime kPatience = std::chrono::milliseconds(5);
    while (true) {
      const WireTime now = port_.now();
      const std::span<const std::uint8_t> bytes = end_.toSend(now);
      if (bytes.empty()) return port_.wait(end_.due(), false);
      const std::size_t count = port_.send(bytes);
      end_.sent(count);
      if (count == bytes.size()) continue;
      // A port that has taken nothing may say all the same that it would.
      const bool wasStuck = std::exchange(isStuck_, count == 0);
      return port_.wait(std::max(end_.due().value_or(now), now + kPatience), !(isStuck_ && wasStuck));
    }
  }

 private:
  WireEnd& end_;
  Port& port_;
  bool isStuck_ = false;
};

}  // namespace

void run(WireEnd& end, Port& port, const std::function<bool()>& isStopped) {
  Turn turn(end, port);
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
  Turn turn(end, port);
  while (end.due() && !isStopped()) turn();
  port.drain();
}

}  // namespace Editor
