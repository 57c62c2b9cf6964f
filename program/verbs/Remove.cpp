// The verb remove: contents, all that are named or none.

#include <fmt/format.h>

#include <memory>
#include <set>

#include "messages/Text.h"
#include "midi/Counted.h"
#include "targets/PlaceChange.h"
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
      if (named_.contains(target.content)) continue;
      if (const std::optional<std::string> name = library_.contentName(target.content)) {
        named_.insert(target.content);
        changes_.push_back({placeNameOf(target), PlaceChange::What::removed, *name, std::nullopt});
        library_.remove(target.content);
      } else {
        ++leftOut;
      }
    }
    if (leftOut == places.list.size())
      throw Failure(kRefused, fmt::format("{}: nothing is stored there; nothing is removed", escape(places.name)));
    if (leftOut > 0)
      console_.note(fmt::format("{}: {} nothing", places.name, counted(leftOut, "place holds", "places hold")));
  }

  const std::vector<PlaceChange>& changes() const { return changes_; }

 private:
  Library& library_;
  Console& console_;
  std::set<ContentId> named_;
  std::vector<PlaceChange> changes_;
};

}  // namespace

void remove(const Words& words, const ChangeOptions& options, Program& program) {
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(words)) asked.push_back(parseContents(word));
  program.requireLibrary(kRefused);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToChange(options.dryRun);
  Library::Transaction transaction(editor->library());
  Removing removing(editor->library(), program.console);
  for (const Places<Target>& places : asked) removing.take(places);
  transaction.commit();
  tellChanges(removing.changes(), options, program.console);
}

}  // namespace Editor
