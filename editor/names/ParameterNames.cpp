#include "names/ParameterNames.h"

#include <fmt/format.h>

#include <limits>
#include <stdexcept>

namespace Editor {

bool ParameterNames::nameParameter(const std::string& path, const std::string& name) {
  return parameters_.try_emplace(path, name).second;
}

bool ParameterNames::nameValue(const std::string& path, std::int64_t value, const std::string& name) {
  return values_.try_emplace({path, value}, name).second;
}

std::string ParameterNames::nameOf(const std::string& path) const {
  const auto found = parameters_.find(path);
  return found == parameters_.end() ? "" : found->second;
}

std::string ParameterNames::nameOf(const std::string& path, const ParameterValue& value) const {
  const auto* const number = std::get_if<std::int64_t>(&value);
  if (number == nullptr) return "";
  const auto found = values_.find({path, *number});
  return found == values_.end() ? "" : found->second;
}

std::string ParameterNames::pathOf(const std::string& word,
                                   const std::function<bool(const std::string&)>& isThere) const {
  if (isThere(word)) return word;
  std::vector<std::string> meant;
  for (const auto& [path, name] : parameters_)
    if (name == word && isThere(path)) meant.push_back(path);
  if (meant.size() > 1)
    throw std::invalid_argument(fmt::format("\"{}\" is the name of {}: a path says which", word,
                                            fmt::join(meant, meant.size() == 2 ? " and " : ", ")));
  return meant.empty() ? "" : meant.front();
}

std::vector<std::int64_t> ParameterNames::valuesOf(const std::string& path, const std::string& name) const {
  std::vector<std::int64_t> values;
  for (auto at = values_.lower_bound({path, std::numeric_limits<std::int64_t>::min()});
       at != values_.end() && at->first.first == path; ++at)
    if (at->second == name) values.push_back(at->first.second);
  return values;
}

std::map<std::string, std::size_t> ParameterNames::namesAmong(
    const std::function<bool(const std::string&)>& isThere) const {
  std::map<std::string, std::size_t> names;
  for (const auto& [path, name] : parameters_)
    if (isThere(path)) ++names[name];
  return names;
}

}  // namespace Editor
