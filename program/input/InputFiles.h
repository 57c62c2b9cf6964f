#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "midi/MidiFile.h"
#include "output/Console.h"

namespace Editor {

// The message files of a command line, read whole before anything is done with them.
class InputFiles {
 public:
  struct Message {
    std::uint64_t number;     // from 1, through all files
    const std::string& file;  // as it was named
    std::uint64_t offset;
    std::span<const std::uint8_t> bytes;
  };

  // Bytes that became no message: a run of them in no message, a message cut short, or a file that is not built as it
  // must be.
  struct Loss {
    std::string file;
    std::uint64_t offset;
    std::uint64_t dropped;  // how many; 0 of a file's structure
    std::string reason;
    enum class Kind : std::uint8_t { loose, cutShort, brokenFile } kind;
  };

  // "-" is standard input. Throws Failure (kUnusableInput) for a file that cannot be read or has no message in it; what
  // bytes it has instead is told first.
  InputFiles(const std::vector<std::string>& paths, Console& console);

  // Tells which bytes became no message, and why. False when that broke a message or a file; stray bytes and real-time
  // messages are only told.
  bool reportLosses(Console& console) const;

  template <typename Visit>
  void forEachMessage(Visit visit) const {
    std::uint64_t number = 0;
    for (const File& file : files_)
      for (const MidiFile::Message& message : file.midi.messages)
        visit(Message{++number, file.name, message.offset, message.bytes});
  }
  // The same, and the losses between them: before the first message of the file that stands behind them.
  template <typename VisitMessage, typename VisitLoss>
  void forEachPiece(VisitMessage visitMessage, VisitLoss visitLoss) const {
    std::uint64_t number = 0;
    for (const File& file : files_) {
      const std::vector<Loss> losses = lossesOf(file);
      auto loss = losses.begin();
      for (const MidiFile::Message& message : file.midi.messages) {
        for (; loss != losses.end() && loss->offset < message.offset; ++loss) visitLoss(*loss);
        visitMessage(Message{++number, file.name, message.offset, message.bytes});
      }
      for (; loss != losses.end(); ++loss) visitLoss(*loss);
    }
  }
  // Where the message of that number stands, as placeOf says it.
  std::string place(std::uint64_t number) const;
  bool areSeveral() const { return files_.size() > 1; }
  std::uint64_t countMessages() const;

 private:
  struct File {
    std::string name;
    MidiFile midi;
  };
  static bool reportLosses(const File& file, Console& console);
  static std::vector<Loss> lossesOf(const File& file);  // by offset

  std::vector<File> files_;
};

// The name of a file for people: "standard input" for "-", without control characters.
std::string displayName(const std::string& file);

// "a.syx: message 7 at offset 1200", the beginning of every line about a message.
std::string placeOf(const InputFiles::Message& message);

}  // namespace Editor
