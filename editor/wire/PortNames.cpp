#include "wire/PortNames.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>

#include "messages/Nearest.h"
#include "messages/Text.h"
#include "wire/Port.h"

namespace Editor {

namespace {

std::string inLowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
  return lower;
}

std::string listOf(const std::vector<std::string>& names) {
  std::vector<std::string> shown;
  shown.reserve(names.size());
  for (const std::string& name : names) shown.push_back(escape(name));
  return fmt::format("{}", fmt::join(shown, ", "));
}

}  // namespace

std::vector<std::string> toldApart(std::vector<std::string> names) {
  std::map<std::string, unsigned> counts;
  for (std::string& name : names)
    if (const unsigned count = ++counts[name]; count > 1) name += fmt::format(" ({})", count);
  return names;
}

std::optional<std::size_t> findPort(std::string_view word, const std::vector<std::string>& names) {
  if (const auto same = std::ranges::find(names, word); same != names.end()) return std::size_t(same - names.begin());
  const std::string lower = inLowerCase(word);
  std::vector<std::size_t> whole;
  std::vector<std::size_t> parts;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string name = inLowerCase(names[i]);
    if (name == lower) whole.push_back(i);
    if (name.find(lower) != std::string::npos) parts.push_back(i);
  }
  const std::vector<std::size_t>& meant = whole.empty() ? parts : whole;
  if (meant.empty()) return std::nullopt;
  if (meant.size() == 1) return meant.front();
  std::vector<std::string> candidates;
  candidates.reserve(meant.size());
  for (const std::size_t i : meant) candidates.push_back(names[i]);
  throw PortError(PortError::Kind::cannotOpen,
                  fmt::format("port {}: several may be meant: {}", escape(word), listOf(candidates)));
}

std::string describeNoPort(const std::string& word, const std::vector<std::string>& names) {
  const std::string near = didYouMean(word, names);
  const std::string others = names.empty() ? "expected a path with a slash, pty:, virtual:NAME or -"
                                           : "there are " + listOf(names) + "; or a path, pty:, virtual:NAME, -";
  return fmt::format("port {}: there is none of that name{}", escape(word), near.empty() ? ": " + others : near);
}

}  // namespace Editor
