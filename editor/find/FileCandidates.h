#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "find/Candidates.h"

namespace Editor {

// A message of a file, the `number`th of it, from 1.
struct FileMessage {
  std::uint64_t number;
  std::span<const std::uint8_t> bytes;
};

// What the messages of a file carry.
struct FileContents {
  std::vector<Candidate> whole;  // in the order in which their units end
  // Units that are not whole or that no instrument takes, and file dumps that are broken or never written, each.
  std::uint64_t broken = 0;
};

// Receives the whole units of message files, so that they are contents: one file after the other, none of which sees
// anything of another. Units are judged as UnitFollower does, for whatever devices they are. One place can come several
// times, as often as a whole unit stores it; favourite flags are those that the file leaves behind.
class FileReceiver {
 public:
  FileReceiver();

  // Calls `progress` with how many of the messages are done, from time to time. Throws what that throws, and
  // LibraryError: there is no memory left.
  FileContents receive(std::span<const FileMessage> messages, EditBuffers buffers,
                       const std::function<void(std::size_t)>& progress = {});

 private:
  struct Judged;
  void beginFile();
  void take(const Judged& judged, const UnitReport& unit, FileContents& found);
  void takeStored(const Judged& judged, const UnitReport& unit, const Record& record, FileContents& found);
  void takeFlags(const Judged& judged, FileContents& found);

  EmbeddedEditor editor_;  // in memory
  std::optional<EmbeddedEditor::Run> run_;
  std::uint64_t liveBefore_ = 0;
  bool hasFlags_ = false;
};

}  // namespace Editor
