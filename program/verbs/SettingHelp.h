#pragma once

#include <vector>

namespace Editor {

// What can be set, for who tells or completes it.
struct SettingHelp {
  const char* name;
  const char* values;              // in words
  std::vector<const char*> words;  // those of them that are no numbers
};
std::vector<SettingHelp> settingHelps();

}  // namespace Editor
