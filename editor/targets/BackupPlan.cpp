#include "targets/BackupPlan.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "AddressRows.h"
#include "bda/version.h"
#include "contents/Fingerprint.h"
#include "messages/BackupOrder.h"
#include "models/Latin1.h"
#include "targets/TargetModels.h"

namespace Editor {

BackupPlan planBackup(EmbeddedEditor& editor) {
  using Item = BackupPlan::Item;
  BackupPlan plan;
  const auto byName = [](BulkAddress address) { return Item{address, nameOrBytes(address), std::nullopt}; };
  for (const ContentId id : editor.library().contents()) {
    const std::optional<BulkAddress> address = backupAddressOf(id);
    if (!address)
      plan.unaddressed.push_back(nameOf(id));
    else
      (address->hi == BDA::kFileDumpHi ? plan.fileDumps : plan.units).push_back({*address, nameOf(id), id});
  }
  for (const Target& live : storedLive(editor))
    if (live.header) plan.units.push_back(byName(*live.header));
  for (const BulkAddress address : systemAddresses()) plan.system.push_back(byName(address));
  BDA::forEachAddress(BDA::kFavoriteRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    plan.favourites.push_back(byName({row.hi, mid, lo}));
  });
  for (std::vector<Item>* const group : {&plan.fileDumps, &plan.units, &plan.system, &plan.favourites})
    std::sort(group->begin(), group->end(),
              [](const Item& a, const Item& b) { return BackupOrder()(a.address, b.address); });
  return plan;
}

nlohmann::ordered_json manifestOf(EmbeddedEditor& editor, const BackupPlan& plan,
                                  const std::set<std::string>& leftOut) {
  nlohmann::ordered_json contents = nlohmann::ordered_json::array();
  for (const std::vector<BackupPlan::Item>* const group : {&plan.fileDumps, &plan.units})
    for (const BackupPlan::Item& item : *group) {
      if (!item.content || leftOut.contains(item.name)) continue;
      const Library::Content content = editor.library().content(*item.content).value();
      contents.push_back({{"place", item.name},
                          {"name", latin1ToUtf8(content.name)},
                          {"hash", fingerprintOf(*item.content, content.bytes).hash}});
    }
  return {{"version", BDA_VERSION_STRING},
          {"deviceNumber", deviceNumberWords(editor.tools())},
          {"contents", std::move(contents)}};
}

}  // namespace Editor
