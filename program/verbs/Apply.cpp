// The verb apply: a whole target replaced by what show printed.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/MidiFile.h"
#include "targets/TargetChanges.h"
#include "targets/TargetJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

ModelSet readModels(const std::string& file, const Target& target) {
  const std::string name = displayName(file);
  std::string why;
  const auto bytes = loadBytes(file, why);
  if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", name, why));
  try {
    return modelsFromText({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, target);
  } catch (const TargetJsonError& error) {
    throw Failure(kUnusableInput, fmt::format("{}: {}", name, escape(error.what())));
  }
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
  if (const std::string unchecked = applyTarget(run.editor(), target, models); !unchecked.empty())
    program.console.note(fmt::format("{}: {}", target.name, unchecked));
  run.keep();
}

}  // namespace Editor
