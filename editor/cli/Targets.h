#pragma once

#include <optional>
#include <string>
#include <vector>

#include "messages/AddressNames.h"
#include "models/ContentAddress.h"

namespace Editor {

// What can be shown and replaced as a whole.
struct Target {
  enum class Kind : std::uint8_t { system, additional, editBuffer, content };

  Kind kind = Kind::system;
  std::string name;                   // readable
  std::optional<BulkAddress> header;  // edit buffers, and contents that have one
  EditBuffer buffer = EditBuffer::multi;
  std::uint8_t part = 0;  // of EditBuffer::partVoice
  ContentId content;
};

// Throws Failure (kRefused), which names the target.
[[noreturn]] void refuse(const Target& target, const std::string& why);

// The words of a command line as addresses or names: three words of two digits each are one address.
std::vector<std::string> joinAddresses(const std::vector<std::string>& words);

// Throw Failure (kWrongUsage).
Target parseTarget(const std::string& text);
// The words of one target: one, or three hex bytes.
Target parseOneTarget(const std::vector<std::string>& words);
// `system` stands for all system blocks.
std::vector<BulkAddress> parseAddresses(const std::vector<std::string>& words);

}  // namespace Editor
