#include "targets/Banks.h"

#include <map>
#include <optional>

#include "messages/BackupOrder.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

std::vector<Bank> makeBanks() {
  std::vector<Bank> banks;
  std::map<std::string, std::size_t> numbers;
  for (const BulkAddress address : everythingInABackup()) {
    const std::optional<ContentId> content = contentNamedBy(address);
    if (!content) continue;
    const std::string place = nameOf(*content);
    const std::string name = bankOfName(place);
    const auto [number, isNew] = numbers.try_emplace(name, banks.size());
    if (isNew) banks.push_back({name, contentKindOf(*content), place, place, 0});
    Bank& bank = banks[number->second];
    bank.last = place;
    ++bank.places;
  }
  return banks;
}

}  // namespace

const std::vector<Bank>& allBanks() {
  static const std::vector<Bank> kBanks = makeBanks();
  return kBanks;
}

nlohmann::ordered_json toJson(const Bank& bank) {
  return {{"bank", bank.name},
          {"kind", wordOf(bank.kind)},
          {"first", bank.first},
          {"last", bank.last},
          {"places", bank.places}};
}

}  // namespace Editor
