// The verb check: whether everything in the library can be read, and is as it was stored.

#include "history/Check.h"
#include "models/ModelJson.h"

#include <fmt/format.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "messages/Text.h"
#include "midi/Counted.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::string jsonOf(const Checked& checked) {
  nlohmann::ordered_json json{{checked.kind == Checked::Kind::table ? "table" : "content", checked.name},
                              {"state", wordOf(checked.state)}};
  if (!checked.reason.empty()) json["reason"] = checked.reason;
  return jsonLine(json);
}

}  // namespace

void check(bool json, Program& program) {
  const std::unique_ptr<Library> library = program.openLibraryToRead();
  std::uint64_t contents = 0;
  std::uint64_t opaque = 0;
  std::uint64_t damaged = 0;
  std::map<std::string, std::uint64_t> damagedInTables;
  checkLibrary(*library, [&](const Checked& checked) {
    const bool isContent = checked.kind == Checked::Kind::content;
    const bool isDamaged = checked.state == Checked::State::damaged;
    contents += isContent ? 1 : 0;
    opaque += checked.state == Checked::State::opaque ? 1 : 0;
    damaged += isContent && isDamaged ? 1 : 0;
    if (!isContent && isDamaged) ++damagedInTables[checked.name];
    if (json) return program.console.line(jsonOf(checked));
    if (checked.state == Checked::State::good) return;
    program.console.line(fmt::format("{}{}: {}: {}", isContent ? "" : "table ", checked.name, wordOf(checked.state),
                                     escape(checked.reason)));
  });
  std::string tally =
      fmt::format("{}, {} opaque, {} damaged", counted(contents, "content or live model", "contents and live models"),
                  opaque, damaged);
  const char* separator = "; damaged in tables: ";
  for (const auto& [table, count] : damagedInTables)
    tally += fmt::format("{}{} {}", std::exchange(separator, ", "), table, count);
  program.console.note(tally);
  if (damaged != 0 || !damagedInTables.empty()) program.refuse();
}

}  // namespace Editor
