// The verbs that judge messages without a library: list and verify.

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "cli/InputFiles.h"
#include "cli/Verbs.h"
#include "messages/Messages.h"
#include "messages/Units.h"
#include "midi/Counted.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const InputFiles::Message& message, const Reading& reading) {
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
  if (!unit.note.empty()) json["note"] = unit.note;
  return json;
}

// File names need not be UTF-8, and a terminal would obey U+0080 to U+009F.
std::string toLine(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

// "      7      1200  good                     1  41 02 00  element 3 oscillator, 88 data bytes, checksum 1F"
std::string toLine(const InputFiles::Message& message, const Reading& reading) {
  std::string line = fmt::format("{:>6} {:>9}  {:<26} {:>2}  {:<8}  {}", message.number, message.offset,
                                 wordOf(reading.verdict), reading.device ? std::to_string(*reading.device) : "-",
                                 reading.address ? formatAddress(*reading.address) : "-", describeContent(reading));
  if (reading.kind == Reading::Kind::dump) line += ", " + counted(reading.dataBytes, "data byte");
  if (reading.checksum) line += fmt::format(", checksum {:02X}", *reading.checksum);
  if (!reading.note.empty()) line += fmt::format(" ({})", reading.note);
  return line;
}

// Calls visit(message, reading) for every message, under a heading for each of several files.
template <typename Visit>
void forEachReading(const InputFiles& input, bool json, Console& console, Visit visit) {
  const std::string* file = nullptr;
  input.forEachMessage([&](const InputFiles::Message& message) {
    if (input.areSeveral() && !json && file != &message.file) console.line(displayName(message.file) + ":");
    file = &message.file;
    const Reading reading = readMessage(message.bytes);
    console.line(json ? toLine(toJson(message, reading)) : toLine(message, reading));
    visit(message, reading);
  });
}

}  // namespace

void list(const Words& files, bool json, Program& program) {
  const InputFiles input(files, program.console);
  if (!input.reportLosses(program.console)) program.refuse();
  forEachReading(input, json, program.console, [&](const InputFiles::Message&, const Reading& reading) {
    if (isBroken(reading)) program.refuse();
  });
}

void verify(const Words& files, bool json, Program& program) {
  Console& console = program.console;
  const InputFiles input(files, program.console);
  const bool whole = input.reportLosses(console);
  std::size_t messages = 0;
  std::size_t brokenMessages = 0;
  std::size_t units = 0;
  std::size_t brokenUnits = 0;
  UnitFollower follower;
  const auto tellUnits = [&](const std::vector<UnitReport>& ended) {
    for (const UnitReport& unit : ended) {
      ++units;
      const bool broken = isBroken(unit);
      if (broken) ++brokenUnits;
      console.line(json ? toLine(toJson(unit)) : fmt::format("{} {}", broken ? "  !!" : "  ==", describeUnit(unit)));
    }
  };
  forEachReading(input, json, console, [&](const InputFiles::Message& message, const Reading& reading) {
    ++messages;
    if (isBroken(reading)) {
      ++brokenMessages;
      console.problem(fmt::format("{}: {}: {}", placeOf(message), wordOf(reading.verdict), reading.note));
    }
    tellUnits(follower.next(reading, message.number));
  });
  tellUnits(follower.finish());
  if (!whole || brokenMessages + brokenUnits != 0) program.refuse();
  console.note(fmt::format("{}, {} broken; {}, {} broken", counted(messages, "message"), brokenMessages,
                           counted(units, "unit"), brokenUnits));
}

}  // namespace Editor
