#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "transcript/Seal.h"

namespace Editor {

// A text is no transcript.
class TranscriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Does a transcript again: hands the messages in it to an editor, as they were handed then, and compares all that is
// sent, shown, logged and told.
class Replay {
 public:
  struct Difference {
    std::size_t line;  // from 1
    std::string text;
  };
  struct Result {
    std::uint64_t messages = 0;  // were handed over
    std::optional<Difference> difference;
    // The line from which on nothing could be done: another program has changed the library there, and the transcript
    // does not hold what became of it.
    std::optional<std::size_t> endsAt;
    bool isCutShort = false;      // its last line is
    std::uint64_t unwritten = 0;  // so many messages that were sent then do not stand in it
  };

  // Throws TranscriptError.
  explicit Replay(std::string_view text);

  // Whether run() has to be given the library that its messages met: it does not hold that.
  bool needsLibrary() const { return !isHeadAltered() && !head_.at("library").is_string(); }
  // That library's file, when the transcript was written; "": there was none.
  std::string libraryName() const;

  // `editor` has an empty library in memory, and has handled nothing. `library`: the one that it begins with, as the
  // bytes of its file; nothing: that of the transcript. Throws TranscriptError, and LibraryError where what was given
  // is no library.
  Result run(EmbeddedEditor& editor, std::optional<Library::Bytes> library = {});

 private:
  using Json = nlohmann::ordered_json;

  struct Line {
    enum class Kind : std::uint8_t {
      handed,   // to the assistant
      sent,     // by the assistant
      passed,   // only over the wire, or it failed with the library
      library,  // another program has changed it
    };

    explicit Line(std::size_t lineNumber) : number(lineNumber) {}

    const std::size_t number;
    Kind kind = Kind::passed;
    Json json;
    std::vector<std::uint8_t> bytes;  // of the message, or of the library; none: it is not there
    BDA::DevicePortNum port{};
    std::uint64_t message = 0;       // handed and sent
    std::uint64_t run = 0;           // handed: of which Run; 0: of none
    std::optional<std::size_t> job;  // handed: it is the request of one
    // handed: by which of its answers it is, from 0, the line of what was sent
    std::map<std::uint64_t, std::size_t> sent;
  };

  bool isHeadAltered() const { return altered_ && altered_->line == 1; }
  Json readHead(const std::string& line, std::string_view next);
  void readLines(std::string_view text);
  void readLine(const std::string& text, Line& line);
  static void readMessage(Line& line);
  static void takeLibrary(EmbeddedEditor& editor, std::span<const std::uint8_t> image);
  static std::optional<Library::Bytes> libraryIn(const Json& json);
  void begin(EmbeddedEditor& editor, std::optional<Library::Bytes> library) const;
  std::optional<Difference> replay(const Line& line, EmbeddedEditor& editor, Result& result) const;
  std::optional<Difference> compareSent(const Line& line, const std::vector<AssistantHost::Sent>& now,
                                        Result& result) const;
  void link(std::size_t line);

  Seal seal_;
  Json head_;
  std::deque<Line> lines_;                       // up to one that is not as it was written
  std::map<std::uint64_t, std::size_t> handed_;  // by message: the last one of that number
  std::optional<Difference> altered_;            // that one
  bool isCutShort_ = false;
};

}  // namespace Editor
