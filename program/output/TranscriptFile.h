#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Program.h"
#include "transcript/Transcript.h"

namespace Editor {

// The transcript of a run, if the program is to write one; else nothing here does anything. It is written line by line
// from when the run begins, at its port if it has one: what stands there is as much as it has done, however it ends. A
// file of that name stays as it is until then, and is this run's alone from the first.
class TranscriptFile {
 public:
  // Throws Failure.
  TranscriptFile(Transcript::Options how, Program& program);
  TranscriptFile(const TranscriptFile&) = delete;
  TranscriptFile& operator=(const TranscriptFile&) = delete;
  ~TranscriptFile();  // writes what waits

  // This object outlives the editor, and the port. Throws Failure for a library that cannot be read.
  void listen(EmbeddedEditor& editor);
  std::unique_ptr<Port> listen(std::unique_ptr<Port> port);

  void comesFrom(const std::string* file, std::uint64_t offset) {
    if (transcript_) transcript_->comesFrom(file, offset);
  }
  void goesOut(const std::optional<Pacer::Answer>& answer) {
    if (transcript_) transcript_->goesOut(answer);
  }
  // A message that is not handed on.
  void arrived(std::span<const std::uint8_t> message) {
    if (transcript_) transcript_->arrived(message);
  }
  void keptBack(std::span<const std::uint8_t> message) {
    if (transcript_) transcript_->keptBack(message);
  }
  void settle() {
    if (transcript_) transcript_->settle();
  }

 private:
  void open();
  void begin();
  void write(const std::string& line);
  void fail(int error);

  Program& program_;
  const bool hasPort_;
  bool hasBegun_ = false;
  std::string path_;     // where a link to it leads
  bool isNew_ = false;   // the file was not there before
  std::string waiting_;  // lines from before it began
  int file_ = -1;
  bool hasFailed_ = false;  // nothing more is written
  std::optional<Transcript> transcript_;
};

}  // namespace Editor
