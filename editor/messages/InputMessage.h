#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "midi/StreamJoiner.h"

namespace Editor {

// A complete message of a file, or of a port, as it came.
struct InputMessage {
  std::uint64_t number;     // from 1, through all files
  const std::string& file;  // as it was named
  std::uint64_t offset;
  std::span<const std::uint8_t> bytes;
};

// Bytes that became no message: a run of them in no message, a message cut short, or a file that is not built as it
// must be.
struct InputLoss {
  enum class Kind : std::uint8_t { realTime, loose, cutShort, brokenFile };

  const std::string& file;
  std::uint64_t offset;
  std::uint64_t dropped;  // how many; 0 of a file's structure
  std::string_view reason;
  Kind kind;
  std::span<const std::uint8_t> beginning = {};  // of a message of a stream that was cut short: its first bytes
};

// What it means for a file that a stream has so.
InputLoss::Kind kindOf(StreamJoiner::Reason reason);

// Whether that broke a message or the file.
inline bool isBroken(const InputLoss& loss) {
  return loss.kind == InputLoss::Kind::cutShort || loss.kind == InputLoss::Kind::brokenFile;
}

}  // namespace Editor
