#pragma once

// From a three-byte address to its place in one of the thirteen lists, in constant time. Read-only data of the library;
// nothing is built at start-up.

#include "AddressRows.h"

namespace BDA {

// Where a block stands: `list` is kListCount when the address is not in the map.
struct BlockPlace {
  std::uint8_t list;
  std::uint16_t position;
};

// In every row the low byte runs from 00, and no two rows share a high and a middle byte, so that (high, middle) names
// a run of neighbours in one list: where it begins and how long it is. Page 0 is the empty page.
template <std::size_t PageCount>
struct AddressIndex {
  struct Neighbours {
    std::uint16_t first = 0;
    std::uint16_t count = 0;
  };
  struct HighByte {
    std::uint8_t page = 0;
    std::uint8_t list = kListCount;
  };
  std::array<HighByte, 256> high{};
  std::array<std::array<Neighbours, 128>, PageCount> page{};

  // Message bytes are not trusted to be 7-bit.
  constexpr BlockPlace find(unsigned hi, unsigned mid, unsigned lo) const {
    const HighByte byte = high[hi & 0xFF];
    const Neighbours neighbours = page[byte.page][mid & 0x7F];
    if (mid > 0x7F || lo >= neighbours.count) return {kListCount, 0};
    return {byte.list, std::uint16_t(neighbours.first + lo)};
  }
};

constexpr std::size_t countPages() {
  std::size_t pages = 1;
  for (const Route& route : kRoutes) pages += route.hi.size();
  return pages;
}

constexpr AddressIndex<countPages()> makeAddressIndex() {
  AddressIndex<countPages()> index;
  std::uint8_t pages = 1;
  for (const Route& route : kRoutes)
    for (unsigned hi = route.hi.first; hi <= route.hi.last; ++hi) index.high[hi] = {pages++, std::uint8_t(route.list)};
  std::array<std::uint16_t, kListCount> size{};
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    auto& neighbours = index.page[index.high[row.hi].page][mid];
    std::uint16_t& position = size[listOf(row.hi)];
    if (lo == 0) neighbours.first = position;
    ++neighbours.count;
    ++position;
  });
  return index;
}

inline constexpr auto kAddressIndex = makeAddressIndex();

namespace proof {

constexpr bool known(unsigned hi, unsigned mid, unsigned lo) {
  return kAddressIndex.find(hi, mid, lo).list != kListCount;
}

constexpr bool findsEveryBlock() {
  std::array<std::uint16_t, kListCount> size{};
  bool all = true;
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    const BlockPlace place = kAddressIndex.find(row.hi, mid, lo);
    all = all && place.list == listOf(row.hi) && place.position == size[listOf(row.hi)]++;
  });
  return all;
}
static_assert(findsEveryBlock());

static_assert(known(0x40, 0x06, 0x00) && !known(0x46, 0x06, 0x00) && known(0x46, 0x08, 0x00));
static_assert(known(0x47, 0x48, 0x00) && !known(0x47, 0x49, 0x00));
static_assert(known(0x0E, 0x60, 0x31) && known(0x0F, 0x60, 0x31) && !known(0x0E, 0x60, 0x32));
static_assert(known(0x0E, 0x21, 0x00) && !known(0x0E, 0x21, 0x01) && !known(0x0C, 0x21, 0x01));
static_assert(known(0x00, 0x55, 0x00) && !known(0x00, 0x56, 0x00));
static_assert(known(0x11, 0x00, 0x00) && known(0x11, 0x01, 0x00));
static_assert(!known(0x80, 0, 0) && !known(0, 0x80, 0) && !known(0, 0, 0xFF) && !known(0x0E, 0x80, 0));

}  // namespace proof
}  // namespace BDA
