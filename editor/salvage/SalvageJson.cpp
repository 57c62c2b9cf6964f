#include "salvage/SalvageJson.h"

#include <nlohmann/json.hpp>

#include "messages/ReadingJson.h"
#include "salvage/Remains.h"

namespace Editor {

nlohmann::ordered_json toJson(const Salvaged& unit, const std::vector<std::string>& files) {
  using Json = nlohmann::ordered_json;
  Json from = Json::array();
  for (const std::size_t source : unit.from) from.push_back(files[source]);
  Addresses contradicts(unit.contradicts.begin(), unit.contradicts.end());
  for (const NotTaken& other : unit.notTaken) contradicts.insert(other.differs.begin(), other.differs.end());
  Json json{{"unit", nameOrBytes(unit.address)},
            {"address", formatAddress(unit.address)},
            {"state", wordOf(unit.state)},
            {"from", std::move(from)},
            {"missing", toJson(unit.missing)},
            {"contradicts", toJson(std::vector(contradicts.begin(), contradicts.end()))}};
  std::vector<BulkAddress> corrected;
  for (const Piece& piece : unit.messages)
    if (piece.wrongChecksum) corrected.push_back(*readMessage(piece.bytes).address);
  if (!corrected.empty()) json["corrected"] = toJson(corrected);
  if (unit.isMerged) json["merged"] = true;
  return json;
}

}  // namespace Editor
