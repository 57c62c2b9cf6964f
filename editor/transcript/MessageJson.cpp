#include "transcript/MessageJson.h"

#include "history/ChangeJson.h"
#include "midi/Hex.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const std::vector<AssistantHost::Sent>& sent) {
  Json list = Json::array();
  for (const AssistantHost::Sent& message : sent)
    list.push_back(Json{{"port", unsigned(message.port)}, {"bytes", formatHex(message.bytes)}});
  return list;
}

Json toJson(const MessageOrigin& origin) {
  return Json{{"message", origin.message},
              {"file", origin.file == nullptr ? Json(nullptr) : Json(*origin.file)},
              {"offset", origin.offset ? Json(*origin.offset) : Json(nullptr)}};
}

}  // namespace

std::string jsonOf(const MessageOrigin& origin, std::span<const std::uint8_t> message) {
  Json line = toJson(origin);
  line["in"] = formatHex(message);
  return jsonLine(line);
}

Json toJson(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
            const Record& record) {
  Json line = toJson(origin);
  line["port"] = unsigned(port);
  line["in"] = formatHex(message);
  line["result"] = Json{{"value", unsigned(record.result)}, {"name", nameOf(record.result)}};
  line["outcome"] = wordOf(record.outcome);
  if (!record.contents.empty()) line["contents"] = record.contents;
  for (const Change& change : record.changed) line["changes"].push_back(toJson(toPlaceChange(change)));
  if (!record.missing.empty()) {
    Json missing = Json::array();
    for (const BulkAddress address : record.missing) missing.push_back(formatAddress(address));
    line["missing"] = std::move(missing);
  }
  line["shown"] = record.shown;
  line["log"] = record.log;
  line["sent"] = toJson(record.sent);
  return line;
}

std::string jsonOf(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                   const Record& record) {
  return jsonLine(toJson(origin, port, message, record));
}

}  // namespace Editor
