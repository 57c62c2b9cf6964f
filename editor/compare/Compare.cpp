#include "compare/Compare.h"

#include <set>
#include <utility>

#include "AddressRows.h"
#include "contents/ContentFormat.h"

namespace Editor {

namespace {

using Kind = Difference::Kind;
using Flag = Library::Flag;

// A content's name stands in two places, and whoever renames it changes both: that is told once.
void addInnerName(Difference& difference, ParameterDifference inner) {
  if (!difference.names.empty() && difference.names[0].a == inner.a && difference.names[0].b == inner.b)
    difference.names[0].path = std::move(inner.path);
  else
    difference.names.push_back(std::move(inner));
}

constexpr const char* kDamaged = "damaged";

ParameterDifference damage(bool isInFirst, bool isInSecond) {
  return {kDamaged, std::int64_t(isInFirst), std::int64_t(isInSecond)};
}

void compareContents(ContentId id, Held first, Held second, Difference& difference) {
  if (!isWhole(first) || !isWhole(second)) {
    difference.parameters.push_back(damage(!isWhole(first), !isWhole(second)));
    return;
  }
  if (first.name != second.name) difference.names.push_back({"name", std::move(first.name), std::move(second.name)});
  if (first.bytes == second.bytes) return;
  ModelSet left = emptySetFor(id);
  ModelSet right = left;
  const bool haveFormat = !haveSameShape(left, ModelSet());
  if (!haveFormat || decodeContent(first.bytes, left) || decodeContent(second.bytes, right)) {
    difference.parameters.push_back({"bytes", std::move(first.bytes), std::move(second.bytes)});
    return;
  }
  const std::string namePath = namePathIn(left);
  for (ParameterDifference& found : differencesOf(left, right)) {
    if (found.path == namePath)
      addInnerName(difference, std::move(found));
    else
      difference.parameters.push_back(std::move(found));
  }
}

// What cannot be read fits no checksum.
std::optional<Held> heldAt(Library& library, ContentId id) {
  try {
    return library.held(contentAt(id));
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    Held unread = heldOf("", {});
    ++unread.checksum;
    return unread;
  }
}

// One that is damaged is equal to none.
bool differ(Flag left, Flag right) { return !left || left != right; }

ParameterDifference favourites(Flag left, Flag right) {
  const auto value = [](Flag flag) { return flag ? ParameterValue(std::int64_t(*flag)) : std::monostate(); };
  return {"favourite", value(left), value(right)};
}

void ignoreReception(ModelSet& system) {
  const std::uint8_t none = 0;
  system.system->utility.set(&none, SystemModel::kReceiveBulk, 0);
  system.system->utility.set(&none, SystemModel::kDeviceNumber, 0);
}

class Comparing {
 public:
  Comparing(EmbeddedEditor& first, EmbeddedEditor& second, const std::function<void(const Difference&)>& visit)
      : first_(first), second_(second), visit_(visit) {}

  void contents() {
    std::set<ContentId> ids;
    for (EmbeddedEditor* const editor : {&first_, &second_}) {
      for (const ContentId id : editor->library().contents()) ids.insert(id);
      for (const auto& [id, flag] : editor->library().favourites()) ids.insert(id);
    }
    for (const ContentId id : ids) content(id, first_.library().flag(id), second_.library().flag(id));
  }

  void live(Reception reception) {
    const EditorJobTools& left = first_.tools();
    const EditorJobTools& right = second_.tools();
    const auto buffer = [&](EditBuffer which, std::uint8_t part) {
      const std::string name = nameOf(which, part);
      live(name, left.ownDamage(which, part), left.live(which, part), right.ownDamage(which, part),
           right.live(which, part));
    };
    for (const EditBuffer which : kSingleEditBuffers) buffer(which, 0);
    for (std::uint8_t part = 0; part < kParts; ++part) buffer(EditBuffer::partVoice, part);
    ModelSet leftSystem = left.liveSystem();
    ModelSet rightSystem = right.liveSystem();
    if (reception == Reception::ignored) {
      ignoreReception(leftSystem);
      ignoreReception(rightSystem);
    }
    live("system", left.systemDamage(), leftSystem, right.systemDamage(), rightSystem);
    live("additional", left.additionalDamage(), left.liveAdditional(), right.additionalDamage(),
         right.liveAdditional());
    if (reception == Reception::compared) settings();
  }

