#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "exchange/EmbeddedEditor.h"
#include "output/OutputFile.h"

namespace Editor {

// Where a message came from; a request of the program's own comes from nowhere.
struct MessageOrigin {
  std::uint64_t message;  // from 1, through all files
  const std::string* file = nullptr;
  std::optional<std::uint64_t> offset;
};

// One JSON object, without line end: a message that was handed to the assistant, and what became of it.
std::string jsonOf(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                   const Record& record);

// The same of one that was only heard.
std::string jsonOf(const MessageOrigin& origin, std::span<const std::uint8_t> message);

// The trace of a run: such an object a line for each message.
class Trace {
 public:
  // "": there is none.
  explicit Trace(const std::string& path);

  void add(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
           const Record& record);
  // As OutputFile does.
  void passOn() {
    if (file_) file_->passOn();
  }
  void commit();

 private:
  std::optional<OutputFile> file_;
};

}  // namespace Editor
