// The verb settings: how the library listens.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>

#include "ChangeRun.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "verbs/SettingHelp.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::uint8_t utilityOf(const EmbeddedEditor& editor, std::uint16_t parameter) {
  return std::uint8_t(editor.tools().liveSystem().system->utility.values()[parameter]);
}

void setUtility(EmbeddedEditor& editor, std::uint16_t parameter, std::uint8_t value) {
  Library::Transaction transaction(editor.library());
  editor.tools().reload();  // another program may have changed the other system settings
  if (!editor.tools().systemDamage().empty())
    throw Failure(kRefused,
                  "the system settings are damaged: restore them, or have them as new with \"bda remove system\"");
  ModelSet system = editor.tools().liveSystem();
  system.system->utility.set(&value, parameter, 0);
  if (!editor.tools().replaceSystem(system)) throw Failure(kWrongUsage, editor.tools().lastError());
  transaction.commit();
}

std::optional<std::int64_t> parseNumber(const std::string& text, std::int64_t least, std::int64_t most) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) return std::nullopt;
  return value;
}

struct Setting : SettingHelp {
  std::string (*get)(EmbeddedEditor&);
  std::optional<std::int64_t> (*parse)(const std::string&);  // nothing: no such value
  void (*set)(EmbeddedEditor&, std::int64_t);
};

const std::array kSettings{
    Setting{{"device-number", "1 to 16, all or off", {"all", "off"}},
            [](EmbeddedEditor& editor) { return deviceNumberWords(editor.tools()); },
            [](const std::string& value) -> std::optional<std::int64_t> {
              if (value == "all") return CMA::DeviceNumber_All;
              if (value == "off") return CMA::DeviceNumber_Off;
              const auto device = parseNumber(value, 1, 16);
              return device ? std::optional(*device - 1) : std::nullopt;
            },
            [](EmbeddedEditor& editor, std::int64_t device) {
              setUtility(editor, SystemModel::kDeviceNumber, std::uint8_t(device));
            }},
    Setting{{"receive-bulk", "on or off", {"on", "off"}},
            [](EmbeddedEditor& editor) -> std::string {
              return utilityOf(editor, SystemModel::kReceiveBulk) == 0 ? "off" : "on";
            },
            [](const std::string& value) -> std::optional<std::int64_t> {
              if (value != "on" && value != "off") return std::nullopt;
              return value == "on" ? 1 : 0;
            },
            [](EmbeddedEditor& editor, std::int64_t isOn) {
              setUtility(editor, SystemModel::kReceiveBulk, std::uint8_t(isOn));
            }},
    Setting{{"mixing-voices", "a number from 0 to 2048", {}},
            [](EmbeddedEditor& editor) { return std::to_string(editor.library().mixingVoiceMaximum()); },
            [](const std::string& value) { return parseNumber(value, 0, Library::kDefaultMixingVoiceMaximum); },
            [](EmbeddedEditor& editor, std::int64_t most) { editor.library().setMixingVoiceMaximum(most); }},
    Setting{
        {"history", "a number of entries from 1 to 100000, or off", {"off"}},
        [](EmbeddedEditor& editor) -> std::string {
          const std::int64_t most = editor.library().historyEntries();
          return most == 0 ? "off" : std::to_string(most);
        },
        [](const std::string& value) { return value == "off" ? std::optional(0L) : parseNumber(value, 1, 100'000); },
        [](EmbeddedEditor& editor, std::int64_t most) { editor.library().set(Recorder::kEntries, most); }},
    Setting{{"history-size", "a number of megabytes from 1 to 100000", {}},
            [](EmbeddedEditor& editor) { return std::to_string(editor.library().historyMegabytes()); },
            [](const std::string& value) { return parseNumber(value, 1, 100'000); },
            [](EmbeddedEditor& editor, std::int64_t most) { editor.library().set(Recorder::kMegabytes, most); }},
};

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
  try {
    const std::string value = setting.get(editor);
    if (options.json)
      program.console.line(jsonLine({{"setting", setting.name}, {"value", value}}));
    else
      program.console.line(isAlone ? value : fmt::format("{} {}", setting.name, value));
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    program.leaveOutDamaged(setting.name);
  }
}

const Setting& settingNamed(const std::string& name) {
  const auto* const found =
      std::find_if(kSettings.begin(), kSettings.end(), [&](const Setting& setting) { return name == setting.name; });
  if (found != kSettings.end()) return *found;
  std::vector<std::string> names;
  names.reserve(kSettings.size());
  for (const Setting& setting : kSettings) names.emplace_back(setting.name);
  const std::string question = didYouMean(name, names);
  throw Failure(kWrongUsage,
                fmt::format("there is no setting \"{}\"{}", escape(name),
                            question.empty() ? fmt::format(": expected {}", fmt::join(names, ", ")) : question));
}

}  // namespace

std::vector<SettingHelp> settingHelps() { return {kSettings.begin(), kSettings.end()}; }

void settings(const std::string& name, const std::optional<std::string>& value, const ChangeOptions& options,
              Program& program) {
  if (name.empty()) {
    const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
    for (const Setting& setting : kSettings) show(setting, false, options, *editor, program);
    return;
  }
  const Setting& setting = settingNamed(name);
  if (!value) {
    const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
    return show(setting, true, options, *editor, program);
  }
  const std::optional<std::int64_t> number = setting.parse(*value);
  if (!number) throw Failure(kWrongUsage, fmt::format("{}: \"{}\": expected {}", name, escape(*value), setting.values));
  ChangeRun run(program, {"settings"}, options);
  const std::string before = setting.get(run.editor());
  const std::size_t entries = run.library().recordedEntries().size();
  if (setting.parse(before) != number) setting.set(run.editor(), *number);
  const std::string after = setting.get(run.editor());
  std::vector<PlaceChange> changes = run.commit();
  const std::size_t kept = run.library().recordedEntries().size();
  const std::size_t dropped = entries > kept ? entries - kept : 0;
  if (!options.json) return tellSet(name, before, after, dropped, options, program.console);
  if (changes.empty() && before != after)  // what the history says of itself it does not record
    changes.push_back({name, What::set, std::to_string(*setting.parse(before)), std::to_string(*number)});
  tellChanges(changes, options, program.console);
}

}  // namespace Editor
