#pragma once

#include <functional>
#include <string>
#include <vector>

#include "input/InputStream.h"
#include "messages/Messages.h"
#include "messages/Units.h"
#include "output/Console.h"

namespace Editor {

// What a message or a unit says of itself, as a line for people or as JSON.
enum class LineForm : std::uint8_t { words, json };
std::string lineOf(const InputMessage& message, const Reading& reading, LineForm form);
std::string lineOf(const UnitReport& unit, LineForm form);

// What reading files came to.
struct ReadingResult {
  bool areAllWhole = true;            // no message and no file is broken by bytes that are missing
  std::vector<std::string> problems;  // of each file that proved unusable
};

// Prints the line of every message, under a heading for each of several files or with the losses between them, and
// calls visit(message, reading).
ReadingResult printReadings(InputStream& input, LineForm form, Console& console,
                            const std::function<void(const InputMessage&, const Reading&)>& visit);

}  // namespace Editor
