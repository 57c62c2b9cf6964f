#include "targets/PlaceChange.h"

#include <algorithm>

#include "targets/TargetModels.h"

namespace Editor {

LiveSnapshot::LiveSnapshot(const EditorJobTools& tools) {
  for (Target& buffer : editBuffers()) {
    const ModelSet& models = tools.live(buffer.buffer, buffer.part);
    buffers_.emplace_back(std::move(buffer), models);
  }
}

void LiveSnapshot::addOthers(const EditorJobTools& now, std::vector<PlaceChange>& changes) const {
  for (const auto& [buffer, before] : buffers_) {
    const ModelSet& after = now.live(buffer.buffer, buffer.part);
    const auto isOfBuffer = [&, &name = buffer.name](const PlaceChange& change) { return change.place == name; };
    if (before == after || std::any_of(changes.begin(), changes.end(), isOfBuffer)) continue;
    changes.push_back({buffer.name, PlaceChange::What::stored, nameOf(before), nameOf(after)});
  }
}

}  // namespace Editor
