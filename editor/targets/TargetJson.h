#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "models/ModelJson.h"
#include "targets/Targets.h"

namespace Editor {

// The models of a target as `show --json` prints them where there are several: "target", its name, is the first key.
nlohmann::ordered_json toJson(const Target& target, const ModelSet& models);

// Text that is none of what `show --json` prints; what() says what is wrong with it.
class TargetJsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An object of a text; of several the line that it stands on, from 1.
struct TargetObject {
  nlohmann::ordered_json json;
  std::size_t line = 0;
};
// The objects of a text: one, however it is broken into lines, or one a line.
std::vector<TargetObject> parseTargetJson(std::string_view text);

// Whether the object's models are of another kind than the target's, however well-formed they are.
bool isOfOtherKind(const nlohmann::ordered_json& json, const Target& target);

// The models of a target as that object has them.
ModelSet modelsFromJson(const nlohmann::ordered_json& json, const Target& target);
// The same of a text that has one object.
ModelSet modelsFromText(std::string_view text, const Target& target);

}  // namespace Editor
