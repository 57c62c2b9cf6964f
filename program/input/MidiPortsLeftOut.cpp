// Where the program is built without MIDI ports of the system.

#include <fmt/format.h>

#include "input/MidiPorts.h"
#include "messages/Text.h"

namespace Editor {

namespace {

constexpr const char* kLeftOut = "this program was built without MIDI ports of the system";

}  // namespace

MidiPortsFound findMidiPorts() { return {{}, kLeftOut}; }

std::unique_ptr<Port> openMidiPort(const std::string& name, BytePort::Direction /*direction*/, int /*wake*/) {
  throw PortError(PortError::Kind::cannotOpen,
                  fmt::format("port {}: {}: expected a path with a slash, pty: or -", escape(name), kLeftOut));
}

}  // namespace Editor
