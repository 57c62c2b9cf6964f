#include "contents/Settings.h"

#include <algorithm>

#include "contents/Places.h"

namespace Editor {

namespace {

const char* wordFor(const Setting& setting, std::int64_t number) {
  for (const std::optional<Setting::Word>& one : setting.words)
    if (one && one->number == number) return one->word;
  return nullptr;
}

}  // namespace

const Setting* findRowSetting(const std::string& name) {
  const auto* const found = std::find_if(Settings::kAll.begin(), Settings::kAll.end(), [&](const Setting& setting) {
    return !setting.parameter && name == setting.name;
  });
  return found == Settings::kAll.end() ? nullptr : found;
}

std::int64_t numberIn(const SystemModel& system, const Setting& setting) {
  const std::int64_t number = system.utility.values()[setting.parameter.value()];
  return setting.most == 1 && number != 0 ? 1 : number;
}

std::string wordsOf(const Setting& setting, std::int64_t number) {
  const char* const word = wordFor(setting, number);
  return word != nullptr ? word : std::to_string(number + setting.shownFrom);
}

std::optional<std::int64_t> numberFor(const Setting& setting, const std::string& words) {
  for (const std::optional<Setting::Word>& one : setting.words)
    if (one && words == one->word) return one->number;
  const std::optional<std::int64_t> shown = numberIn(words);
  if (!shown || *shown < setting.least + setting.shownFrom || *shown > setting.most + setting.shownFrom)
    return std::nullopt;
  const std::int64_t number = *shown - setting.shownFrom;
  return wordFor(setting, number) == nullptr ? std::optional(number) : std::nullopt;
}

}  // namespace Editor
