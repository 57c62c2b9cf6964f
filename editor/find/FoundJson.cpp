#include "find/FoundJson.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "models/Latin1.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

// Six digits are enough to tell apart what differs in one number.
double rounded(double likeness) { return std::round(likeness * 1e6) / 1e6; }

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json toJson(const Condition::Asked& asked, const ParameterNames& names) {
  const auto& [path, value] = asked;
  Json json{{"path", path}};
  if (std::string name = names.nameOf(path); !name.empty()) json["name"] = std::move(name);
  json["value"] = valueToJson(value);
  if (std::string name = names.nameOf(path, value); !name.empty()) json["valueName"] = std::move(name);
  return json;
}

}  // namespace

Json toJson(const Found& found, const ParameterNames& names) {
  const Candidate& content = found.content;
  Json json{{"source", found.source},
            {"content", content.place},
            {"name", latin1ToUtf8(content.name)},
            {"favourite", orNull(content.favourite)},
            {"kind", wordOf(content.kind)},
            {"hash", found.hash},
            {"group", orNull(found.group)},
            {"likeness", found.likeness ? Json(rounded(*found.likeness)) : Json()}};
  if (content.message) json["message"] = *content.message;
  for (const Condition::Asked& asked : found.asked) json["parameters"].push_back(toJson(asked, names));
  return json;
}

}  // namespace Editor
