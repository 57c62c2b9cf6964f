#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "models/ModelSet.h"

namespace Editor {

// What its user calls parameters and their values, by the paths of the published JSON: "voice.common[3]" is the
// "Volume", and 0 is "Off". Several may be called the same.
class ParameterNames {
 public:
  // False: it has a name already, which stays.
  bool nameParameter(const std::string& path, const std::string& name);
  bool nameValue(const std::string& path, std::int64_t value, const std::string& name);

  // Empty: it has no name. Only numbers have any.
  std::string nameOf(const std::string& path) const;
  std::string nameOf(const std::string& path, const ParameterValue& value) const;

  // What a word stands for among the paths that there are: the word itself, or the one that is called so. Empty: there
  // is none. Throws std::invalid_argument, which names them, where there are several.
  std::string pathOf(const std::string& word, const std::function<bool(const std::string&)>& isThere) const;
  // The values of a parameter that are called so.
  std::vector<std::int64_t> valuesOf(const std::string& path, const std::string& name) const;

  // The names that parameters have among the paths that there are, with how many each: pathOf() takes those of one.
  std::map<std::string, std::size_t> namesAmong(const std::function<bool(const std::string&)>& isThere) const;

 private:
  std::map<std::string, std::string> parameters_;
  std::map<std::pair<std::string, std::int64_t>, std::string> values_;
};

}  // namespace Editor
