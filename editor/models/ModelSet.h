#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "models/ContentAddress.h"
#include "models/Models.h"

namespace Editor {

// The models that belong together: those that one header opens, or the system settings alone. Which of them exist, and
// whether the voice is a drum voice, is the set's shape.
struct ModelSet {
  std::optional<VoiceModel> voice;
  std::optional<MultiModel> multi;
  std::optional<ArpeggioModel> arpeggio;
  std::optional<MasterModel> master;
  std::optional<RemoteModel> remote;
  std::optional<SystemModel> system;
  std::optional<AdditionalModel> additional;

  friend bool operator==(const ModelSet&, const ModelSet&) = default;
};

// Calls visit(key, slot...) for each kind of model, there or not, in the order of the published JSON, with its slot in
// each of the sets. A slot is an optional of a model.
template <typename Visit, typename... Sets>
void forEachSlot(Visit visit, Sets&... sets) {
  visit("voice", sets.voice...);
  visit("multi", sets.multi...);
  visit("arpeggio", sets.arpeggio...);
  visit("master", sets.master...);
  visit("remote", sets.remote...);
  visit("system", sets.system...);
  visit("additional", sets.additional...);
}

// Calls visit(key, model) for each model that is there.
template <typename Set, typename Visit>
void forEachModel(Set& set, Visit visit) {
  forEachSlot(
      [&](const char* key, auto& slot) {
        if (slot) visit(key, *slot);
      },
      set);
}

bool haveSameShape(const ModelSet& a, const ModelSet& b);

// What a header of that type opens, fresh; empty for 0 and what lies above 17. `drum` counts for type 9 alone, whose
// kind of voice the part's bank decides.
ModelSet emptySetFor(unsigned headerType, bool drum = false);
inline constexpr unsigned kHeaderTypes = 17;  // from 1

// What a content in our format holds, fresh; empty for contents that never have our format.
ModelSet emptySetFor(ContentId id);

// The name that a set is stored under: that of its voice, else of the multi, master or remote. Null or empty for a set
// of none of these.
NameText* nameIn(ModelSet& set);
std::string nameOf(const ModelSet& set);
// Empties every name in a set, also those of its parts: what is left is how it sounds.
void clearNames(ModelSet& set);

// A parameter or another number; a name; the bytes of what is not made of parameters; nothing: it is damaged.
using ParameterValue = std::variant<std::int64_t, std::string, std::vector<std::uint8_t>, std::monostate>;

// One place where two things differ: its path, and the value that each has there.
struct ParameterDifference {
  std::string path;
  ParameterValue a;
  ParameterValue b;

  friend bool operator==(const ParameterDifference&, const ParameterDifference&) = default;
};

// Where two sets differ: "voice.element[3].params[12]", "multi.name". What only one of them has is one path, as far up
// as the difference lies, and the values are how many each has: "voice" 1 and 0, "voice.key" 0 and 73.
std::vector<ParameterDifference> differencesOf(const ModelSet& a, const ModelSet& b);
std::vector<std::string> differingPaths(const ModelSet& a, const ModelSet& b);

// The path of the name that nameIn finds; empty for none.
std::string namePathIn(const ModelSet& set);

// One of a group, a name and a list of nodes, with its path: "voice.element[3].params".
struct ModelField {
  std::string path;
  const ArrayGroup* group;
  const NameText* name;
  std::size_t count;  // of a list, otherwise 0
};
// All that a set consists of, in the order of the published JSON; a list comes before its nodes. Sets of one shape have
// the same fields. Valid as long as the set.
std::vector<ModelField> fieldsOf(const ModelSet& set);

// "voice.common[3]"
std::string parameterPath(const ModelField& group, std::size_t index);

// The other way round: parameter 3 of the group "voice.common". Nothing: the path does not end with brackets.
struct IndexedPath {
  std::string_view group;
  std::optional<std::size_t> index;  // nothing: what they hold is no number, or not as parameterPath() writes it, "03"
};
std::optional<IndexedPath> splitParameterPath(std::string_view path);

}  // namespace Editor
