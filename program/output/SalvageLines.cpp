#include "output/SalvageLines.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "input/InputStream.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;
using State = Salvaged::State;

std::string why(const Salvaged& unit) {
  if (!unit.device) return fmt::format(": blocks of no known unit, {} and after it", describeAddress(unit.address));
  const std::string help = unit.isMergeable ? "; --merge completes it" : "";
  const bool areOfTwoKinds = isUnit(unit.address) && unit.contradicts == std::vector{unit.address};
  if (areOfTwoKinds) return ": captures differ in kind" + help;
  if (!unit.contradicts.empty()) return ": captures differ in " + describeBlocks(unit.contradicts) + help;
  if (!isUnit(unit.address)) return ": it is broken";
  if (unit.isMergeable)
    return fmt::format(": nothing says that its remains are of one sound, the fullest lack {}: {}{}",
                       counted(unit.missing.size(), "block"), describeBlocks(unit.missing), help);
  return fmt::format(": {} missing: {}", counted(unit.missing.size(), "block"), describeBlocks(unit.missing));
}

Json toJson(const std::vector<BulkAddress>& addresses) {
  Json list = Json::array();
  for (const BulkAddress address : addresses) list.push_back(formatAddress(address));
  return list;
}

}  // namespace

std::string lineOf(const Salvaged& unit, const std::vector<std::string>& files) {
  std::vector<std::string> from;
  for (const std::size_t source : unit.from) from.push_back(displayName(files[source]));
  return fmt::format("{}: {}{}{} ({})", wordOf(unit.state), nameOrBytes(unit.address),
                     unit.state == State::lost ? why(unit) : "", unit.isMerged ? ", merged" : "",
                     fmt::join(from, ", "));
}

std::string jsonOf(const Salvaged& unit, const std::vector<std::string>& files) {
  Json from = Json::array();
  for (const std::size_t source : unit.from) from.push_back(files[source]);
  Json json{{"unit", nameOrBytes(unit.address)}, {"address", formatAddress(unit.address)},
            {"state", wordOf(unit.state)},       {"from", std::move(from)},
            {"missing", toJson(unit.missing)},   {"contradicts", toJson(unit.contradicts)}};
  std::vector<BulkAddress> corrected;
  for (const Piece& piece : unit.messages)
    if (piece.wrongChecksum) corrected.push_back(*readMessage(piece.bytes).address);
  if (!corrected.empty()) json["corrected"] = toJson(corrected);
  if (unit.isMerged) json["merged"] = true;
  return jsonLine(json);
}

}  // namespace Editor
