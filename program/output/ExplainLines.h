#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "explain/Explain.h"
#include "names/ParameterNames.h"

namespace Editor {

// What a byte of a file is, for people: one line or more, each with its end.
std::string textOf(const MessageFile::Byte& byte, const ByteMeaning& meaning, const ParameterNames& names);

// Where a parameter travels.
std::string lineOf(const CarryingByte& byte);

// A byte of a file, with what it is.
struct ExplainedByte {
  MessageFile::Byte byte;
  ByteMeaning meaning;
};
// The heading of a message: "message 7: dump of element 3 oscillator (41 02 00)"; of none: "in no message".
std::string headingOf(const ByteMeaning& meaning);
// Some bytes of one message, or of none, that follow each other: where they are, what they are in hex, what they mean.
std::string lineOf(std::span<const ExplainedByte> bytes, const ParameterNames& names);

}  // namespace Editor
