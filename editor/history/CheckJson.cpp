#include "history/CheckJson.h"

#include <nlohmann/json.hpp>

namespace Editor {

nlohmann::ordered_json toJson(const Checked& checked) {
  nlohmann::ordered_json json{{checked.kind == Checked::Kind::table ? "table" : "content", checked.name},
                              {"state", wordOf(checked.state)}};
  if (!checked.reason.empty()) json["reason"] = checked.reason;
  return json;
}

}  // namespace Editor
