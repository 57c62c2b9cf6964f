#pragma once

#include <string>
#include <vector>

#include "models/ModelSet.h"
#include "targets/Targets.h"

namespace Editor {

// Whether the blocks of a target can carry its models: would an instrument that received their dumps have the same
// values, in every parameter that the blocks hold at all?
struct CarryCheck {
  std::string refusal;               // the first parameter that would arrive as another value, by its path; empty: none
  std::vector<std::string> leftOut;  // the paths of those that no message holds, where they are not as in fresh models
  std::string unchecked;             // why it could not be seen; empty: it was
};
CarryCheck checkCarried(const Target& target, const ModelSet& models);

}  // namespace Editor
