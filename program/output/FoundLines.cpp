#include "output/FoundLines.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "input/InputStream.h"
#include "messages/Text.h"
#include "models/Latin1.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

// Six digits are enough to tell apart what differs in one number.
double rounded(double likeness) { return std::round(likeness * 1e6) / 1e6; }

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

}  // namespace

std::string lineOf(const Found& found, bool withSource) {
  const Candidate& content = found.content;
  std::string line;
  if (found.likeness) line += fmt::format("{:.6f}  ", *found.likeness);
  if (withSource) line += displayName(found.source) + ": ";
  line += fmt::format("{:<24} {}", content.place, showName(content.name));
  if (content.favourite != 0) line += "  *favourite";
  return line;
}

std::string jsonOf(const Found& found) {
  const Candidate& content = found.content;
  Json json{{"source", found.source},
            {"content", content.place},
            {"name", latin1ToUtf8(content.name)},
            {"favourite", content.favourite},
            {"kind", wordOf(content.kind)},
            {"hash", found.hash},
            {"group", orNull(found.group)},
            {"likeness", found.likeness ? Json(rounded(*found.likeness)) : Json()}};
  if (content.message) json["message"] = *content.message;
  // File names need not be UTF-8, and a terminal would obey U+0080 to U+009F.
  return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

}  // namespace Editor
