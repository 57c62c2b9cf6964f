// The verb history: what changed the library, the newest first.

#include "history/History.h"

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "history/HistoryJson.h"
#include "models/ModelJson.h"
#include "output/HistoryLines.h"
#include "verbs/Verbs.h"

namespace Editor {

void history(const HistoryOptions& options, Program& program) {
  const std::unique_ptr<Library> library = program.openLibraryToRead();
  const Library::Transaction oneState(*library, Library::Transaction::Access::Read);
  std::vector<HistoryEntry> entries = entriesOf(*library);
  if (program.exitCode() == kAllGood)  // else what is missing may only be out of reach
    for (const std::int64_t number : library->missingEntries())
      program.leaveOutDamaged(fmt::format("entry {}", number), "it is not there, though changes of it are");
  if (options.most < entries.size()) entries.resize(options.most);
  for (const HistoryEntry& entry : entries) {
    const std::vector<PlaceChange> changes = changesOf(*library, entry.number);
    program.console.line(options.json ? jsonLine(toJson(entry, changes)) : lineOf(entry, changes));
    if (options.json || !program.console.isVerbose()) continue;
    for (const PlaceChange& change : changes) program.console.line("      " + lineOf(change));
  }
  if (entries.empty() && program.exitCode() == kAllGood) program.console.note("nothing is recorded");
}

}  // namespace Editor
