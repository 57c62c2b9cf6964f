#include "output/Trace.h"
#include "models/ModelJson.h"

#include <nlohmann/json.hpp>

#include "midi/Hex.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const std::vector<AssistantHost::Sent>& sent) {
  Json list = Json::array();
  for (const AssistantHost::Sent& message : sent)
    list.push_back(Json{{"port", unsigned(message.port)}, {"bytes", formatHex(message.bytes)}});
  return list;
}

}  // namespace

std::string jsonOf(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                   const Record& record) {
  Json line{{"message", origin.message},
            {"file", origin.file == nullptr ? Json(nullptr) : Json(*origin.file)},
            {"offset", origin.offset ? Json(*origin.offset) : Json(nullptr)},
            {"port", unsigned(port)},
            {"in", formatHex(message)},
            {"result", Json{{"value", unsigned(record.result)}, {"name", nameOf(record.result)}}},
            {"outcome", wordOf(record.outcome)}};
  if (!record.contents.empty()) line["contents"] = record.contents;
  if (!record.damaged.empty()) line["damaged"] = record.damaged;
  if (!record.missing.empty()) {
    Json missing = Json::array();
    for (const BulkAddress address : record.missing) missing.push_back(formatAddress(address));
    line["missing"] = std::move(missing);
  }
  line["shown"] = record.shown;
  line["log"] = record.log;
  line["sent"] = toJson(record.sent);
  return jsonLine(line);
}

Trace::Trace(const std::string& path) {
  if (!path.empty()) file_.emplace(path);
}

void Trace::add(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                const Record& record) {
  if (file_) file_->write(jsonOf(origin, port, message, record) + '\n');
}

void Trace::commit() {
  if (file_) file_->commit();
}

}  // namespace Editor
