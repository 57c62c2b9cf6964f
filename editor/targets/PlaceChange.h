#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "models/EditorJobTools.h"
#include "targets/Targets.h"

namespace Editor {

// What became of one place.
struct PlaceChange {
  enum class What : std::uint8_t { stored, removed, renamed, flagged };

  std::string place;  // readable
  What what = What::stored;
  // The name of what stood and stands there, nothing for what has none: an empty place, system, additional. Of
  // `flagged` the favourite flag.
  std::optional<ParameterValue> before;
  std::optional<ParameterValue> after;

  friend bool operator==(const PlaceChange&, const PlaceChange&) = default;
};

// The edit buffers at one moment: a multi that is replaced can take voices of its parts with it.
class LiveSnapshot {
 public:
  explicit LiveSnapshot(const EditorJobTools& tools);

  // Adds those that are others by now, unless their places are among `changes` already.
  void addOthers(const EditorJobTools& now, std::vector<PlaceChange>& changes) const;

 private:
  std::vector<std::pair<Target, ModelSet>> buffers_;
};

}  // namespace Editor
