#include "transcript/Seal.h"

#include <fmt/format.h>

#include <algorithm>

#include "contents/Fingerprint.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

constexpr const char* kKey = "hash";

std::uint64_t hashOf(const std::string& text, std::uint64_t before) {
  return fnv1a({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, before);
}

std::string endOf(std::uint64_t hash) { return fmt::format(R"(,"{}":"{:016x}"}})", kKey, hash); }

}  // namespace

std::string Seal::close(const nlohmann::ordered_json& line) {
  std::string text = jsonLine(line);
  last_ = hashOf(text, last_);
  text.pop_back();
  return text + endOf(last_);
}

std::string Seal::open(std::string_view text, nlohmann::ordered_json& line) {
  areAllSealed_ = areAllSealed_ || line.contains("sealed");
  const bool hasSeal = line.erase(kKey) > 0;
  const std::string before(text.substr(0, text.size() - std::min(hasSeal ? endOf(0).size() : 0, text.size())));
  last_ = hashOf(hasSeal ? before + '}' : before, last_);
  const bool isGood = hasSeal ? text == before + endOf(last_) : !areAllSealed_;
  return isGood ? "" : "this line, or one before it, was altered or removed after it was written";
}

}  // namespace Editor
