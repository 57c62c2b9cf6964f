// The verb settings: how the library listens.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "ChangeRun.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Nothing: it is damaged, or no such value.
std::optional<std::int64_t> valueOf(const Setting& setting, EmbeddedEditor& editor) {
  try {
    const std::int64_t number =
        setting.parameter ? numberIn(*editor.tools().liveSystem().system, setting) : editor.library().number(setting);
    return setting.has(number) ? std::optional(number) : std::nullopt;
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    return std::nullopt;
  }
}

void set(const Setting& setting, std::int64_t number, EmbeddedEditor& editor) {
  if (!setting.parameter) return editor.library().set(setting.name, number);
  Library::Transaction transaction(editor.library());
  editor.tools().reload();  // another program may have changed the other system settings
  if (!editor.tools().systemDamage().empty())
    throw Failure(kRefused,
                  "the system settings are damaged: restore them, or have them as new with \"bda remove system\"");
  ModelSet system = editor.tools().liveSystem();
  const auto value = std::uint8_t(number);
  system.system->utility.set(&value, *setting.parameter, 0);
  if (!editor.tools().replaceSystem(system)) throw Failure(kWrongUsage, editor.tools().lastError());
  transaction.commit();
}

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
  const std::string value = wordsOf(setting, *number);
  if (options.json)
    program.console.line(jsonLine({{"setting", setting.name}, {"value", value}}));
  else
    program.console.line(isAlone ? value : fmt::format("{} {}", setting.name, value));
}

const Setting& settingNamed(const std::string& name) {
  const auto* const found =
      std::find_if(Settings::kAll.begin(), Settings::kAll.end(), [&](const Setting& one) { return name == one.name; });
  if (found != Settings::kAll.end()) return *found;
  std::vector<std::string> names;
  names.reserve(Settings::kAll.size());
  for (const Setting& setting : Settings::kAll) names.emplace_back(setting.name);
  const std::string question = didYouMean(name, names);
  throw Failure(kWrongUsage,
                fmt::format("there is no setting \"{}\"{}", escape(name),
                            question.empty() ? fmt::format(": expected {}", fmt::join(names, ", ")) : question));
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
  const std::optional<std::int64_t> number = numberFor(setting, *value);
  if (!number) throw Failure(kWrongUsage, fmt::format("{}: \"{}\": expected {}", name, escape(*value), setting.values));
  ChangeRun run(program, {"settings"}, options);
  const std::optional<std::int64_t> before = valueOf(setting, run.editor());
  const std::size_t entries = run.library().recordedEntries().size();
  if (before != number) set(setting, *number, run.editor());
  std::vector<PlaceChange> changes = run.commit();
  const std::size_t kept = run.library().recordedEntries().size();
  const std::size_t dropped = entries > kept ? entries - kept : 0;
  const std::optional<std::string> was = before ? std::optional(wordsOf(setting, *before)) : std::nullopt;
  const std::string is = wordsOf(setting, *number);
  if (!options.json) return tellSet(name, was.value_or("damaged"), is, dropped, options, program.console);
  if (changes.empty() && was != is)  // what the history says of itself it does not record
    changes.push_back({name, What::set, was, is, !was});
  tellChanges(changes, options, program.console);
}

}  // namespace Editor
