#pragma once

#include <memory>
#include <string>
#include <vector>

#include "wire/BytePort.h"

namespace Editor {

// The MIDI ports that other programs and the machine's devices have, by name.
struct MidiPortsFound {
  struct Found {
    std::string name;
    bool isVirtual;  // another program's, no device's
    bool in;         // it can be received from
    bool out;        // it can be sent to
  };
  std::vector<Found> ports;
  std::string problem;  // why no MIDI system of the machine could be asked; "": one was
};
MidiPortsFound findMidiPorts();

// A name begins so for a port of our own, which others connect to.
inline constexpr const char* kVirtualPort = "virtual:";

// Of that name, or with it as a part; or one of our own, whose name is not empty. `wake` as for a BytePort. Throws
// PortError (cannotOpen).
std::unique_ptr<Port> openMidiPort(const std::string& name, BytePort::Direction direction, int wake);

}  // namespace Editor
