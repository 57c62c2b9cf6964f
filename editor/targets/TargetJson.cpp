#include "targets/TargetJson.h"

#include <algorithm>
#include <set>

#include "midi/HexText.h"
#include "targets/TargetModels.h"

namespace Editor {

namespace {

// A voice that the target takes in both kinds is a drum voice when the file gives it keys.
bool hasKeys(const nlohmann::ordered_json& json) {
  const auto voice = json.find("voice");
  if (voice == json.end() || !voice->is_object()) return false;
  const auto key = voice->find("key");
  return key != voice->end() && key->is_array() && !key->empty();
}

nlohmann::ordered_json parseOne(std::string_view text) {
  nlohmann::ordered_json json;
  if (const auto error = parseJson(text, json)) {
    const std::size_t tag = error->compare(0, 1, "[") == 0 ? error->find("] ") : std::string::npos;  // the parser's own
    throw TargetJsonError(tag == std::string::npos ? *error : error->substr(tag + 2));
  }
  return json;
}

struct ObjectLine {
  std::string_view text;
  std::size_t number;
};

// The lines of a text, when the first one is an object; empty ones and blanks aside.
std::vector<ObjectLine> objectLines(std::string_view text) {
  std::vector<ObjectLine> lines;
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::size_t begin = line.find_first_not_of(kHexBlanks);
    if (begin == std::string_view::npos) continue;
    line = line.substr(begin, line.find_last_not_of(kHexBlanks) + 1 - begin);
    nlohmann::ordered_json first;
    if (lines.empty() && (parseJson(line, first) || !first.is_object())) return {};
    lines.push_back({line, number});
  }
  return lines;
}

// The key of the model that gives a set its kind: a voice has a multi with it, a multi has no voice.
template <typename HasKey>
const char* leadingKey(HasKey hasKey) {
  for (const char* const key : {"voice", "multi", "master", "remote", "system", "additional"})
    if (hasKey(key)) return key;
  return nullptr;
}

}  // namespace

nlohmann::ordered_json toJson(const Target& target, const ModelSet& models) {
  nlohmann::ordered_json object{{"target", target.name}};
  object.update(toJson(models));
  return object;
}

bool isOfOtherKind(const nlohmann::ordered_json& json, const Target& target) {
  if (!json.is_object()) return false;
  const bool isDrum = hasKeys(json);
  ModelSet fresh = freshTarget(target, isDrum);
  std::set<std::string> keys;
  forEachModel(fresh, [&](const char* key, const auto&) { keys.insert(key); });
  const char* const given = leadingKey([&](const char* key) { return json.contains(key); });
  const char* const taken = leadingKey([&](const char* key) { return keys.contains(key); });
  return given != nullptr && (given != taken || (fresh.voice && fresh.voice->isDrum() != isDrum));
}

std::vector<TargetObject> parseTargetJson(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  const std::vector<ObjectLine> lines = objectLines(text);
  if (lines.size() < 2) return {{parseOne(text)}};
  std::vector<TargetObject> objects;
  for (const ObjectLine& line : lines) {
    try {
      objects.push_back({parseOne(line.text), line.number});
    } catch (const TargetJsonError& error) {
      throw TargetJsonError("line " + std::to_string(line.number) + ": " + error.what());
    }
  }
  return objects;
}

ModelSet modelsFromText(std::string_view text, const Target& target) {
  const std::vector<TargetObject> objects = parseTargetJson(text);
  if (objects.size() > 1) throw TargetJsonError("expected one object");
  return modelsFromJson(objects.front().json, target);
}

ModelSet modelsFromJson(const nlohmann::ordered_json& json, const Target& target) {
  ModelSet models = freshTarget(target, json.is_object() && hasKeys(json));
  if (const auto error = fromJson(json, models)) throw TargetJsonError(*error);
  return models;
}

}  // namespace Editor
