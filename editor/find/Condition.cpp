#include "find/Condition.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <stdexcept>
#include <string_view>

#include "messages/Nearest.h"
#include "models/Latin1.h"

namespace Editor {

namespace {

struct Operator {
  std::string_view sign;
  bool isOfNames;
  bool (*holds)(std::int64_t, std::int64_t);
};

// One that begins as another does stands before it.
constexpr std::array kOperators{
    Operator{"!=", true, [](std::int64_t a, std::int64_t b) { return a != b; }},
    Operator{"<=", false, [](std::int64_t a, std::int64_t b) { return a <= b; }},
    Operator{">=", false, [](std::int64_t a, std::int64_t b) { return a >= b; }},
    Operator{"<", false, [](std::int64_t a, std::int64_t b) { return a < b; }},
    Operator{">", false, [](std::int64_t a, std::int64_t b) { return a > b; }},
    Operator{"=", true, [](std::int64_t a, std::int64_t b) { return a == b; }},
};

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

struct Words {
  std::string path;
  const Operator* comparison;
  std::string value;
};

Words split(const std::string& text) {
  const std::size_t at = text.find_first_of("=!<>");
  const std::string_view rest = std::string_view(text).substr(std::min(at, text.size()));
  const auto* const found = std::find_if(kOperators.begin(), kOperators.end(), [&](const Operator& one) {
    return rest.substr(0, one.sign.size()) == one.sign;
  });
  if (found == kOperators.end())
    throw std::invalid_argument(
        fmt::format("\"{}\": expected a path, one of = != < <= > >=, and a value, such as voice.common[3]>64", text));
  return {std::string(trimmed(std::string_view(text).substr(0, at))), found,
          std::string(trimmed(rest.substr(found->sign.size())))};
}

// All fields that a content of some kind has, each path once.
std::vector<ValueField> allFields() {
  std::vector<ValueField> all;
  std::set<std::string> paths;
  for (std::size_t kind = 0; kind < kContentKinds; ++kind)
    for (ValueField& field : valueFieldsOf(emptySetFor(ContentKind(kind))))
      if (paths.insert(field.path).second) all.push_back(std::move(field));
  return all;
}

const ValueField* findField(const std::vector<ValueField>& fields, std::string_view path) {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const ValueField& field) { return field.path == path; });
  return found == fields.end() ? nullptr : &*found;
}

// Says what may have been meant by a path that no kind has.
[[noreturn]] void failToFind(const std::string& path) {
  const std::vector<ValueField> fields = allFields();
  const std::optional<IndexedPath> indexed = splitValuePath(path);
  const std::string group(indexed ? indexed->group : path);
  if (const ValueField* const field = findField(fields, group); field != nullptr && !field->isName)
    throw std::invalid_argument(fmt::format("\"{}\": expected {}[0] to {}[{}]", path, group, group, field->count - 1));
  std::vector<std::string> paths;
  paths.reserve(fields.size());
  for (const ValueField& field : fields) paths.push_back(field.path);
  const std::string meant = nearest(group, paths);
  const ValueField* const field = meant.empty() ? nullptr : findField(fields, meant);
  std::string hint;
  if (field != nullptr)
    hint = field->isName
               ? fmt::format(": did you mean {}?", meant)
               : fmt::format(": did you mean {}[{}]?", meant, indexed ? std::min(indexed->index, field->count - 1) : 0);
  throw std::invalid_argument(fmt::format("\"{}\": no content has such a parameter{}", path, hint));
}

std::int64_t parseNumber(const Words& words) {
  std::int64_t number = 0;
  const char* const end = words.value.data() + words.value.size();
  const auto [stop, error] = std::from_chars(words.value.data(), end, number);
  if (error != std::errc() || stop != end)
    throw std::invalid_argument(fmt::format("\"{}\": {} is a number: expected an integer", words.value, words.path));
  return number;
}

}  // namespace

Condition::Condition(const std::string& text) {
  const Words words = split(text);
  findPlaces(words.path);
  compare_ = words.comparison->holds;
  if (!isOfName_) {
    number_ = parseNumber(words);
  } else if (words.comparison->isOfNames) {
    name_ = utf8ToLatin1(words.value);
  } else {
    throw std::invalid_argument(fmt::format("\"{}\": {} is a name: it can be equal (=) or not (!=)", text, words.path));
  }
}

void Condition::findPlaces(const std::string& path) {
  const std::optional<IndexedPath> indexed = splitValuePath(path);
  bool isFound = false;
  for (std::size_t kind = 0; kind < kContentKinds; ++kind) {
    const std::vector<ValueField> fields = valueFieldsOf(emptySetFor(ContentKind(kind)));
    const ValueField* const field = findField(fields, indexed ? indexed->group : path);
    if (field == nullptr || field->isName == indexed.has_value()) continue;
    if (indexed && indexed->index >= field->count) continue;
    places_[kind] = Place{field->isName, field->first + (indexed ? indexed->index : 0)};
    isOfName_ = field->isName;
    isFound = true;
  }
  if (!isFound) failToFind(path);
}

bool Condition::holds(ContentKind kind, const ModelValues& values) const {
  const std::optional<Place>& place = places_[std::size_t(kind)];
  if (!place) return false;
  if (!place->isName) return compare_(values.numbers[place->at], number_);
  return compare_(std::int64_t(name_ == values.names[place->at]), 1);
}

}  // namespace Editor
