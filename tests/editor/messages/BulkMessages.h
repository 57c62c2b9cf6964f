#pragma once

// Bulk messages as an instrument would send them, for tests.

#include <cstdint>
#include <vector>

#include "AddressRows.h"
#include "messages/AddressNames.h"

using Bytes = std::vector<std::uint8_t>;

inline Bytes dump(Editor::BulkAddress address, const Bytes& data = {}, std::uint8_t device = 0) {
  Bytes message{
      0xF0,       0x7D,        device,    0x7F, 0x14, std::uint8_t(data.size() >> 7), std::uint8_t(data.size() & 0x7F),
      address.hi, address.mid, address.lo};
  message.reserve(message.size() + data.size() + 2);
  message.insert(message.end(), data.begin(), data.end());
  unsigned sum = 0;
  for (std::size_t i = 5; i < message.size(); ++i) sum += message[i];
  message.push_back(std::uint8_t((0u - sum) & 0x7F));
  message.push_back(0xF7);
  return message;
}

// A dump of that block with as many data bytes as it has, all of them `value`.
inline Bytes blockDump(Editor::BulkAddress address, std::uint8_t value = 0) {
  return dump(address, Bytes(Editor::findBlock(address)->dataLength.value_or(0), value));
}

inline Bytes request(Editor::BulkAddress address, std::uint8_t device = 0) {
  return {0xF0, 0x7D, std::uint8_t(0x20 | device), 0x7F, 0x14, address.hi, address.mid, address.lo, 0xF7};
}

inline Bytes damaged(Bytes message) {
  message[message.size() - 2] ^= 1;
  return message;
}

// The blocks of one of the map's lists, in table order.
inline std::vector<Editor::BulkAddress> blocksOf(BDA::List list) {
  std::vector<Editor::BulkAddress> blocks;
  BDA::forEachAddress(BDA::kParameterRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (BDA::listOf(row.hi) == std::size_t(list)) blocks.push_back({row.hi, mid, lo});
  });
  return blocks;
}
