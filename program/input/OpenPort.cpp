#include "input/OpenPort.h"

#include <fmt/format.h>

#include "ExitCode.h"
#include "input/MidiPorts.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/StreamJoiner.h"
#include "output/Progress.h"

namespace Editor {

std::unique_ptr<Port> openPort(const std::string& name, BytePort::Direction direction, Console& console) {
  const bool isPath = BytePort::isName(name);
  const auto refuse = [&](const char* why) {
    throw Failure(kUnusableInput, fmt::format("port {}: {}", escape(name), why));
  };
  if (!isPath && name.starts_with("pty:")) refuse("a new pseudo terminal gets its name from the system: expected pty:");
  if (!isPath && name == kVirtualPort) refuse("it needs a name: expected virtual:NAME");
  try {
    if (!isPath) return openMidiPort(name, direction, Interruptible::descriptor());
    return std::make_unique<BytePort>(name, direction, Interruptible::descriptor(), [&](const std::string& path) {
      const std::string text = fmt::format("waiting for somebody to read from {}", escape(path));
      name == "pty:" ? console.problem(text) : console.note(text);  // a path that nobody knows yet
    });
  } catch (const PortError& error) {
    Interruptible::check();
    throw Failure(kUnusableInput, error.what());
  }
}

bool runAt(Port& port, WireEnd& end) {
  run(end, port, Interruptible::isAsked);
  return end.isDone();
}

bool runAt(Port& port, WireEnd& end, const std::function<void()>& stop) {
  bool isStopped = false;
  run(end, port, [&] {
    if (!Interruptible::isAsked() || isStopped) return Interruptible::isAsked();
    isStopped = true;
    Interruptible::forget();
    stop();
    return end.isDone();
  });
  return !isStopped;
}

void tellDropped(const Port& port, Console& console) {
  if (const std::uint64_t count = port.dropped(); count > 0)
    console.problem(fmt::format("{} dropped: {}", counted(count, "byte"), describe(StreamJoiner::Reason::Overrun)));
}

}  // namespace Editor
