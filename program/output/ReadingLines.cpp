#include "output/ReadingLines.h"

#include <fmt/format.h>

#include <algorithm>

#include <nlohmann/json.hpp>

#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/LossReport.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kAllMixingVoices = "mix";  // in place of their names, which are two thousand

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

Json toJson(const UnitReport& unit) {
  Json blocks = Json::array();
  for (const BulkAddress block : unit.blocks) blocks.push_back(formatAddress(block));
  Json json{{"unit", nameOrBytes(unit.address)}, {"address", formatAddress(unit.address)},
            {"state", wordOf(unit.state)},       {"firstMessage", unit.firstMessage},
            {"lastMessage", unit.lastMessage},   {"blocks", blocks},
            {"words", describeUnit(unit)}};
  if (unit.state == UnitReport::State::written) {
    json["removes"] = Json::array();
    if (unit.address != kWriteTrigger) json["removes"].push_back(kAllMixingVoices);
    for (const ContentId id : unit.removes) json["removes"].push_back(nameOf(id));
  }
  if (!unit.note.empty()) json["note"] = unit.note;
  return json;
}

// File names need not be UTF-8, and a terminal would obey U+0080 to U+009F.
// "      7      1200  good                     1  41 02 00  element 3 oscillator, 88 data bytes, checksum 1F"
std::string toLine(const InputMessage& message, const Reading& reading) {
  std::string line = fmt::format("{:>6} {:>9}  {:<26} {:>2}  {:<8}  {}", message.number, message.offset,
                                 wordOf(reading.verdict), reading.device ? std::to_string(*reading.device) : "-",
                                 reading.address ? formatAddress(*reading.address) : "-", describeContent(reading));
  // A note about either has it in itself.
  const auto isAbout = [&](std::initializer_list<Reading::Verdict> verdicts) {
    return std::ranges::find(verdicts, reading.verdict) != verdicts.end();
  };
  using Verdict = Reading::Verdict;
  if (reading.kind == Reading::Kind::dump && !isAbout({Verdict::lengthWrong, Verdict::blockLengthWrong}))
    line += ", " + counted(reading.dataBytes, "data byte");
  if (reading.checksum && !isAbout({Verdict::checksumWrong}))
    line += fmt::format(", checksum {:02X}", *reading.checksum);
  if (reading.removes) line += fmt::format(" (removes {})", nameOf(*reading.removes));
  if (!reading.note.empty()) line += fmt::format(" ({})", reading.note);
  return line;
}

}  // namespace

std::string jsonOf(const InputLoss& loss) {
  Json json{{"file", loss.file}, {"offset", loss.offset}, {"dropped", loss.dropped}, {"reason", loss.reason}};
  if (loss.kind == InputLoss::Kind::cutShort) json["verdict"] = "cut short";
  if (loss.kind == InputLoss::Kind::brokenFile) json["verdict"] = "broken file";
  return jsonLine(json);
}

std::string lineOf(const InputMessage& message, const Reading& reading, LineForm form) {
  return form == LineForm::json ? jsonLine(toJson(message, reading)) : toLine(message, reading);
}

std::string lineOf(const UnitReport& unit, LineForm form) {
  if (form == LineForm::json) return jsonLine(toJson(unit));
  return fmt::format("{} {}", isBroken(unit) ? "  !!" : "  ==", describeUnit(unit));
}

ReadingResult printReadings(InputStream& input, LineForm form, Console& console,
                            const std::function<void(const InputMessage&, const Reading&)>& visit) {
  const std::string* file = nullptr;
  LossReport losses(console);
  ReadingResult result;
  result.problems = input.read(
      [&](const InputMessage& message) {
        if (input.areSeveral() && form == LineForm::words && file != &message.file)
          console.line(displayName(message.file) + ":");
        file = &message.file;
        const Reading reading = readMessage(message.bytes);
        console.line(lineOf(message, reading, form));
        visit(message, reading);
      },
      [&](const InputLoss& loss) {
        losses.add(loss);
        if (form == LineForm::json) console.line(jsonOf(loss));
      });
  losses.finish();
  result.areAllWhole = losses.areAllWhole();
  return result;
}

}  // namespace Editor