  Comparison comparison;

 private:
  static std::string nameOf(EditBuffer buffer, std::uint8_t part = 0) {
    const MidLo header = headerOf(buffer, part);
    return nameOrBytes({BDA::kHeaderHi, header.mid, header.lo});
  }

  // Nothing: they are damaged.
  static std::optional<std::int64_t> mostMixingVoices(Library& library) {
    try {
      return library.mixingVoiceMaximum();
    } catch (const LibraryError& error) {
      if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
      return std::nullopt;
    }
  }

  void settings() {
    const std::optional<std::int64_t> left = mostMixingVoices(first_.library());
    const std::optional<std::int64_t> right = mostMixingVoices(second_.library());
    if (!left || !right)
      other("settings", {damage(!left, !right)});
    else if (left != right)
      other("settings", {{"mixing-voices", *left, *right}});
  }

  void content(ContentId id, Flag leftFlag, Flag rightFlag) {
    std::optional<Held> left = heldAt(first_.library(), id);
    std::optional<Held> right = heldAt(second_.library(), id);
    if (left && right) return inBoth(id, std::move(*left), std::move(*right), leftFlag, rightFlag);
    if (left) return onlyIn(Kind::onlyInFirst, comparison.onlyInFirst, id, std::move(left->name), leftFlag, rightFlag);
    if (right)
      return onlyIn(Kind::onlyInSecond, comparison.onlyInSecond, id, std::move(right->name), rightFlag, leftFlag);
    if (differ(leftFlag, rightFlag)) other(Editor::nameOf(id), {favourites(leftFlag, rightFlag)});
  }

  void inBoth(ContentId id, Held left, Held right, Flag leftFlag, Flag rightFlag) {
    Difference difference;
    compareContents(id, std::move(left), std::move(right), difference);
    if (differ(leftFlag, rightFlag)) difference.parameters.push_back(favourites(leftFlag, rightFlag));
    if (difference.names.empty() && difference.parameters.empty()) {
      ++comparison.equal;
      return;
    }
    const bool isRenamed = difference.parameters.empty();
    ++(isRenamed ? comparison.renamed : comparison.different);
    difference.target = Editor::nameOf(id);
    difference.kind = isRenamed ? Kind::renamed : Kind::different;
    difference.isContent = true;
    visit_(difference);
  }

  void onlyIn(Kind side, std::uint64_t& count, ContentId id, std::string name, Flag flag, Flag emptyFlag) {
    ++count;
    Difference difference;
    difference.target = Editor::nameOf(id);
    difference.kind = side;
    difference.isContent = true;
    difference.name = std::move(name);
    difference.favourite = flag;
    if (differ(flag, emptyFlag)) difference.emptyFavourite = emptyFlag;
    visit_(difference);
  }

  void live(const std::string& target, const std::string& leftDamage, const ModelSet& left,
            const std::string& rightDamage, const ModelSet& right) {
    if (!leftDamage.empty() || !rightDamage.empty())
      other(target, {damage(!leftDamage.empty(), !rightDamage.empty())});
    else if (!(left == right))
      other(target, differencesOf(left, right));
  }

  void other(const std::string& target, std::vector<ParameterDifference> parameters) {
    ++comparison.others;
    Difference difference;
    difference.target = target;
    difference.parameters = std::move(parameters);
    visit_(difference);
  }

  EmbeddedEditor& first_;
  EmbeddedEditor& second_;
  const std::function<void(const Difference&)>& visit_;
};

}  // namespace

bool isDamagedInBoth(const ParameterDifference& found) {
  return found.a == found.b && (found.path == kDamaged || std::holds_alternative<std::monostate>(found.a));
}

Comparison compareLibraries(EmbeddedEditor& first, EmbeddedEditor& second, Reception reception,
                            const std::function<void(const Difference&)>& visit) {
  Comparing comparing(first, second, visit);
  comparing.contents();
  comparing.live(reception);
  return comparing.comparison;
}

}  // namespace Editor
