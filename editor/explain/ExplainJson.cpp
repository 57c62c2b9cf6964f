#include "explain/ExplainJson.h"

#include <nlohmann/json.hpp>

#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const CarriedParameter& parameter, const ParameterNames& names) {
  Json json{{"path", parameter.path}};
  if (std::string name = names.nameOf(parameter.path); !name.empty()) json["name"] = std::move(name);
  json["bits"] = parameter.bits;
  json["how"] = parameter.how;
  json["value"] = valueToJson(parameter.value);
  if (std::string name = names.nameOf(parameter.path, parameter.value); !name.empty())
    json["valueName"] = std::move(name);
  return json;
}

Json toJson(const PackedBytes& bytes) {
  if (bytes.areHighBits) return bytes.numbers;
  return bytes.numbers.front();
}

}  // namespace

Json toJson(const std::string& file, const MessageFile::Byte& byte, const ByteMeaning& meaning,
            const ParameterNames& names) {
  Json json{{"file", file}, {"offset", byte.offset}, {"byte", byte.value}};
  if (meaning.message != MessageFile::kNone) json["message"] = meaning.message;
  if (meaning.address) {
    json["address"] = formatAddress(*meaning.address);
    json["name"] = meaning.name;
  }
  json["part"] = wordOf(meaning.part);
  if (meaning.message != MessageFile::kNone) json["type"] = wordOf(meaning.kind);
  if (meaning.device && meaning.part == Part::device) json["device"] = *meaning.device;
  if (meaning.dataByte) json["dataByte"] = *meaning.dataByte;
  json["parameters"] = Json::array();
  for (const CarriedParameter& parameter : meaning.parameters) json["parameters"].push_back(toJson(parameter, names));
  if (meaning.unused) json["unused"] = *meaning.unused;
  if (meaning.content) json["content"] = nameOf(*meaning.content);
  if (meaning.contentBytes) json["contentByte"] = toJson(*meaning.contentBytes);
  if (meaning.nameBytes) json["nameByte"] = toJson(*meaning.nameBytes);
  if (!meaning.reason.empty()) json["reason"] = meaning.reason;
  return json;
}

Json toJson(const CarryingByte& byte) {
  return {{"address", formatAddress(byte.address)},
          {"message", byte.message},
          {"dataByte", byte.dataByte},
          {"bits", byte.bits},
          {"how", byte.how},
          {"byte", byte.value}};
}

}  // namespace Editor
