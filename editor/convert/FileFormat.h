#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "convert/Batch.h"

namespace Editor {

// The files that messages are written to.
enum class FileFormat : std::uint8_t {
  stream,    // .syx: one message after the other
  standard,  // .mid: see MidiFileWriter
  text,      // .txt: one message a line, see HexText.h
};
// By the ending of its name, whose case does not count; nothing for others.
std::optional<FileFormat> formatOf(const std::string& file);

struct WrittenFile {
  std::vector<std::uint8_t> bytes;
  std::optional<std::chrono::microseconds> duration;  // how long a .mid takes to play
};
// The messages of a batch as a file; `pause` is that between the messages of a .mid. Nothing for a .mid that would be
// larger than we read.
std::optional<WrittenFile> writeFile(const Batch& batch, FileFormat format, std::chrono::milliseconds pause);

}  // namespace Editor
