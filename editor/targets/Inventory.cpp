#include "targets/Inventory.h"

#include <map>
#include <set>
#include <string>
#include <utility>

#include "targets/TargetModels.h"

namespace Editor {

namespace {

// What is asked for.
class Selected {
 public:
  explicit Selected(const std::vector<Places<Target>>& asked) : isAll_(asked.empty()) {
    for (const Places<Target>& places : asked)
      for (const Target& target : places.list)
        if (target.kind == Target::Kind::content)
          contents_.insert(target.content);
        else
          live_.insert(target.name);
  }

  bool has(ContentId id) const { return isAll_ || contents_.contains(id); }
  bool has(const Target& live) const { return isAll_ || live_.contains(live.name); }

 private:
  bool isAll_;
  std::set<ContentId> contents_;
  std::set<std::string> live_;
};

Inventory::Entry entryOf(Library& library, ContentId id) {
  try {
    return {id, library.content(id)};
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    return {id, {}, true};
  }
}

// Of the voice of a part itself: it may be whole where its multi is not.
bool isDamaged(const EditorJobTools& tools, const Target& live) {
  const bool isBuffer = live.kind == Target::Kind::editBuffer;
  return !(isBuffer ? tools.ownDamage(live.buffer, live.part) : damageOf(tools, live)).empty();
}

}  // namespace

Inventory inventoryOf(EmbeddedEditor& editor, const std::vector<Places<Target>>& asked) {
  const Selected selected(asked);
  Library& library = editor.library();
  const EmbeddedEditor::View oneState(editor);
  std::map<ContentId, Inventory::Entry> entries;
  for (const ContentId id : library.contents())
    if (selected.has(id)) entries[id] = entryOf(library, id);
  for (const auto& [id, flag] : library.favourites())
    if (selected.has(id)) entries[id].id = id;
  Inventory inventory;
  inventory.entries.reserve(entries.size());
  for (auto& [id, entry] : entries) {
    entry.favourite = library.flag(id);
    inventory.entries.push_back(std::move(entry));
  }
  for (Target& live : storedLive(editor))
    if (selected.has(live)) (isDamaged(editor.tools(), live) ? inventory.damaged : inventory.live).push_back(live);
  return inventory;
}

}  // namespace Editor
