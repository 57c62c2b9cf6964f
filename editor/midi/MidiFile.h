#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "midi/StreamJoiner.h"

namespace Editor {

// The System Exclusive messages of a file, and everything that kept bytes of it from being one.
//
// Bad input is no exception: what could be read stands in `messages`, the rest is named in `dropped` and `errors`. A
// file was read whole and clean exactly when both are empty.
struct MidiFile {
  struct Message {
    std::span<const std::uint8_t> bytes;  // F0..F7; valid as long as the MidiFile or what it was moved to
    std::uint64_t offset;                 // of F0 in the file: in a Standard MIDI File that of the event
  };
  struct Dropped {
    std::uint64_t offset;
    std::uint64_t count;
    StreamJoiner::Reason reason;
  };
  struct Error {  // a Standard MIDI File that is not built as it must be
    std::uint64_t offset;
    std::string text;
  };

  bool standard = false;  // a Standard MIDI File, also one in a RIFF container, not a raw stream
  std::vector<Message> messages;
  std::vector<Dropped> dropped;
  std::vector<Error> errors;
  // The parts of the file that went into messages or were dropped, in their order: all of a raw stream, else what the
  // System Exclusive events carry.
  std::vector<std::span<const std::uint8_t>> parts;

  std::unique_ptr<std::uint8_t[]> arena;  // holds the messages, so that none costs an allocation of its own
};

// One that is larger is not read: it is in memory as a whole. The same holds for all other files that are read whole.
inline constexpr std::size_t kLargestMidiFile = 64'000'000;
inline constexpr const char* kTooLargeForMemory = "files of its kind are read whole, this one is larger than 64 MB";

// Reads a whole file, recognised by its content (MidiKind); text is to it a stream like any other. A
// message of a stream is at most kLongestMessage long.
//
// Of a Standard MIDI File the System Exclusive events count: F0 events, F7 events that continue a message, and whole
// messages in F7 events; anything else that F7 events carry is dropped. Between the parts of one message only meta
// events may stand: a channel event would reach the instrument in the middle of it. The tracks of format 1 are merged
// by time, a message counting from the event that ends it; those of format 0 and 2 follow each other. A broken track is
// read up to the break, the tracks after it are read. In a RIFF container the file is the chunk "data"; offsets are
// always those of the whole file.
MidiFile readMidiFile(std::span<const std::uint8_t> file);

// All bytes of a file of at most kLargestMidiFile, "-" is standard input. On failure nothing, and `error` says why in
// words without the file's name.
std::optional<std::vector<std::uint8_t>> loadBytes(const std::string& path, std::string& error);

// F0 first, F7 last, only data bytes between: what may be written to a file or a cable.
bool isSevenBit(std::span<const std::uint8_t> message);

}  // namespace Editor
