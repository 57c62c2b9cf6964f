// The verb apply: a whole target replaced by what show printed.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/MidiFile.h"
#include "models/ModelJson.h"
#include "targets/CarryCheck.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// A voice that the target takes in both kinds is a drum voice when the file gives it keys.
bool hasKeys(const nlohmann::ordered_json& json) {
  const auto voice = json.find("voice");
  if (voice == json.end() || !voice->is_object()) return false;
  const auto key = voice->find("key");
  return key != voice->end() && key->is_array() && !key->empty();
}

ModelSet readModels(const std::string& file, const Target& target) {
  const std::string name = displayName(file);
  std::string why;
  const auto bytes = loadBytes(file, why);
  if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", name, why));
  const auto unusable = [&](const std::string& text) {
    return Failure(kUnusableInput, fmt::format("{}: {}", name, escape(text)));
  };
  nlohmann::ordered_json json;
  const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  if (const auto error = parseJson(text, json)) {
    const std::size_t tag = error->compare(0, 1, "[") == 0 ? error->find("] ") : std::string::npos;  // the parser's own
    throw unusable(tag == std::string::npos ? *error : error->substr(tag + 2));
  }
  ModelSet models = freshTarget(target, json.is_object() && hasKeys(json));
  if (const auto error = fromJson(json, models)) throw unusable(*error);
  return models;
}

}  // namespace

void apply(Words words, const ChangeOptions& options, Program& program) {
  if (words.size() < 2) throw Failure(kWrongUsage, "expected a target and a file");
  const std::string file = words.back();
  if (file.empty()) throw Failure(kWrongUsage, "an empty file name");
  words.pop_back();
  const Target target = parseOneTarget(words);
  const ModelSet models = readModels(file, target);
  ChangeRun run(program, {"apply", {file}}, options);
  const CarryCheck check = checkCarried(target, models);
  if (!check.refusal.empty()) throw Failure(kRefused, fmt::format("{}: {}", target.name, check.refusal));
  storeTarget(run.editor(), target, models);
  if (!check.unchecked.empty()) program.console.note(fmt::format("{}: {}", target.name, check.unchecked));
  run.keep();
}

}  // namespace Editor
