// The verb remove: contents, all that are named or none, and what is damaged.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "midi/Counted.h"
#include "targets/TargetChanges.h"
#include "verbs/Verbs.h"

namespace Editor {

void remove(const Words& words, const ChangeOptions& options, Program& program) {
  std::vector<Removal> asked;
  for (const std::string& word : joinAddresses(words)) {
    asked.push_back(parseRemoval(word));
    const std::optional<TargetError>& error = asked.back().unlessDamaged;
    if (error && !program.hasLibrary()) throw TargetError(*error);
  }
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"remove"}, options);
  for (const Removal& one : asked) requireRemovable(one, run.editor().tools());
  Removing removing(run.library());
  for (const Removal& one : asked)
    if (const std::size_t leftOut = removing.take(one.places); leftOut > 0)
      program.console.note(
          fmt::format("{}: {} nothing", one.places.name, counted(leftOut, "place holds", "places hold")));
  run.keep();
}

}  // namespace Editor
