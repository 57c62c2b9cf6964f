#include "output/FoundLines.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "input/InputStream.h"
#include "messages/Text.h"
#include "models/Latin1.h"
#include "models/ModelJson.h"
#include "output/NamedValues.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

// Six digits are enough to tell apart what differs in one number.
double rounded(double likeness) { return std::round(likeness * 1e6) / 1e6; }

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json jsonOf(const std::string& path, const ParameterValue& value, const ParameterNames& names) {
  Json json{{"path", path}};
  if (std::string name = names.nameOf(path); !name.empty()) json["name"] = std::move(name);
  if (const auto* const text = std::get_if<std::string>(&value))
    json["value"] = latin1ToUtf8(*text);
  else
    json["value"] = std::get<std::int64_t>(value);
  if (std::string name = names.nameOf(path, value); !name.empty()) json["valueName"] = std::move(name);
  return json;
}

}  // namespace

std::string lineOf(const Found& found, bool withSource, const ParameterNames& names) {
  const Candidate& content = found.content;
  std::string line;
  if (found.likeness) line += fmt::format("{:.6f}  ", *found.likeness);
  if (withSource) line += displayName(found.source) + ": ";
  line += fmt::format("{:<24} {}", content.place, showName(content.name));
  if (content.favourite.value_or(0) != 0) line += "  *favourite";
  for (const auto& [path, value] : found.asked)
    if (!names.nameOf(path).empty() || !names.nameOf(path, value).empty())
      line += fmt::format("  {}: {}", showPath(path, names), showValue(path, value, names));
  return line;
}

std::string jsonOf(const Found& found, const ParameterNames& names) {
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
  for (const auto& [path, value] : found.asked) json["parameters"].push_back(jsonOf(path, value, names));
  // File names need not be UTF-8, and a terminal would obey U+0080 to U+009F.
  return jsonLine(json);
}

}  // namespace Editor
