#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "midi/MidiFile.h"

namespace Editor {

// A message file, read whole, in which every byte knows the message that it stands in.
//
// The bytes of a text of hex digits are those that it writes, each at the offset of its first digit; blanks and
// comments are none. All other files are their bytes.
class MessageFile {
 public:
  static constexpr std::uint32_t kNone = 0;

  struct Byte {
    std::uint64_t offset;           // in the file
    std::uint32_t message = kNone;  // counted from 1
    std::uint32_t at = 0;           // which byte of it, F0 is 0
    std::uint8_t value;
    const char* dropped = nullptr;  // in words, why it is in no message; null: it is no MIDI byte
  };

  explicit MessageFile(std::vector<std::uint8_t> file);

  // Whether it holds messages at all: as for the verbs that receive, a file that has only other makers' messages must
  // at least begin with one.
  bool isUsable() const;
  // What it seems to be.
  std::string describe() const;

  std::uint64_t size() const { return file_.size(); }
  const std::vector<Byte>& bytes() const { return bytes_; }
  // The byte at that offset; null where there is none: behind the end, between the digits of a text.
  const Byte* find(std::uint64_t offset) const;
  // What stands in the file there, digit or not.
  std::uint8_t raw(std::uint64_t offset) const { return file_[offset]; }

  std::size_t countMessages() const { return messages_.size(); }
  std::span<const std::uint8_t> message(std::uint32_t number) const { return messages_[number - 1]; }

 private:
  void readText();
  void readMidi();

  std::vector<std::uint8_t> file_;
  bool isText_;
  std::vector<Byte> bytes_;
  std::vector<std::vector<std::uint8_t>> messages_;
};

}  // namespace Editor
