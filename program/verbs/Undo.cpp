// The verb undo: what an entry of the history changed, taken back.

#include "history/Undo.h"

#include <fmt/format.h>

#include "ChangeRun.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/Complaints.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

void tellConflicts(const Undone& undone, Console& console) {
  const std::string kind = wordsOfConflict(undone);
  Complaints complaints(console);
  for (const std::string& place : undone.conflicts) {
    const std::string line = fmt::format("{}: {}", place, kind);
    if (console.isVerbose())
      console.problem(line);
    else
      complaints.tell(kind, line);
  }
  complaints.finish();
  if (!console.isVerbose() && undone.conflicts.size() > kMostAlike) console.problem("all with -v");
}

// What its user can do about it. Undo without a number stops at a damaged entry for good.
std::string wayOn(const Undone& undone) {
  if (undone.state == Undone::State::conflict) return ": --force puts back all the same";
  return undone.older ? fmt::format(": bda undo {} takes back the next one before it", *undone.older) : "";
}

}  // namespace

void undo(std::optional<std::int64_t> entry, bool force, const ChangeOptions& options, Program& program) {
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"undo"}, options);
  const Undone undone = undo(run.editor(), entry, force ? Force::yes : Force::no);
  for (const std::string& line : damageIn(undone)) program.console.problem(line);
  tellConflicts(undone, program.console);
  if (undone.state != Undone::State::done) throw Failure(kRefused, whyNotDone(undone) + wayOn(undone));
  run.keep();
  program.console.note(fmt::format("entry {} {}: {}", undone.entry, options.dryRun ? "would be undone" : "is undone",
                                   counted(undone.changes.size(), "change")));
}

}  // namespace Editor
