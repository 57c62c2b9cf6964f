#include "targets/InventoryJson.h"

#include <nlohmann/json.hpp>

#include "contents/Fingerprint.h"
#include "models/Latin1.h"

namespace Editor {

nlohmann::ordered_json toJson(const Inventory::Entry& entry) {
  using Json = nlohmann::ordered_json;
  Json json{{"content", nameOf(entry.id)},
            {"type", entry.id.type},
            {"number", entry.id.number},
            {"stored", entry.isStored()}};
  if (entry.isDamaged) json["damaged"] = true;
  if (entry.content) {
    const Fingerprint print = fingerprintOf(entry.id, entry.content->bytes);
    json["name"] = latin1ToUtf8(entry.content->name);
    json["bytes"] = entry.content->bytes.size();
    json["opaque"] = print.isOpaque;
    json["hash"] = print.hash;
  }
  json["favourite"] = entry.favourite ? Json(*entry.favourite) : Json();
  return json;
}

}  // namespace Editor
