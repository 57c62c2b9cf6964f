#include "convert/UnitFileJson.h"

#include <nlohmann/json.hpp>

#include "models/Latin1.h"

namespace Editor {

nlohmann::ordered_json toJson(const UnitFile& written, const Batch& batch, const std::string& name) {
  nlohmann::ordered_json json{{"unit", nullptr}};
  if (written.unit) {
    const Batch::Unit& unit = batch.units[*written.unit];
    json["unit"] = unit.place;
    json["address"] = formatAddress(*unit.address);
    json["form"] = unit.form == Batch::Unit::Form::fileDump ? "file dump" : "blocks";
    json["name"] = latin1ToUtf8(written.name);
    if (!unit.from.empty()) json["from"] = unit.from;
    if (unit.removes) json["removes"] = nlohmann::ordered_json::array({unit.place});
  }
  json["messages"] = written.messages.size();
  json["bytes"] = written.size();
  json["file"] = name;
  return json;
}

}  // namespace Editor
