#include "midi/FileKind.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "midi/HexText.h"

namespace Editor {

namespace {

using namespace std::string_view_literals;

struct Magic {
  std::size_t at;
  std::string_view bytes;
  const char* what;
};

// The first that fits tells. Containers stand behind what they can hold.
constexpr std::array kMagics{
    Magic{0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
    Magic{0, "\x89PNG\r\n\x1A\n"sv, "a PNG picture"},
    Magic{0, "GIF8"sv, "a GIF picture"},
    Magic{0, "%PDF-"sv, "a PDF document"},
    Magic{0,
          "\x7F"
          "ELF"sv,
          "a program (ELF)"},
    Magic{0, "MZ"sv, "a Windows program"},
    Magic{0, "\xCA\xFE\xBA\xBE"sv, "a program for macOS or Java"},
    Magic{0, "\xCF\xFA\xED\xFE"sv, "a program for macOS"},
    Magic{0, "SQLite format 3\0"sv, "a SQLite database, perhaps a library: name it with --library"},
    Magic{0, "PK\3\4"sv, "a ZIP archive: unpack it first"},
    Magic{0, "\x1F\x8B"sv, "a gzip archive: unpack it first"},
    Magic{0, "BZh"sv, "a bzip2 archive: unpack it first"},
    Magic{0,
          "\xFD"
          "7zXZ\0"sv,
          "an xz archive: unpack it first"},
    Magic{0, "7z\xBC\xAF\x27\x1C"sv, "a 7z archive: unpack it first"},
    Magic{0, "Rar!\x1A\7"sv, "a RAR archive: unpack it first"},
    Magic{257, "ustar"sv, "a tar archive: unpack it first"},
    Magic{8, "WAVE"sv, "a WAVE sound"},
    Magic{0, "FORM"sv, "an AIFF sound or another IFF file"},
    Magic{0, "ID3"sv, "an MP3 sound"},
    Magic{0, "OggS"sv, "an Ogg sound"},
    Magic{0, "fLaC"sv, "a FLAC sound"},
    Magic{4, "ftyp"sv, "an MPEG-4 film or sound"},
    Magic{0, "RIFF"sv, "a RIFF file without MIDI"},
    Magic{0, "MThd"sv, "a Standard MIDI File without System Exclusive that can be read"},
    Magic{0, kUtf8Mark, "text"},
    Magic{0, "#!"sv, "a script"},
    Magic{0, "<!DOCTYPE"sv, "a web page"},
    Magic{0, "<html"sv, "a web page"},
    Magic{0, "<?xml"sv, "an XML text"},
    Magic{0, "{\\rtf"sv, "a rich text"},
};

bool isText(std::span<const std::uint8_t> first) {
  return std::all_of(first.begin(), first.end(), [](std::uint8_t byte) {
    return byte >= 0x80 ? byte != 0xFF : byte >= ' ' ? byte != 0x7F : byte == '\t' || byte == '\n' || byte == '\r';
  });
}

bool fits(const Magic& magic, std::span<const std::uint8_t> first) {
  if (first.size() < magic.at + magic.bytes.size()) return false;
  return std::equal(magic.bytes.begin(), magic.bytes.end(), first.begin() + std::ptrdiff_t(magic.at),
                    [](char expected, std::uint8_t byte) { return static_cast<std::uint8_t>(expected) == byte; });
}

// A comment, or digits in pairs; the last pair may be cut.
bool isHexText(std::span<const std::uint8_t> first) {
  constexpr std::string_view kDigits = "0123456789ABCDEFabcdef";
  std::string_view text(reinterpret_cast<const char*>(first.data()), std::min(first.size(), kMidiKindBytes));
  if (text.starts_with(kUtf8Mark)) return true;
  text.remove_prefix(std::min(text.find_first_not_of(kHexBlanks), text.size()));
  if (text.empty()) return false;
  while (!text.empty() && text.front() != '#') {
    const std::size_t digits = std::min(text.find_first_not_of(kDigits), text.size());
    if (digits % 2 != 0 && digits < text.size()) return false;
    text.remove_prefix(digits);
    const std::size_t blanks = std::min(text.find_first_not_of(kHexBlanks), text.size());
    if (digits + blanks == 0) return false;
    text.remove_prefix(blanks);
  }
  return true;
}

constexpr std::size_t kMostLookedAt = 65'536;

}  // namespace

MidiKind midiKindOf(std::span<const std::uint8_t> first) {
  if (fits({0, "MThd", nullptr}, first)) return MidiKind::standard;
  if (fits({0, "RIFF", nullptr}, first)) return MidiKind::riff;
  return isHexText(first) && isText(first.first(std::min(first.size(), kMostLookedAt))) ? MidiKind::text
                                                                                        : MidiKind::stream;
}

std::string describeFile(std::span<const std::uint8_t> first) {
  if (first.empty()) return "an empty file";
  const auto* const magic =
      std::find_if(kMagics.begin(), kMagics.end(), [&](const Magic& one) { return fits(one, first); });
  if (magic != kMagics.end()) return magic->what;
  if (first.front() >= 0x80) return "MIDI without a whole System Exclusive message";
  return isText(first) ? "text" : "something else";
}

}  // namespace Editor
