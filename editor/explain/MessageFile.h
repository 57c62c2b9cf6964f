#pragma once

#include <cstdint>
#include <optional>
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

  // Of a file of at most kLargestMidiFile.
  explicit MessageFile(std::vector<std::uint8_t> file);

  // Whether it holds messages at all: as for the verbs that receive, a file that has only other makers' messages must
  // at least begin with one.
  bool isUsable() const;
  // Of one that does not: why, as it stands behind the file's name.
  std::string whyUnusable() const;
  // Where it is not built as it must be: what stands there may have been read in part, or not at all.
  const std::vector<MidiFile::Error>& errors() const { return errors_; }

  std::uint64_t size() const { return file_.size(); }
  // Calls visit(byte) for each byte, in the order of the file.
  template <typename Visit>
  void forEachByte(Visit visit) const {
    auto run = runs_.begin();
    for (std::uint32_t i = 0; i < values().size(); ++i) {
      while (run != runs_.end() && i >= run->first + run->count) ++run;
      visit(byteIn(run == runs_.end() ? nullptr : &*run, i));
    }
  }
  // The byte at that offset; nothing where there is none: behind the end, between the digits of a text.
  std::optional<Byte> find(std::uint64_t offset) const;
  // What stands in the file there, digit or not.
  std::uint8_t raw(std::uint64_t offset) const { return file_[offset]; }

  std::size_t countMessages() const { return messages_.size(); }
  std::span<const std::uint8_t> message(std::uint32_t number) const {
    const Message& message = messages_[number - 1];
    return {messageBytes_.data() + message.begin, message.size};
  }

 private:
  // Bytes that follow each other, counted without what is none in a text, and have the same to say.
  struct Run {
    std::uint32_t first;
    std::uint32_t count;
    std::uint32_t message;
    std::uint32_t at;  // of the first
    const char* dropped;
  };
  struct Message {
    std::size_t begin;
    std::size_t size;
  };

  void readText();
  void readMidi();
  void addMessage(std::span<const std::uint8_t> bytes, std::uint64_t offset, const std::vector<bool>& isMidi);
  void addLoss(const MidiFile::Dropped& loss, const std::vector<bool>& isMidi);
  template <typename Add>
  void walk(const std::vector<bool>& isMidi, std::uint64_t offset, std::uint64_t count, bool isRealTime, Add add);

  const std::vector<std::uint8_t>& values() const { return isText_ ? textBytes_ : file_; }
  std::uint64_t offsetOf(std::uint32_t index) const { return isText_ ? textOffsets_[index] : index; }
  std::uint32_t indexAt(std::uint64_t offset) const;
  Byte byteIn(const Run* run, std::uint32_t index) const;

  std::vector<std::uint8_t> file_;
  bool isText_;
  std::vector<std::uint8_t> textBytes_;  // of a text, each with the offset of its first digit
  std::vector<std::uint32_t> textOffsets_;
  std::vector<Run> runs_;  // in order; a byte in none is no MIDI byte
  std::vector<std::uint8_t> messageBytes_;
  std::vector<Message> messages_;
  std::vector<MidiFile::Error> errors_;
};

}  // namespace Editor
