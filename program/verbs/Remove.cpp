// The verb remove: contents, all that are named or none, and what is damaged.

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "ChangeRun.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

class Removing {
 public:
  Removing(Library& library, Console& console) : library_(library), console_(console) {}

  // Of a bank or a range empty places are left out.
  void take(const Places<Target>& places) {
    std::size_t leftOut = 0;
    for (const Target& target : places.list) {
      const std::string name = placeNameOf(target);
      if (named_.contains(name)) continue;
      if (forgetTarget(library_, target))
        named_.insert(name);
      else
        ++leftOut;
    }
    if (leftOut == places.list.size())
      throw Failure(kRefused, fmt::format("{}: nothing is stored there; nothing is removed", escape(places.name)));
    if (leftOut > 0)
      console_.note(fmt::format("{}: {} nothing", places.name, counted(leftOut, "place holds", "places hold")));
  }

 private:
  Library& library_;
  Console& console_;
  std::set<std::string> named_;
};

// Contents; or live models, but those only that are damaged.
struct Asked {
  Places<Target> places;
  std::optional<TargetError> unlessDamaged;  // what is wrong with live models that are not
};

Asked parseRemoved(const std::string& word, const Program& program) {
  try {
    return {parseContents(word), std::nullopt};
  } catch (const TargetError& error) {
    Places<Target> places = parseTargets(word);
    if (!program.hasLibrary()) throw;
    return {std::move(places), error};
  }
}

void requireRemovable(const Asked& asked, const EditorJobTools& tools) {
  // The voice of a part may be whole where its multi is not.
  const auto isDamaged = [&](const Target& target) { return damageInShort(tools, target) == kItIsDamaged; };
  if (asked.unlessDamaged && !std::ranges::all_of(asked.places.list, isDamaged))
    throw TargetError(*asked.unlessDamaged);
}

}  // namespace

void remove(const Words& words, const ChangeOptions& options, Program& program) {
  std::vector<Asked> asked;
  for (const std::string& word : joinAddresses(words)) asked.push_back(parseRemoved(word, program));
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"remove"}, options);
  Removing removing(run.library(), program.console);
  for (const Asked& one : asked) requireRemovable(one, run.editor().tools());
  for (const Asked& one : asked) removing.take(one.places);
  run.keep();
}

}  // namespace Editor
