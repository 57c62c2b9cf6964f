#include "convert/FileFormat.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "midi/HexText.h"
#include "midi/MidiFile.h"
#include "midi/MidiFileWriter.h"

namespace Editor {

namespace {

struct Ending {
  std::string_view text;
  FileFormat format;
};
constexpr std::array kEndings{Ending{".syx", FileFormat::stream}, Ending{".mid", FileFormat::standard},
                              Ending{".txt", FileFormat::text}};

}  // namespace

std::optional<FileFormat> formatOf(const std::string& file) {
  const auto isEnding = [&](const Ending& ending) {
    return file.size() >= ending.text.size() &&
           std::equal(ending.text.begin(), ending.text.end(), file.end() - std::ptrdiff_t(ending.text.size()),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
  };
  const auto* const found = std::find_if(kEndings.begin(), kEndings.end(), isEnding);
  return found == kEndings.end() ? std::nullopt : std::optional(found->format);
}

std::optional<WrittenFile> writeFile(const Batch& batch, FileFormat format, std::chrono::milliseconds pause) {
  WrittenFile file;
  MidiFileWriter midi(pause);
  for (const Batch::Message& message : batch.messages) {
    if (format == FileFormat::standard) {
      midi.add(message.bytes);
    } else if (format == FileFormat::text) {
      const std::string line = hexLine(message.bytes);
      file.bytes.insert(file.bytes.end(), line.begin(), line.end());
    } else {
      file.bytes.insert(file.bytes.end(), message.bytes.begin(), message.bytes.end());
    }
  }
  if (format != FileFormat::standard) return file;
  file.bytes = midi.finish();
  file.duration = midi.duration();
  if (file.bytes.size() > kLargestMidiFile) return std::nullopt;
  return file;
}

}  // namespace Editor
