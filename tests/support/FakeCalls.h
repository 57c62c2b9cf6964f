#pragma once

// How fakes write their calls into the record.

#include <string>
#include <string_view>
#include <type_traits>

#include "support/Calls.h"

namespace Testing {

// "set(system.utility, 50)"
inline std::string call(std::string_view name) { return std::string(name); }
template <typename First, typename... More>
std::string call(std::string_view name, const First& first, const More&... more) {
  const auto text = [](const auto& value) {
    if constexpr (std::is_convertible_v<decltype(value), std::string>)
      return std::string(value);
    else
      return std::to_string(value);
  };
  std::string line = std::string(name) + "(" + text(first);
  ((line += ", " + text(more)), ...);
  return line + ")";
}

inline std::string yesNo(bool value) { return value ? "true" : "false"; }

// A model as its getter hands it out: counted under its name, null when scripted so.
template <typename Made>
Made* givenModel(Calls& calls, std::string_view name, Made* model) {
  return calls.read(name, 1, 0, [&] { return std::string(name); }) != 0 ? model : nullptr;
}

}  // namespace Testing
