#include "messages/BackupOrder.h"

#include <algorithm>
#include <array>
#include <set>

#include "AddressRows.h"

namespace Editor {

namespace {

constexpr std::array kGroups{BDA::kFileDumpHi, BDA::kTriggerHi, BDA::kHeaderHi};

std::array<int, 4> placeOf(BulkAddress address) {
  const auto group = std::find(kGroups.begin(), kGroups.end(), address.hi) - kGroups.begin();
  const std::uint8_t parts = headerOf(EditBuffer::partVoice).mid;
  const bool isMulti = address.hi == BDA::kHeaderHi && address.mid == headerOf(EditBuffer::multi).mid;
  return {int(group), address.hi, isMulti ? 2 * parts - 1 : 2 * address.mid, address.lo};
}

}  // namespace

bool BackupOrder::operator()(BulkAddress a, BulkAddress b) const { return placeOf(a) < placeOf(b); }

std::optional<BulkAddress> backupAddressOf(ContentId content) {
  const std::optional<MidLo> fileDump = fileDumpOf(content);
  const std::optional<MidLo> header = headerOf(content);
  if (fileDump && isWritableFileDump({BDA::kFileDumpHi, fileDump->mid, fileDump->lo}))
    return BulkAddress{BDA::kFileDumpHi, fileDump->mid, fileDump->lo};
  if (header) return BulkAddress{BDA::kHeaderHi, header->mid, header->lo};
  return std::nullopt;
}

std::vector<BulkAddress> everythingInABackup() {
  std::set<BulkAddress, BackupOrder> all;
  const auto addContent = [&](std::optional<ContentId> content) {
    if (content) all.insert(backupAddressOf(canonical(*content)).value());
  };
  BDA::forEachAddress(BDA::kHeaderRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    editBufferOf(mid) ? void(all.insert({row.hi, mid, lo})) : addContent(contentOfHeader({mid, lo}));
  });
  BDA::forEachAddress(BDA::kFileDumpRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (row.hi == BDA::kFileDumpHi) addContent(contentOfFileDump({mid, lo}));
  });
  BDA::forEachAddress(BDA::kFavoriteRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    all.insert({row.hi, mid, lo});
  });
  for (const BulkAddress address : systemAddresses()) all.insert(address);
  return {all.begin(), all.end()};
}

}  // namespace Editor
