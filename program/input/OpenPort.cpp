#include "input/OpenPort.h"

#include <fmt/format.h>

#include "ExitCode.h"
#include "messages/Text.h"
#include "output/Progress.h"

namespace Editor {

std::unique_ptr<Port> openPort(const std::string& name, BytePort::Direction direction) {
  if (!BytePort::isName(name))
    throw Failure(
        kUnusableInput,
        fmt::format("port {}: there is none of that name: expected a path with a slash, pty: or -", escape(name)));
  try {
    return std::make_unique<BytePort>(name, direction, Interruptible::descriptor());
  } catch (const PortError& error) {
    throw Failure(kUnusableInput, error.what());
  }
}

bool runAt(Port& port, WireEnd& end) {
  run(end, port, Interruptible::isAsked);
  return end.isDone();
}

}  // namespace Editor
