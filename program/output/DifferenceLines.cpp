#include "output/DifferenceLines.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "messages/Text.h"
#include "midi/Hex.h"
#include "models/Latin1.h"
#include "models/ModelJson.h"
#include "output/NamedValues.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

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

struct ToJson {
  Json operator()(std::int64_t number) const { return number; }
  Json operator()(const std::string& name) const { return latin1ToUtf8(name); }
  Json operator()(const std::vector<std::uint8_t>& bytes) const { return formatHex(bytes); }
  Json operator()(std::monostate) const { return nullptr; }
};

Json jsonOf(const std::string& content, const Json& path, const Json& a, const Json& b) {
  return {{"content", content}, {"path", path}, {"a", a}, {"b", b}};
}

Json jsonOf(const std::string& content, const ParameterDifference& parameter, const ParameterNames& names) {
  const std::string& path = parameter.path;
  Json json = jsonOf(content, path, std::visit(ToJson(), parameter.a), std::visit(ToJson(), parameter.b));
  for (const auto& [key, name] : {std::pair("name", names.nameOf(path)),
                                  {"aName", names.nameOf(path, parameter.a)},
                                  {"bName", names.nameOf(path, parameter.b)}})
    if (!name.empty()) json[key] = name;
  return json;
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

std::vector<std::string> jsonOf(const Difference& difference, const ParameterNames& names) {
  const Json name = latin1ToUtf8(difference.name);
  if (difference.kind == Difference::Kind::onlyInFirst)
    return {jsonLine(jsonOf(difference.target, nullptr, name, nullptr))};
  if (difference.kind == Difference::Kind::onlyInSecond)
    return {jsonLine(jsonOf(difference.target, nullptr, nullptr, name))};
  std::vector<std::string> lines;
  for (const auto* const group : {&difference.names, &difference.parameters})
    for (const ParameterDifference& parameter : *group)
      lines.push_back(jsonLine(jsonOf(difference.target, parameter, names)));
  return lines;
}

std::string jsonOf(const Comparison& comparison) {
  const Json summary{{"equal", comparison.equal},
                     {"different", comparison.different},
                     {"onlyA", comparison.onlyInFirst},
                     {"onlyB", comparison.onlyInSecond},
                     {"renamed", comparison.renamed}};
  return jsonLine({{"summary", summary}});
}

}  // namespace Editor
