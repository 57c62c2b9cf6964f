#pragma once

#include <functional>
#include <memory>
#include <string>

#include "output/Console.h"
#include "wire/BytePort.h"
#include "wire/WireEnd.h"

namespace Editor {

// The port that was named, open, as long as an Interruptible lives: Ctrl-C wakes who waits there. Says so where it has
// to wait for somebody who reads. Throws Failure (kUnusableInput, kInterrupted).
std::unique_ptr<Port> openPort(const std::string& name, BytePort::Direction direction, Console& console);

// Lets the end go on at the port until it is done, true, or until Ctrl-C has come, false. Throws PortError, and what
// the end throws.
bool runAt(Port& port, WireEnd& end);

// The same, but that the first Ctrl-C calls `stop`, which brings the end to one, and the second ends it at once. False:
// there was one.
bool runAt(Port& port, WireEnd& end, const std::function<void()>& stop);

// Says what has arrived for which there was no room: for who is not told of it piece by piece.
void tellDropped(const Port& port, Console& console);

}  // namespace Editor
