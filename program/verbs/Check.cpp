// The verb check: whether everything in the library can be read, and is as it was stored.

#include "history/Check.h"

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "history/CheckJson.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "verbs/Verbs.h"

namespace Editor {

void check(bool json, Program& program) {
  const std::unique_ptr<Library> library = program.openLibraryToRead();
  const CheckCounts counts = checkLibrary(*library, [&](const Checked& checked) {
    if (json) return program.console.line(jsonLine(toJson(checked)));
    if (checked.state == Checked::State::good) return;
    program.console.line(fmt::format("{}{}: {}: {}", checked.kind == Checked::Kind::content ? "" : "table ",
                                     checked.name, wordOf(checked.state), escape(checked.reason)));
  });
  std::string tally = fmt::format("{}, {} opaque, {} damaged",
                                  counted(counts.contents, "content or live model", "contents and live models"),
                                  counts.opaque, counts.damaged);
  const char* separator = "; damaged in tables: ";
  for (const auto& [table, count] : counts.damagedInTables)
    tally += fmt::format("{}{} {}", std::exchange(separator, ", "), table, count);
  program.console.note(tally);
  if (counts.damaged != 0 || !counts.damagedInTables.empty()) program.refuse();
}

}  // namespace Editor
