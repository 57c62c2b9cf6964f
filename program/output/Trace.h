#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "output/OutputFile.h"
#include "transcript/MessageJson.h"

namespace Editor {

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
