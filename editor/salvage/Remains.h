#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <vector>

#include "messages/BackupOrder.h"
#include "salvage/Captures.h"

namespace Editor {

// Captures of one unit or single block. All that is asked of them takes not much longer than to read them: of one unit
// there can be as many as a file has messages.
using Group = std::vector<const Capture*>;
using Addresses = std::set<BulkAddress, BackupOrder>;

// The blocks in which any two of them differ.
Addresses differencesOf(const Group& captures);

// Those that hang together by blocks of parameters that they share, for one device.
std::vector<Group> connected(const Group& captures);

// Those that differ in no block from any of the preferred source, and its own.
Group uncontradicted(const Group& captures, std::optional<std::size_t> preferred);

// The blocks of whole units, to find those that are nothing else than part of one.
class KeptBlocks {
 public:
  // Takes the messages of one unit; they outlive this object.
  void add(const std::vector<Piece>& unit);
  // Whether one of the units has all of these blocks.
  bool haveAll(const Pieces& pieces);

 private:
  using Block = std::tuple<std::uint8_t, std::uint8_t, std::uint8_t, std::string_view>;  // address and data
  using Numbers = std::vector<std::size_t>;                                              // in ascending order

  bool isInOneUnit(const Numbers& blocks) const;

  std::map<Block, std::size_t> numbers_;  // of the blocks
  std::vector<Numbers> units_;            // by block: those that have it; units of equal blocks are one
  std::set<Numbers> known_;               // the units, by their blocks
  std::map<Numbers, bool> answers_;
};

}  // namespace Editor
