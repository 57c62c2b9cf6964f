#include "output/DifferenceLines.h"

#include <fmt/format.h>

#include "messages/Text.h"
#include "output/NamedValues.h"

namespace Editor {

namespace {

std::string valuesOf(const ParameterDifference& parameter, const ParameterNames& names = {}) {
  return fmt::format("{} | {}", showValue(parameter.path, parameter.a, names),
                     showValue(parameter.path, parameter.b, names));
}

bool isUnknown(const ParameterValue& value) { return std::holds_alternative<std::monostate>(value); }

std::string lineOf(const ParameterDifference& parameter, const ParameterNames& names) {
  using Bytes = std::vector<std::uint8_t>;
  if (const auto* const bytes = std::get_if<Bytes>(&parameter.a))
    return fmt::format("opaque bytes differ: {} | {} bytes", bytes->size(), std::get<Bytes>(parameter.b).size());
  if (parameter.path == "damaged") {
    const auto word = [](const auto& isIt) { return std::get<std::int64_t>(isIt) == 0 ? "good" : "damaged"; };
    return fmt::format("not compared: {} | {}", word(parameter.a), word(parameter.b));
  }
  if (isUnknown(parameter.a) || isUnknown(parameter.b))
    return fmt::format("{}: not compared: {}", parameter.path, valuesOf(parameter));
  return fmt::format("{}: {}", showPath(parameter.path, names), valuesOf(parameter, names));
}

}  // namespace

std::string namesOf(const Difference& difference) {
  std::string names = valuesOf(difference.names.front());
  if (difference.names.size() > 1) names += fmt::format(" (inside: {})", valuesOf(difference.names.back()));
  return names;
}

std::vector<std::string> detailsOf(const Difference& difference, const ParameterNames& names) {
  std::vector<std::string> details;
  if (!difference.names.empty()) details.push_back("name: " + namesOf(difference));
  for (const ParameterDifference& parameter : difference.parameters) details.push_back(lineOf(parameter, names));
  return details;
}

std::string contentOf(const Difference& difference) {
  return fmt::format("\"{}\"{}", showName(difference.name), flagsOf(difference));
}

std::string flagsOf(const Difference& difference) {
  const char* const flag = !difference.favourite ? ", its favourite flag is damaged" : ", a favourite";
  return (difference.favourite == 0 ? "" : flag) + emptyPlaceOf(difference);
}

std::string emptyPlaceOf(const Difference& difference) {
  if (!difference.emptyFavourite) return "; the favourite flag of the empty place is damaged";
  return difference.emptyFavourite == 0 ? "" : "; the empty place is a favourite";
}

}  // namespace Editor
