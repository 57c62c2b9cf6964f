#include "Naive.h"

namespace Naive {

std::uint8_t checkSum(const std::uint8_t* message, std::uint32_t length) {
  std::uint32_t sum = 0;
  for (std::uint32_t i = BDA::kByteCountAt; i < length - 2; ++i) sum += message[i];
  return (0U - sum) & 0x7F;
}

// The first block of the address's list that has these three bytes.
BDA::BulkBlock* find(const BDA::BulkTable& table, const BDA::Address& address) {
  const std::size_t list = BDA::listOf(address.getHi());
  if (list == BDA::kListCount) return nullptr;
  for (BDA::BulkBlock* block : table.getList(BDA::List(list)))
    if (block->isEqual(address)) return block;
  return nullptr;
}

void encode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination) {
  destination.clear();
  destination.reserve(source.size() + source.size() / 7 + 1);
  for (std::size_t at = 0; at < source.size(); at += 7) {
    const std::size_t count = source.size() - at < 7 ? source.size() - at : 7;
    std::uint8_t group[8] = {};
    for (unsigned i = 0; i < count; ++i) {
      group[0] = std::uint8_t(group[0] | (source[at + i] & 0x80) >> (i + 1));
      group[i + 1] = source[at + i] & 0x7F;
    }
    destination.insert(destination.end(), group, group + count + 1);
  }
}

bool decode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination) {
  static constexpr std::uint8_t kMask[8] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};
  destination.clear();
  destination.reserve(source.size());
  for (std::size_t at = 0; at < source.size();) {
    const std::size_t count = source.size() - at < 8 ? source.size() - at : 8;
    if (count < 2) return false;
    std::uint8_t group[7] = {};
    for (unsigned i = 0; i + 1 < count; ++i)
      group[i] = std::uint8_t(source[at + i + 1] | (source[at] & kMask[6 - i]) << (i + 1));
    destination.insert(destination.end(), group, group + count - 1);
    at += count;
  }
  return true;
}

}  // namespace Naive
