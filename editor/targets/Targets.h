#pragma once

#include <optional>
#include <stdexcept>
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

// Why words name no target, or a target refuses what is asked of it.
class TargetError : public std::runtime_error {
 public:
  enum class Kind : std::uint8_t { noTarget, refused };

  TargetError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

// Throws TargetError (refused), which names the target.
[[noreturn]] void refuse(const Target& target, const std::string& why);

// The words of a command line as addresses or names: three words of two digits each are one address.
std::vector<std::string> joinAddresses(const std::vector<std::string>& words);

// Throw TargetError (noTarget).
Target parseTarget(const std::string& text);
// The words of one target: one, or three hex bytes.
Target parseOneTarget(const std::vector<std::string>& words);
// A target that is a stored content, or could be.
Target parseContent(const std::string& text);
// `system` stands for all system blocks.
std::vector<BulkAddress> parseAddresses(const std::vector<std::string>& words);

}  // namespace Editor
