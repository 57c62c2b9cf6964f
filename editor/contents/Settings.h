#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "bda/platform/CMA/DeviceNumber.h"
#include "models/Models.h"

namespace Editor {

// What a user can set of a library, each a number in a range: a row of its table of settings, or one of the parameters
// of the system settings that no block carries.
struct Setting {
  struct Word {
    const char* word;
    std::int64_t number;
  };

  const char* name;
  const char* values;  // in words
  std::int64_t least;
  std::int64_t most;
  std::int64_t otherwise = 0;  // of a row: what counts as long as it is not there
  // Of the system settings; nothing: a row.
  std::optional<std::uint16_t> parameter = std::nullopt;
  std::int64_t shownFrom = 0;                  // what the number 0 is called
  std::array<std::optional<Word>, 2> words{};  // the numbers that are called otherwise

  constexpr bool has(std::int64_t number) const { return number >= least && number <= most; }
};

namespace Settings {

inline constexpr Setting kDeviceNumber{
    .name = "device-number",
    .values = "1 to 16, all or off",
    .least = 0,
    .most = CMA::DeviceNumber_Off,
    .parameter = SystemModel::kDeviceNumber,
    .shownFrom = 1,
    .words = {{Setting::Word{"all", CMA::DeviceNumber_All}, Setting::Word{"off", CMA::DeviceNumber_Off}}}};
inline constexpr Setting kReceiveBulk{.name = "receive-bulk",
                                      .values = "on or off",
                                      .least = 0,
                                      .most = 1,
                                      .parameter = SystemModel::kReceiveBulk,
                                      .words = {{Setting::Word{"on", 1}, Setting::Word{"off", 0}}}};
inline constexpr Setting kMixingVoices{
    .name = "mixing-voices", .values = "a number from 0 to 2048", .least = 0, .most = 2048, .otherwise = 2048};
inline constexpr Setting kHistory{.name = "history",
                                  .values = "a number of entries from 1 to 100000, or off",
                                  .least = 0,
                                  .most = 100'000,
                                  .otherwise = 1000,
                                  .words = {{Setting::Word{"off", 0}}}};
inline constexpr Setting kHistorySize{.name = "history-size",
                                      .values = "a number of megabytes from 1 to 100000",
                                      .least = 1,
                                      .most = 100'000,
                                      .otherwise = 64};

inline constexpr std::array kAll{kDeviceNumber, kReceiveBulk, kMixingVoices, kHistory, kHistorySize};

}  // namespace Settings

// The one that has its row under that name; null: there is none.
const Setting* findRowSetting(const std::string& name);

// What one of the system settings is set to. A switch is on by any number but 0, as for an instrument.
std::int64_t numberIn(const SystemModel& system, const Setting& setting);

// A number as users write it, also one out of range; and the other way round, nothing for what is no value of it.
std::string wordsOf(const Setting& setting, std::int64_t number);
std::optional<std::int64_t> numberFor(const Setting& setting, const std::string& words);

}  // namespace Editor
