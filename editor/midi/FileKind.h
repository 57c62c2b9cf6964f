#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Editor {

// The files that messages come in, by their first four bytes: whatever is none of the others is a stream. What begins
// as hex text may still be a stream that begins inside of a message: of more bytes that are given none, of the first
// 64 KB, is then one that no text has.
enum class MidiKind : std::uint8_t {
  stream,    // raw MIDI bytes, .syx
  standard,  // a Standard MIDI File, "MThd"
  riff,      // one in a RIFF container, "RIFF"
  text,      // bytes as two hex digits each, or a comment: see HexText.h
};
inline constexpr std::size_t kMidiKindBytes = 4;
MidiKind midiKindOf(std::span<const std::uint8_t> first);

// What a file that holds no messages seems to be, by its first bytes, some hundred of them: "a JPEG picture", "text",
// "an empty file", "MIDI without a whole System Exclusive message", or "something else".
std::string describeFile(std::span<const std::uint8_t> first);

}  // namespace Editor
