#include "arrange/Arrange.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>

#include "arrange/ArrangedPlace.h"

namespace Editor {

namespace {

using Kind = Arrangement::Kind;

// A place, and what it shall hold.
struct Slot : ArrangedPlace {
  explicit Slot(ArrangedPlace place) : ArrangedPlace(std::move(place)), shallHold(holds), shallFlag(flag) {}

  bool changes = false;
  std::optional<Library::Content> shallHold;
  std::optional<std::uint8_t> shallFlag;
  ModelSet models;  // of an edit buffer that changes
};

// The places of one library that a run knows; each once, by whatever address it is named.
class Shelf {
 public:
  std::vector<Slot*> read(EmbeddedEditor& editor, const std::vector<Target>& targets) {
    std::vector<Slot*> found;
    found.reserve(targets.size());
    for (const Target& target : targets) {
      Slot*& slot = byName_[placeNameOf(target)];
      if (slot == nullptr) slot = &slots_.emplace_back(readPlace(editor, target));
      found.push_back(slot);
    }
    return found;
  }

  std::deque<Slot>& slots() { return slots_; }

 private:
  std::deque<Slot> slots_;  // which never moves them
  std::map<std::string, Slot*> byName_;
};

class Arranging {
 public:
  Arranging(EmbeddedEditor& editor, const Arrangement& arrangement)
      : editor_(editor), library_(editor.library()), arrangement_(arrangement), kind_(arrangement.kind) {}

  Shelf& shelf() { return shelf_; }

  void plan(const std::vector<Slot*>& from, const std::vector<Slot*>& to) {
    std::vector<std::pair<Slot*, Slot*>> pairs;
    for (std::size_t i = 0; i < from.size(); ++i) {
      const Slot& damaged = from[i]->damage.empty() && kind_ == Kind::swap ? *to[i] : *from[i];
      if (!damaged.damage.empty())
        arranged_.damaged.push_back({damaged.name, damaged.damage});
      else if (!from[i]->holds && (kind_ != Kind::swap || !to[i]->holds))
        arranged_.leftOut.push_back(from[i]->name);
      else if (from[i] != to[i])
        pairs.emplace_back(from[i], to[i]);
    }
    if (arranged_.leftOut.size() == from.size()) refuseEmpty();
    for (const auto& [source, place] : pairs) requireFit(*source, *place);
    for (const auto& [source, place] : pairs) {
      if (kind_ != Kind::copy) vacate(*source);
      if (kind_ == Kind::swap) vacate(*place);
    }
    for (const auto& [source, place] : pairs) {
      put(*source, *place);
      if (kind_ == Kind::swap) put(*place, *source);
    }
    requireRoom();
  }

  Arranged write() {
    for (const Slot& slot : shelf_.slots())
      if (slot.changes) write(slot);
    return std::move(arranged_);
  }

 private:
  [[noreturn]] void refuseEmpty() const {
    const std::string other = kind_ == Kind::swap ? fmt::format(" and {}", arrangement_.to.name) : "";
    throw TargetError(TargetError::Kind::refused,
                      fmt::format("{}{}: nothing is stored there", arrangement_.from.name, other));
  }

  static void requireFit(const ArrangedPlace& from, const ArrangedPlace& to) {
    if (!fits(from.kind, to.kind))
      refuse(from.target,
             fmt::format("{} does not fit {}, which takes {}", wordsOf(from.kind), to.name, wordsOf(to.kind)));
  }

  static void vacate(Slot& slot) {
    slot.changes = true;
    slot.shallFlag = 0;
    slot.shallHold.reset();
    if (slot.isBuffer()) fill(slot, asNew(slot), slot);
  }

  static void fill(Slot& slot, Library::Content content, const ArrangedPlace& from) {
    if (slot.isBuffer()) {
      slot.models = modelsFor(slot, content, from.target);
      content.name = nameOf(slot.models);
    }
    slot.shallHold = std::move(content);
  }

  void put(const ArrangedPlace& from, Slot& to) {
    if (!from.holds) return;
    to.changes = true;
    fill(to, *from.holds, from);
    if (to.isPart() && !from.isPart()) arranged_.voicesAlone.push_back({from.name, to.name});
    if (to.hasFlag()) to.shallFlag = from.hasFlag() ? from.flag : to.flag;
    if (!to.hasFlag() && from.flag != 0) arranged_.droppedFlags.push_back({from.name, to.name});
  }

  static bool isStored(const ArrangedPlace& place) { return place.holds || !place.damage.empty(); }

  void requireRoom() {
    const std::int64_t before = library_.mixingVoiceCount();
    std::int64_t after = before;
    for (const Slot& slot : shelf_.slots())
      if (!slot.isBuffer() && isMixingVoice(slot.target.content))
        after +=
            std::int64_t(slot.changes ? slot.shallHold.has_value() : isStored(slot)) - std::int64_t(isStored(slot));
    const std::int64_t most = library_.mixingVoiceMaximum();
    if (after > before && after > most)
      throw TargetError(
          TargetError::Kind::refused,
          fmt::format("there is no room for so many mixing voices: {} would be stored, {} are possible", after, most));
  }

  void write(const Slot& slot) {
    if (slot.isBuffer())
      writeBuffer(slot);
    else if (slot.shallHold)
      library_.store(slot.target.content, slot.shallHold->bytes, slot.shallHold->name);
    else
      library_.remove(slot.target.content);
    if (slot.flag != slot.shallFlag) library_.setFavourite(slot.target.content, slot.shallFlag.value_or(0));
  }

  void writeBuffer(const Slot& slot) {
    const std::uint64_t failures = library_.failureCount();
    EditorJobTools& tools = editor_.tools();
    if (!tools.replaceLive(slot.target.buffer, slot.target.part, slot.models))
      failToStore(library_, failures, slot.target, tools.lastError());
  }

  EmbeddedEditor& editor_;
  Library& library_;
  const Arrangement& arrangement_;
  const Kind kind_;
  Shelf shelf_;
  Arranged arranged_;
};

std::vector<Slot*> readOther(EmbeddedEditor& other, const std::vector<Target>& targets, Shelf& shelf) {
  const Library::Transaction oneState(other.library(), Library::Transaction::Access::Read);
  other.tools().reload();
  return shelf.read(other, targets);
}

Arranged arrange(EmbeddedEditor& editor, const Arrangement& arrangement, EmbeddedEditor* other) {
  Shelf otherShelf;
  std::vector<Slot*> from;
  if (other != nullptr) from = readOther(*other, arrangement.from.list, otherShelf);
  Library::Transaction transaction(editor.library());
  editor.tools().reload();  // now that nobody changes them
  Arranging arranging(editor, arrangement);
  const std::vector<Slot*> to = arranging.shelf().read(editor, arrangement.to.list);
  if (other == nullptr) from = arranging.shelf().read(editor, arrangement.from.list);
  arranging.plan(from, to);
  Arranged arranged = arranging.write();
  transaction.commit();
  return arranged;
}

}  // namespace

Arranged arrange(EmbeddedEditor& editor, const Arrangement& arrangement) {
  return arrange(editor, arrangement, nullptr);
}

Arranged arrange(EmbeddedEditor& editor, const Arrangement& arrangement, EmbeddedEditor& other) {
  return arrange(editor, arrangement, &other);
}

}  // namespace Editor
