#pragma once

#include <string>

#include "input/InputFiles.h"
#include "messages/Messages.h"
#include "messages/Units.h"
#include "output/Console.h"

namespace Editor {

// What a message or a unit says of itself, as a line for people or as JSON.
enum class LineForm : std::uint8_t { words, json };
std::string lineOf(const InputFiles::Message& message, const Reading& reading, LineForm form);
std::string lineOf(const UnitReport& unit, LineForm form);
// In JSON: for people the console tells losses as problems.
std::string jsonOf(const InputFiles::Loss& loss);

// Prints the line of every message, under a heading for each of several files or with the losses between them, and
// calls visit(message, reading).
template <typename Visit>
void printReadings(const InputFiles& input, LineForm form, Console& console, Visit visit) {
  const std::string* file = nullptr;
  input.forEachPiece(
      [&](const InputFiles::Message& message) {
        if (input.areSeveral() && form == LineForm::words && file != &message.file)
          console.line(displayName(message.file) + ":");
        file = &message.file;
        const Reading reading = readMessage(message.bytes);
        console.line(lineOf(message, reading, form));
        visit(message, reading);
      },
      [&](const InputFiles::Loss& loss) {
        if (form == LineForm::json) console.line(jsonOf(loss));
      });
}

}  // namespace Editor
