#pragma once

#include <optional>
#include <string>
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

  bool operator==(const ModelSet& other) const;
};

// Calls visit(key, model) for each model of the set, in the order of the published JSON.
template <typename Set, typename Visit>
void forEachModel(Set& set, Visit visit) {
  if (set.voice) visit("voice", *set.voice);
  if (set.multi) visit("multi", *set.multi);
  if (set.arpeggio) visit("arpeggio", *set.arpeggio);
  if (set.master) visit("master", *set.master);
  if (set.remote) visit("remote", *set.remote);
  if (set.system) visit("system", *set.system);
  if (set.additional) visit("additional", *set.additional);
}

bool haveSameShape(const ModelSet& a, const ModelSet& b);

// What a header of that type opens, fresh; empty for 0 and what lies above 17. `drum` counts for type 9 alone, whose
// kind of voice the part's bank decides.
ModelSet emptySetFor(unsigned headerType, bool drum = false);

// What a content in our format holds, fresh; empty for contents that never have our format.
ModelSet emptySetFor(ContentId id);

// The name that a set is stored under: that of its voice, else of the multi, master or remote.
std::string nameOf(const ModelSet& set);

// Where two sets differ, as paths: "voice.element[3].params[12]", "multi.name". What only one of them has is one path,
// as far up as the difference lies: "voice", "voice.key".
std::vector<std::string> differingPaths(const ModelSet& a, const ModelSet& b);

}  // namespace Editor
