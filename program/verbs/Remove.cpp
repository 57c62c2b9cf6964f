// The verb remove: contents, all that are named or none.

#include <fmt/format.h>

#include <set>

#include "ChangeRun.h"
#include "messages/Text.h"
#include "midi/Counted.h"
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
      if (library_.remove(target.content))
        named_.insert(target.content);
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
  std::set<ContentId> named_;
};

}  // namespace

void remove(const Words& words, const ChangeOptions& options, Program& program) {
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(words)) asked.push_back(parseContents(word));
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"remove"}, options);
  Removing removing(run.library(), program.console);
  for (const Places<Target>& places : asked) removing.take(places);
  run.keep();
}

}  // namespace Editor
