#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "models/ContentAddress.h"

namespace Editor {

// The three bytes by which a bulk message names its block.
struct BulkAddress {
  std::uint8_t hi;
  std::uint8_t mid;
  std::uint8_t lo;

  friend bool operator==(const BulkAddress&, const BulkAddress&) = default;
};

inline constexpr BulkAddress kWriteTrigger{0x11, 0x00, 0x00};
// A screen is asked for at the first of these, where its first message comes back. Those that carry the rest come at
// the second, which is not in the map.
inline constexpr BulkAddress kScreen{0x51, 0x00, 0x00};
inline constexpr BulkAddress kScreenData{0x51, 0x00, 0x01};

// What a block is for.
enum class Role : std::uint8_t {
  unknown,  // not in the map, and none of the following
  header,   // begins a unit
  part,     // of a unit: admitted by its header only
  footer,   // ends it
  fileDump,
  trigger,      // has the file dumps that are held written
  alone,        // taken or answered by itself: system, favourites, lists of names, the screen
  emptyHeader,  // stands, with its footer, for an empty mixing voice; such addresses are not in the map
  emptyFooter,
};

// What the map says of a block.
struct BlockFacts {
  std::uint8_t type;
  Role role;
  std::uint8_t running;                     // which of its row's middle bytes the address has, from 0
  std::optional<std::uint16_t> dataLength;  // nothing: it varies
};

// Nothing when the address is not in the map.
std::optional<BlockFacts> findBlock(BulkAddress address);
// Of an address that is not in the map: unknown, emptyHeader or emptyFooter.
Role roleOutsideOfMap(BulkAddress address);

// Whether the instrument stores a file dump of that address; the others can only be requested.
bool isWritableFileDump(BulkAddress address);

// "0E 0A 05"
std::string formatAddress(BulkAddress address);

// The block in words, counted from 1: "normal voice user 1, 006: header", "element 3 oscillator". An address outside
// of the map is called unknown.
std::string describeAddress(BulkAddress address);

// The short name of a block that can be asked for by itself: "voice:user1:6" for a header, "file:voice:user1:6" for a
// file dump, "system:quick-setup:3". Footers and the parameter blocks between header and footer have none.
std::optional<std::string> nameOf(BulkAddress address);

// That of a content's header, or else of its file dump.
std::string nameOf(ContentId content);

// nameOf, or else the three bytes.
std::string nameOrBytes(BulkAddress address);
// "voice:user1:6 (0E 0A 05)", with what else is to be said of it in the brackets too; the bytes once where it has no
// name.
std::string nameAndBytes(BulkAddress address, const std::string& more = "");

// The names of all blocks that have one.
std::vector<std::string> blockNames();

// The block of that name; nothing when there is none. Case does not count.
std::optional<BulkAddress> findName(std::string_view name);

// Asked for when they are needed.
using TakenNames = std::function<std::vector<std::string>()>;

// Reads three bytes, `0E0A05`, `0E 0A 05` or `0E/0A/05` (which need not be in the map), or a name. Throws
// std::invalid_argument, which says what was expected or may have been meant: one of the names that the caller takes.
BulkAddress parseAddress(std::string_view text, const TakenNames& taken = blockNames);

// All system blocks, in table order.
std::vector<BulkAddress> systemAddresses();

}  // namespace Editor
