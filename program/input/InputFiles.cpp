#include "input/InputFiles.h"

#include <fmt/format.h>

#include <algorithm>

#include "ExitCode.h"
#include "messages/Text.h"
#include "midi/Counted.h"

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

InputFiles::InputFiles(const std::vector<std::string>& paths, Console& console) {
  for (const std::string& path : paths) {
    std::string error;
    const auto bytes = loadBytes(path, error);
    if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(path), error));
    files_.push_back({path, readMidiFile(*bytes)});
    if (!files_.back().midi.messages.empty()) continue;
    reportLosses(files_.back(), console);
    throw Failure(kUnusableInput, fmt::format("{}: no System Exclusive message in it", displayName(path)));
  }
}

bool InputFiles::reportLosses(Console& console) const {
  bool whole = true;
  for (const File& file : files_) whole = reportLosses(file, console) && whole;
  return whole;
}

bool InputFiles::reportLosses(const File& file, Console& console) {
  const std::string name = displayName(file.name);
  for (const MidiFile::Error& error : file.midi.errors)
    console.problem(fmt::format("{}: offset {}: {}", name, error.offset, error.text));
  std::uint64_t realTime = 0;  // a clock sends one every few milliseconds
  for (const MidiFile::Dropped& dropped : file.midi.dropped) {
    const bool isRealTime = dropped.reason == StreamJoiner::Reason::RealTime;
    if (isRealTime) realTime += dropped.count;
    const std::string line = fmt::format("{}: offset {}: {} dropped, {}", name, dropped.offset,
                                         counted(dropped.count, "byte"), describe(dropped.reason));
    isRealTime ? console.detail(line) : console.problem(line);
  }
  if (realTime > 0) console.problem(fmt::format("{}: {} dropped", name, counted(realTime, "real-time byte")));
  return !isBroken(file.midi);
}

std::vector<InputFiles::Loss> InputFiles::lossesOf(const File& file) {
  std::vector<Loss> losses;
  for (const MidiFile::Error& error : file.midi.errors)
    losses.push_back({file.name, error.offset, 0, error.text, Loss::Kind::brokenFile});
  for (const MidiFile::Dropped& dropped : file.midi.dropped)
    losses.push_back({file.name, dropped.offset, dropped.count, describe(dropped.reason),
                      breaksAMessage(dropped.reason) ? Loss::Kind::cutShort : Loss::Kind::loose});
  std::stable_sort(losses.begin(), losses.end(), [](const Loss& a, const Loss& b) { return a.offset < b.offset; });
  return losses;
}

std::string InputFiles::place(std::uint64_t number) const {
  std::string place;
  forEachMessage([&](const Message& message) {
    if (message.number == number) place = placeOf(message);
  });
  return place;
}

std::uint64_t InputFiles::countMessages() const {
  std::uint64_t count = 0;
  for (const File& file : files_) count += file.midi.messages.size();
  return count;
}

std::string displayName(const std::string& file) { return file == "-" ? "standard input" : escape(file); }

std::string placeOf(const InputFiles::Message& message) {
  return fmt::format("{}: message {} at offset {}", displayName(message.file), message.number, message.offset);
}

}  // namespace Editor
