#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Editor {

// Of things that are alike so many are named, and then how many more there are.
inline constexpr std::uint64_t kMostAlike = 20;

// "1 byte", "2 bytes"; `several` where an s does not do.
inline std::string counted(std::uint64_t count, std::string_view one, std::string_view several = {}) {
  std::string text = std::to_string(count) + ' ';
  if (count == 1 || several.empty())
    text += one;
  else
    text += several;
  if (count != 1 && several.empty()) text += 's';
  return text;
}

}  // namespace Editor
