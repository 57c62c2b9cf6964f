// The verb check: whether everything in the library can be read, and is as it was stored.

#include "history/Check.h"

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>

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
  program.console.note(fmt::format("{} and live models, {} opaque, {} damaged", counted(counts.contents, "content"),
                                   counts.opaque, counts.damaged));
  if (counts.damaged != 0) program.refuse();
}

}  // namespace Editor
