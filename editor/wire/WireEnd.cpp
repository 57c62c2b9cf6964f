#include "wire/WireEnd.h"

namespace Editor {

void run(WireEnd& end, Port& port, const std::function<bool()>& isStopped) {
  end.pass(port.now());
  while (!end.isDone() && !isStopped()) {
    const std::span<const std::uint8_t> bytes = end.toSend(port.now());
    if (!bytes.empty()) {
      const std::size_t count = port.send(bytes);
      end.sent(count);
      if (count == bytes.size()) continue;
    }
    const std::span<const std::uint8_t> arrived = port.wait(end.due(), !bytes.empty());
    const WireTime now = port.now();
    arrived.empty() ? end.pass(now) : end.receive(arrived, now);
  }
  if (end.isDone()) port.drain();
}

}  // namespace Editor
