#include "compare/DifferenceJson.h"

#include <nlohmann/json.hpp>

#include "models/Latin1.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const std::string& content, const Json& path, const Json& a, const Json& b) {
  return {{"content", content}, {"path", path}, {"a", a}, {"b", b}};
}

Json toJson(const std::string& content, const ParameterDifference& parameter, const ParameterNames& names) {
  const std::string& path = parameter.path;
  Json json = toJson(content, path, valueToJson(parameter.a), valueToJson(parameter.b));
  for (const auto& [key, name] : {std::pair("name", names.nameOf(path)),
                                  {"aName", names.nameOf(path, parameter.a)},
                                  {"bName", names.nameOf(path, parameter.b)}})
    if (!name.empty()) json[key] = name;
  return json;
}

}  // namespace

std::vector<Json> toJson(const Difference& difference, const ParameterNames& names) {
  const Json name = latin1ToUtf8(difference.name);
  if (difference.kind == Difference::Kind::onlyInFirst) return {toJson(difference.target, nullptr, name, nullptr)};
  if (difference.kind == Difference::Kind::onlyInSecond) return {toJson(difference.target, nullptr, nullptr, name)};
  std::vector<Json> objects;
  for (const auto* const group : {&difference.names, &difference.parameters})
    for (const ParameterDifference& parameter : *group) objects.push_back(toJson(difference.target, parameter, names));
  return objects;
}

Json toJson(const Comparison& comparison) {
  const Json summary{{"equal", comparison.equal},
                     {"different", comparison.different},
                     {"onlyA", comparison.onlyInFirst},
                     {"onlyB", comparison.onlyInSecond},
                     {"renamed", comparison.renamed}};
  return {{"summary", summary}};
}

}  // namespace Editor
