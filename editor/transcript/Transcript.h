#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "transcript/MessageJson.h"
#include "transcript/Seal.h"
#include "wire/ListenedPort.h"
#include "wire/WireTime.h"

namespace Editor {

// Writes down a run of messages so that it can be done again: which went in which direction when, what the assistant
// made of those that it was handed, and the library that they met. A line of JSON each, as docs/trace.md has them.
//
// A message that arrives at a port and is handed on later is one line. As long as that may still happen, and as long as
// it is open whether a Run will be committed, lines wait.
class Transcript final : public EditorListener, public PortListener {
 public:
  // What becomes of what the assistant sends.
  enum class Sent : std::uint8_t {
    atOnce,  // it goes where answers go
    later,   // it goes out at the port, where it is heard
    never,   // it goes nowhere
  };
  struct Options {
    std::string verb = {};
    std::string port = {};                  // of the wire, as it was asked for; "": none
    bool withLibrary = false;               // keeps the library in the transcript
    std::optional<std::string> names = {};  // the text of the names file
    bool anyDevice = false;                 // the editor takes messages as if they were for its own
    bool readsOnly = false;                 // the library is opened to read it
    Sent sent = Sent::atOnce;
    bool echoes = false;        // Sent::later: what it echoes goes out as well
    bool hearsHanded = false;   // what arrives is handed over at once, and heard there
    bool handsOnLater = false;  // what arrives: lines wait for settle()
  };

  // `write` gets each line, without its end, and throws nothing. `clock` tells the time.
  Transcript(Options options, std::function<WireTime()> clock, std::function<void(const std::string&)> write)
      : options_(std::move(options)), clock_(std::move(clock)), begin_(clock_()), write_(std::move(write)) {}

  // The next message that is handed over comes from there. The file's name outlives that.
  void comesFrom(const std::string* file, std::uint64_t offset) { origin_ = {0, file, offset}; }

  void found(Library& library) override;
  void handed(std::uint64_t number, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
              const Record* record) override;
  void ran(std::size_t job, std::span<const std::uint8_t> request, const Record* record) override;
  void runBegins() override;
  void runEnds(bool isCommitted) override;

  // What goes out next is that answer, or what is left of it, or none: among those with the same bytes it is that one.
  void goesOut(const std::optional<Pacer::Answer>& answer) { next_ = answer.value_or(Pacer::Answer{}); }

  void arrived(std::span<const std::uint8_t> message) override;
  void left(std::span<const std::uint8_t> message) override;

  // Options::hearsHanded: what has arrived is not handed over, or not as it is.
  void keptBack(std::span<const std::uint8_t> message);

  // What has arrived is handed on by now, or never will be.
  void settle();
  // Nothing more comes: writes what waits, and what the assistant would have sent.
  void finish();

 private:
  using Json = nlohmann::ordered_json;
  struct Line {
    Json json;
    std::vector<std::uint8_t> arrived;  // may still be handed on
    bool isOfRun = false;               // of the one that is open
  };
  using Lines = std::list<Line>;

  Json lineOf(const char* direction, BDA::DevicePortNum port, std::span<const std::uint8_t> message) const;
  Lines::iterator findArrived(std::span<const std::uint8_t> message);
  void leaveBehind(std::size_t count);
  void tell(const Record& record, std::uint64_t number, std::span<const std::uint8_t> message);
  void writeHead(Library* library);
  void write(const Json& json);
  void flush();

  const Options options_;
  const std::function<WireTime()> clock_;
  const WireTime begin_;
  const std::function<void(const std::string&)> write_;
  Seal seal_;
  bool hasHead_ = false;
  MessageOrigin origin_{};
  std::optional<std::size_t> job_;  // the request that is handed over is that of one
  bool isInRun_ = false;
  std::uint64_t runs_ = 0;
  Lines lines_;                              // that wait
  Lines::iterator handedTo_ = lines_.end();  // what is handed over next stands before it, or it is it
  struct Outgoing {
    Pacer::Answer answer;
    AssistantHost::Sent sent;
  };
  std::deque<Outgoing> outgoing_;      // Sent::later
  std::optional<Pacer::Answer> next_;  // of these; nothing: nobody says which
};

}  // namespace Editor
