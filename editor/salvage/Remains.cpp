#include "salvage/Remains.h"

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"

namespace Editor {

namespace {

bool hasParameters(BulkAddress address) { return address.hi != BDA::kHeaderHi && address.hi != BDA::kFooterHi; }

std::string_view textOf(const Piece& piece) {
  const std::span<const std::uint8_t> data = dataOf(piece);
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// Of captures that share one of these no instrument can say that they are two sounds.
using Link = std::tuple<std::optional<unsigned>, std::uint8_t, std::uint8_t, std::uint8_t, std::string_view>;

template <typename Visit>
void forEachLink(const Capture& capture, Visit visit) {
  for (const auto& [address, piece] : capture.pieces)
    if (hasParameters(address)) visit(Link{capture.device, address.hi, address.mid, address.lo, textOf(piece)});
}

}  // namespace

Addresses differencesOf(const Group& captures) {
  Addresses found;
  std::map<BulkAddress, const Piece*, BackupOrder> first;
  for (const Capture* const capture : captures)
    for (const auto& [address, piece] : capture->pieces)
      if (!carrySame(*first.emplace(address, &piece).first->second, piece)) found.insert(address);
  return found;
}

std::vector<Group> connected(const Group& captures) {
  std::map<Link, std::vector<std::size_t>> sharing;
  for (std::size_t i = 0; i < captures.size(); ++i)
    forEachLink(*captures[i], [&](const Link& link) { sharing[link].push_back(i); });
  std::vector<bool> isTaken(captures.size());
  std::vector<Group> groups;
  for (std::size_t first = 0; first < captures.size(); ++first) {
    if (isTaken[first]) continue;
    isTaken[first] = true;
    Group group{captures[first]};
    for (std::size_t i = 0; i < group.size(); ++i) {
      std::vector<std::size_t> others;
      forEachLink(*group[i], [&](const Link& link) {
        for (const std::size_t other : std::exchange(sharing[link], {}))
          if (!isTaken[other]) {
            isTaken[other] = true;
            others.push_back(other);
          }
      });
      std::ranges::sort(others);
      for (const std::size_t other : others) group.push_back(captures[other]);
    }
    groups.push_back(std::move(group));
  }
  return groups;
}

Group uncontradicted(const Group& captures, std::optional<std::size_t> preferred) {
  Group decisive;
  for (const Capture* const capture : captures)
    if (capture->source == preferred) decisive.push_back(capture);
  const Addresses undecided = differencesOf(decisive);
  Pieces pieces;
  for (const Capture* const capture : decisive) pieces.insert(capture->pieces.begin(), capture->pieces.end());
  const auto differs = [&](const Pieces::value_type& one) {
    const auto other = pieces.find(one.first);
    return other != pieces.end() && (undecided.contains(one.first) || !carrySame(one.second, other->second));
  };
  Group others = captures;
  std::erase_if(others, [&](const Capture* one) {
    return one->source != preferred && std::ranges::any_of(one->pieces, differs);
  });
  return others;
}

void KeptBlocks::add(const std::vector<Piece>& unit) {
  Numbers blocks;
  for (const Piece& piece : unit) {
    const std::uint8_t* const address = piece.bytes.data() + BDA::kDumpAddressAt;
    const Block block{address[0], address[1], address[2], textOf(piece)};
    const auto [number, isNew] = numbers_.emplace(block, units_.size());
    if (isNew) units_.emplace_back();
    blocks.push_back(number->second);
  }
  std::ranges::sort(blocks);
  if (!known_.insert(blocks).second) return;
  for (const std::size_t block : blocks) units_[block].push_back(known_.size());
}

bool KeptBlocks::haveAll(const Pieces& pieces) {
  Numbers blocks;
  for (const auto& [address, piece] : pieces) {
    const auto number = numbers_.find({address.hi, address.mid, address.lo, textOf(piece)});
    if (number == numbers_.end()) return false;
    blocks.push_back(number->second);
  }
  const auto [answer, isNew] = answers_.emplace(std::move(blocks), false);
  if (isNew) answer->second = isInOneUnit(answer->first);
  return answer->second;
}

bool KeptBlocks::isInOneUnit(const Numbers& blocks) const {
  const std::size_t rarest =
      *std::ranges::min_element(blocks, {}, [&](std::size_t block) { return units_[block].size(); });
  return std::ranges::any_of(units_[rarest], [&](std::size_t unit) {
    return std::ranges::all_of(blocks,
                               [&](std::size_t block) { return std::ranges::binary_search(units_[block], unit); });
  });
}

}  // namespace Editor
