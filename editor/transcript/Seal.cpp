#include "transcript/Seal.h"

#include <fmt/format.h>

#include "contents/Fingerprint.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

constexpr const char* kKey = "hash";

std::uint64_t hashOf(const std::string& text, std::uint64_t before) {
  return fnv1a({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, before);
}

std::string digitsOf(std::uint64_t hash) { return fmt::format("{:016x}", hash); }

}  // namespace

std::string Seal::close(nlohmann::ordered_json line) {
  last_ = hashOf(jsonLine(line), last_);
  line[kKey] = digitsOf(last_);
  return jsonLine(line);
}

std::string Seal::open(nlohmann::ordered_json& line) {
  const auto seal = line.find(kKey);
  const nlohmann::ordered_json said = seal == line.end() ? nlohmann::ordered_json() : *seal;
  if (seal != line.end()) line.erase(seal);
  const std::string text = jsonLine(line);
  areAllSealed_ = areAllSealed_ || line.contains("sealed");
  const bool isGood = (said.is_null() && !areAllSealed_) || said == digitsOf(hashOf(text, last_));
  last_ = hashOf(text, last_);
  return isGood ? "" : "this line, or one before it, was altered or removed after it was written";
}

}  // namespace Editor
