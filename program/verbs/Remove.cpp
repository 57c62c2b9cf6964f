// The verb remove: single contents, all that are named or none.

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "targets/Targets.h"
#include "verbs/Verbs.h"

namespace Editor {

void remove(const Words& words, Program& program) {
  std::vector<Target> targets;
  for (const std::string& word : joinAddresses(words)) {
    Target target = parseContent(word);
    const bool isTwice = std::any_of(targets.begin(), targets.end(),
                                     [&](const Target& other) { return other.content == target.content; });
    if (!isTwice) targets.push_back(std::move(target));
  }
  program.requireLibrary(kRefused);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToChange({"remove", {}, {}});
  Library::Transaction transaction(editor->library());
  for (const Target& target : targets)
    if (!editor->library().remove(target.content)) refuse(target, "nothing is stored there; nothing is removed");
  transaction.commit();
  for (const Target& target : targets) program.console.note(fmt::format("{}: removed", target.name));
}

}  // namespace Editor
