#include "targets/SettingChanges.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "messages/Nearest.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

void replace(const Setting& setting, std::int64_t number, EmbeddedEditor& editor) {
  if (!setting.parameter) return editor.library().set(setting.name, number);
  EditorJobTools& tools = editor.tools();
  if (!tools.systemDamage().empty())
    throw TargetError(TargetError::Kind::refused,
                      "the system settings are damaged: restore them, or have them as new with \"bda remove system\"");
  ModelSet system = tools.liveSystem();
  const auto value = std::uint8_t(number);
  system.system->utility.set(&value, *setting.parameter, 0);
  if (!tools.replaceSystem(system)) throw LibraryError(LibraryError::Kind::Failed, tools.lastError());
}

}  // namespace

const Setting& settingNamed(const std::string& name) {
  const auto* const found = std::ranges::find_if(Settings::kAll, [&](const Setting& one) { return name == one.name; });
  if (found != Settings::kAll.end()) return *found;
  std::vector<std::string> names;
  names.reserve(Settings::kAll.size());
  for (const Setting& setting : Settings::kAll) names.emplace_back(setting.name);
  const std::string question = didYouMean(name, names);
  throw std::invalid_argument(
      fmt::format("there is no setting \"{}\"{}", name,
                  question.empty() ? fmt::format(": expected {}", fmt::join(names, ", ")) : question));
}

std::int64_t numberNamed(const Setting& setting, const std::string& words) {
  if (const std::optional<std::int64_t> number = numberFor(setting, words)) return *number;
  throw std::invalid_argument(fmt::format("{}: \"{}\": expected {}", setting.name, words, setting.values));
}

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

nlohmann::ordered_json toJson(const Setting& setting, std::int64_t number) {
  return {{"setting", setting.name}, {"value", wordsOf(setting, number)}};
}

std::vector<PlaceChange> set(const Setting& setting, std::int64_t number, EmbeddedEditor& editor) {
  const std::optional<std::int64_t> before = valueOf(setting, editor);
  if (before != number) replace(setting, number, editor);
  std::vector<PlaceChange> changes = changesOfRun(editor.library());
  if (changes.empty() && before != number)
    changes.push_back({setting.name, What::set, before ? std::optional(wordsOf(setting, *before)) : std::nullopt,
                       wordsOf(setting, number), !before});
  return changes;
}

}  // namespace Editor
