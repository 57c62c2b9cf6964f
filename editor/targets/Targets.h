#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "messages/AddressNames.h"
#include "messages/Text.h"
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

  // A text would end at a NUL, which what was typed or read may have.
  TargetError(Kind kind, const std::string& text) : std::runtime_error(escape(text)), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

// The name under which a place is told, the same for all addresses of a content: that of its header, if it has one.
// Of an address that is of no content the block's own name, or its three bytes.
std::string placeNameOf(const Target& target);
std::string placeNameOf(BulkAddress address);
// The content that a header, a footer or a file dump is of.
std::optional<ContentId> contentNamedBy(BulkAddress address);

// Throws TargetError (refused), which names the target.
[[noreturn]] void refuse(const Target& target, const std::string& why);

// The words of a command line as addresses or names: three words of two digits each are one address.
std::vector<std::string> joinAddresses(const std::vector<std::string>& words);

// What one word names: one place, or those of a bank (`voice:user1`) or of a range (`voice:user1:1..16`) in the order
// of their numbers.
template <typename Place>
struct Places {
  std::string name;   // readable
  bool isOne = true;  // neither bank nor range, however many places these have
  std::vector<Place> list;
};

// All throw TargetError (noTarget).
//
// `system` stands for all system blocks.
Places<BulkAddress> parsePlaces(const std::string& text);
// The same for targets, of which `system` is one.
Places<Target> parseTargets(const std::string& text);

Target parseTarget(const std::string& text);
// The words of one target: one, or three hex bytes.
Target parseOneTarget(const std::vector<std::string>& words);
// A target that is a stored content, or could be.
Target parseContent(const std::string& text);
// The same for all that a word names.
Places<Target> parseContents(const std::string& text);
// So many places of the bank that `first` lies in, from there on.
std::vector<Target> placesFrom(const Target& first, std::size_t count);
// All that the words name, banks and ranges with all their places.
std::vector<BulkAddress> parseAddresses(const std::vector<std::string>& words);

// The part of a numbered name that its bank shares: "voice:user1" of "voice:user1:6". "drum:gm" has a bank to itself.
std::string bankOfName(const std::string& name);

}  // namespace Editor
