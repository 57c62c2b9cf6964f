#include "output/FoundLines.h"

#include <fmt/format.h>

#include "input/InputStream.h"
#include "messages/Text.h"
#include "output/NamedValues.h"

namespace Editor {

std::string lineOf(const Found& found, bool withSource, const ParameterNames& names) {
  const Candidate& content = found.content;
  std::string line;
  if (found.likeness) line += fmt::format("{:.6f}  ", *found.likeness);
  if (withSource) line += displayName(found.source) + ": ";
  line += fmt::format("{:<24} {}", content.place, showName(content.name));
  if (content.favourite.value_or(0) != 0) line += "  *favourite";
  for (const auto& [path, value] : found.asked)
    if (!names.nameOf(path).empty() || !names.nameOf(path, value).empty())
      line += fmt::format("  {}: {}", showPath(path, names), showValue(path, value, names));
  return line;
}

}  // namespace Editor
