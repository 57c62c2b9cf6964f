#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ExitCode.h"
#include "messages/MessageReader.h"

namespace Editor {

// A file that can be read and holds no messages: it is of another kind.
class NotMessages : public Failure {
 public:
  NotMessages(const std::string& text, bool isCut) : Failure(kUnusableInput, text), isCut_(isCut) {}

  // Whether it begins as messages do: something is lost with it.
  bool isCut() const { return isCut_; }

 private:
  bool isCut_;
};

// The message files of a command line, read from the first to the last, message by message: of a stream of MIDI bytes
// no more than one message is in memory, with some thousand losses at most, and one that comes through a pipe is handed
// on as soon as it is there.
class InputStream {
 public:
  enum class Takes : std::uint8_t { messages, jsonToo };

  // "-" is standard input. Throws Failure (kUnusableInput) when one cannot be opened, NotMessages when one holds no
  // messages; of what comes through a pipe that is known at its end.
  explicit InputStream(const std::vector<std::string>& paths, Takes takes = Takes::messages);
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;

  using VisitMessage = MessageReader::VisitMessage;
  using VisitLoss = MessageReader::VisitLoss;
  using VisitJson = std::function<void(const std::string& file, std::string_view text)>;
  // Calls one of them for each piece of the files, in their order; what it gets is valid as long as the call. JSON,
  // where it is taken, comes as the whole text of its file. Returns what proved unusable meanwhile, a text for each
  // file. Throws what they throw; Ctrl-C ends it between two pieces by Failure (kInterrupted).
  std::vector<std::string> read(const VisitMessage& visitMessage, const VisitLoss& visitLoss,
                                const VisitJson& visitJson = {});

  bool areSeveral() const { return files_.size() > 1; }
  // Whether one of them has no end yet: a pipe, or a terminal.
  bool isLive() const;
  // How many bytes all have together; 0 when that is not known.
  std::uint64_t size() const;

 private:
  struct File {
    std::string name;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream;
    bool isPlain = false;  // it can be read twice
    std::uint64_t size = 0;
  };

  std::string judge(const File& file) const;

  const Takes takes_;
  std::vector<File> files_;
};

// The name of a file for people: "standard input" for "-", without control characters.
std::string displayName(const std::string& file);

// "a.syx: message 7 at offset 1200", the beginning of every line about a message.
std::string placeOf(const InputMessage& message);

}  // namespace Editor
