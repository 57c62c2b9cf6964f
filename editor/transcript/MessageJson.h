#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// Where a message came from; a request of the program's own comes from nowhere.
struct MessageOrigin {
  std::uint64_t message;  // from 1, through all files
  const std::string* file = nullptr;
  std::optional<std::uint64_t> offset;
};

// A message that was handed to the assistant, and what became of it, as the trace has it.
nlohmann::ordered_json toJson(const MessageOrigin& origin, BDA::DevicePortNum port,
                              std::span<const std::uint8_t> message, const Record& record);
// The same as one line, without its end.
std::string jsonOf(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                   const Record& record);

// The same of one that was only heard.
std::string jsonOf(const MessageOrigin& origin, std::span<const std::uint8_t> message);

}  // namespace Editor
