#include "messages/ReadingJson.h"

#include <nlohmann/json.hpp>

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kAllMixingVoices = "mix";  // in place of their names, which are two thousand

}  // namespace

Json toJson(const InputMessage& message, const Reading& reading) {
  Json json{{"message", message.number},          {"file", message.file},
            {"offset", message.offset},           {"kind", wordOf(reading.kind)},
            {"verdict", wordOf(reading.verdict)}, {"carries", describeContent(reading)}};
  if (reading.device) json["device"] = *reading.device;
  if (reading.address) {
    json["address"] = formatAddress(*reading.address);
    if (const auto name = nameOf(*reading.address)) json["name"] = *name;
  }
  if (reading.kind == Reading::Kind::dump) json["dataBytes"] = reading.dataBytes;
  if (reading.checksum) {
    json["checksum"] = *reading.checksum;
    json["expectedChecksum"] = *reading.expectedChecksum;
  }
  json["bytes"] = message.bytes.size();
  if (reading.removes) json["removes"] = Json::array({nameOf(*reading.removes)});
  if (reading.removesMixingVoices) json["removes"] = Json::array({kAllMixingVoices});
  if (!reading.note.empty()) json["note"] = reading.note;
  return json;
}

Json toJson(const InputLoss& loss) {
  Json json{{"file", loss.file}, {"offset", loss.offset}, {"dropped", loss.dropped}, {"reason", loss.reason}};
  if (loss.kind == InputLoss::Kind::cutShort) json["verdict"] = "cut short";
  if (loss.kind == InputLoss::Kind::brokenFile) json["verdict"] = "broken file";
  return json;
}

Json toJson(const UnitReport& unit) {
  Json json{{"unit", nameOrBytes(unit.address)}, {"address", formatAddress(unit.address)},
            {"state", wordOf(unit.state)},       {"firstMessage", unit.firstMessage},
            {"lastMessage", unit.lastMessage},   {"blocks", toJson(unit.blocks)},
            {"words", describeUnit(unit)}};
  if (unit.state == UnitReport::State::written) {
    json["removes"] = Json::array();
    if (unit.address != kWriteTrigger) json["removes"].push_back(kAllMixingVoices);
    for (const ContentId id : unit.removes) json["removes"].push_back(nameOf(id));
  }
  if (!unit.note.empty()) json["note"] = unit.note;
  return json;
}

Json toJson(const std::vector<BulkAddress>& addresses) {
  Json list = Json::array();
  for (const BulkAddress address : addresses) list.push_back(formatAddress(address));
  return list;
}

}  // namespace Editor
