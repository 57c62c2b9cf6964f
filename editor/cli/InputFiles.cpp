#include "cli/InputFiles.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/Failure.h"

namespace Editor {

namespace {

bool breaksAMessage(StreamJoiner::Reason reason) {
  return reason == StreamJoiner::Reason::Abandoned || reason == StreamJoiner::Reason::Unfinished;
}

bool isBroken(const MidiFile& midi) {
  return !midi.errors.empty() || std::any_of(midi.dropped.begin(), midi.dropped.end(),
                                             [](const auto& dropped) { return breaksAMessage(dropped.reason); });
}

}  // namespace

InputFiles::InputFiles(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const std::string name = path == "-" ? "standard input" : escape(path);
    std::string error;
    const auto bytes = loadBytes(path, error);
    if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", name, error));
    files_.push_back({name, readMidiFile(*bytes)});
    const MidiFile& midi = files_.back().midi;
    if (!midi.messages.empty()) continue;
    Console console;
    reportLosses(console);
    throw Failure(kUnusableInput, fmt::format("{}: no System Exclusive message in it", name));
  }
}

bool InputFiles::reportLosses(Console& console) const {
  bool whole = true;
  for (const File& file : files_) {
    for (const MidiFile::Error& error : file.midi.errors)
      console.problem(fmt::format("{}: offset {}: {}", file.name, error.offset, error.text));
    for (const MidiFile::Dropped& dropped : file.midi.dropped)
      console.problem(fmt::format("{}: offset {}: {} byte{} dropped, {}", file.name, dropped.offset, dropped.count,
                                  dropped.count == 1 ? "" : "s", describe(dropped.reason)));
    whole = whole && !isBroken(file.midi);
  }
  return whole;
}

std::uint64_t InputFiles::countMessages() const {
  std::uint64_t count = 0;
  for (const File& file : files_) count += file.midi.messages.size();
  return count;
}

std::string placeOf(const InputFiles::Message& message) {
  return fmt::format("{}: message {} at offset {}", message.file, message.number, message.offset);
}

}  // namespace Editor
