#include "messages/BackupOrder.h"

#include <algorithm>
#include <array>

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

}  // namespace Editor
