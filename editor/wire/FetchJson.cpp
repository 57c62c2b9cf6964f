#include "wire/FetchJson.h"

#include <array>
#include <nlohmann/json.hpp>

#include "history/ChangeJson.h"
#include "messages/ReadingJson.h"

namespace Editor {

const char* wordOf(FetchedAs as) {
  constexpr std::array kWords{"stored", "kept", "empty", "lost"};
  return kWords.at(std::size_t(as));
}

nlohmann::ordered_json toJson(const Fetched& fetched, FetchedAs as, bool isRemoved,
                              const std::vector<PlaceChange>& with) {
  nlohmann::ordered_json json{{"unit", nameOrBytes(fetched.address)},
                              {"address", formatAddress(fetched.address)},
                              {"state", wordOf(as)},
                              {"tries", fetched.tries},
                              {"missing", toJson(fetched.missing)},
                              {"reason", fetched.reason}};
  if (fetched.isEmptyBySilence) json["silent"] = true;
  if (isRemoved) json["removed"] = true;
  for (const PlaceChange& change : with) json["with"].push_back(toJson(change));
  return json;
}

}  // namespace Editor
