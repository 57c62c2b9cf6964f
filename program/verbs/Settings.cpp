// The verb settings: how the library listens.

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "ChangeRun.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "targets/SettingChanges.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Also what can never be taken back: `dropped` entries of the history.
void tellSet(const std::string& name, const std::string& before, const std::string& after, std::size_t dropped,
             const ChangeOptions& options, Console& console) {
  if (before == after) return console.note(fmt::format("nothing changes: {} is {}", name, after));
  const std::string gone = dropped == 0
                               ? ""
                               : fmt::format("; the oldest {} of the history {} gone",
                                             counted(dropped, "entry", "entries"), dropped == 1 ? "is" : "are");
  const std::string change = fmt::format("set: {}: {}, was {}{}", name, after, before, gone);
  if (options.dryRun)
    console.line("would " + change);
  else
    console.note(change);
}

// One that cannot be read is left out.
void show(const Setting& setting, bool isAlone, const ChangeOptions& options, EmbeddedEditor& editor,
          Program& program) {
  const std::optional<std::int64_t> number = valueOf(setting, editor);
  if (!number) return program.leaveOutDamaged(setting.name);
  if (options.json) return program.console.line(jsonLine(toJson(setting, *number)));
  const std::string value = wordsOf(setting, *number);
  program.console.line(isAlone ? value : fmt::format("{} {}", setting.name, value));
}

}  // namespace

void settings(const std::string& name, const std::optional<std::string>& value, const ChangeOptions& options,
              Program& program) {
  if (name.empty()) {
    const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
    for (const Setting& setting : Settings::kAll) show(setting, false, options, *editor, program);
    return;
  }
  const Setting& setting = settingNamed(name);
  if (!value) {
    const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
    return show(setting, true, options, *editor, program);
  }
  const std::int64_t number = numberNamed(setting, *value);
  ChangeRun run(program, {"settings"}, options);
  const std::optional<std::int64_t> before = valueOf(setting, run.editor());
  const std::size_t entries = run.library().recordedEntries().size();
  const std::vector<PlaceChange> changes = set(setting, number, run.editor());
  run.commit();
  if (options.json) return tellChanges(changes, options, program.console);
  const std::size_t kept = run.library().recordedEntries().size();
  tellSet(name, before ? wordsOf(setting, *before) : "damaged", wordsOf(setting, number),
          entries > kept ? entries - kept : 0, options, program.console);
}

}  // namespace Editor
