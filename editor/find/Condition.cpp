#include "find/Condition.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
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
  std::string value;  // as it was written: a name may begin and end with blanks
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
          std::string(rest.substr(found->sign.size()))};
}

// All fields that a content of some kind has, each path once.
std::vector<ValueField> allFields() {
  std::vector<ValueField> all;
  std::set<std::string> paths;
  for (std::size_t kind = 0; kind < kContentKinds; ++kind)
    for (ValueField& field : valueFieldsOf(emptySetFor(ContentKind(kind))))
      if (field.count != 0 && paths.insert(field.path).second) all.push_back(std::move(field));
  return all;
}

const ValueField* findField(const std::vector<ValueField>& fields, std::string_view path) {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const ValueField& field) { return field.path == path; });
  return found == fields.end() ? nullptr : &*found;
}

// Where the value of a path stands among those of its kind; nothing: there is no such path.
std::optional<std::size_t> placeIn(const std::vector<ValueField>& fields, const std::string& path) {
  const std::optional<IndexedPath> indexed = splitParameterPath(path);
  const ValueField* const field = findField(fields, indexed ? indexed->group : path);
  if (field == nullptr || field->isName == indexed.has_value()) return std::nullopt;
  if (!indexed) return field->first;
  const std::size_t index = indexed->index.value_or(field->count);
  return index < field->count ? std::optional(field->first + index) : std::nullopt;
}

// The names that stand for a parameter in some kind, and in none for several.
std::vector<std::string> namesTaken(const ParameterNames& names) {
  std::map<std::string, std::size_t> most;
  for (std::size_t kind = 0; kind < kContentKinds; ++kind) {
    const std::vector<ValueField> fields = valueFieldsOf(emptySetFor(ContentKind(kind)));
    const auto isThere = [&](const std::string& path) { return placeIn(fields, path).has_value(); };
    for (const auto& [name, count] : names.namesAmong(isThere)) most[name] = std::max(most[name], count);
  }
  std::vector<std::string> taken;
  for (const auto& [name, count] : most)
    if (count == 1) taken.push_back(name);
  return taken;
}

// Says what may have been meant by a path or name that no kind has.
[[noreturn]] void failToFind(const std::string& path, const ParameterNames& names) {
  const std::vector<ValueField> fields = allFields();
  const std::optional<IndexedPath> indexed = splitParameterPath(path);
  const std::string group(indexed ? indexed->group : path);
  if (const ValueField* const field = findField(fields, group); field != nullptr && !field->isName)
    throw std::invalid_argument(fmt::format("\"{}\": expected {}[0] to {}[{}]", path, group, group, field->count - 1));
  std::vector<std::string> paths;
  paths.reserve(fields.size());
  for (const ValueField& field : fields) paths.push_back(field.path);
  const std::string meant = nearest(group, paths);
  const ValueField* const field = meant.empty() ? nullptr : findField(fields, meant);
  std::string hint = didYouMean(path, namesTaken(names));
  if (field != nullptr)
    hint = field->isName ? fmt::format(": did you mean {}?", meant)
                         : fmt::format(": did you mean {}[{}]?", meant,
                                       indexed ? std::min(indexed->index.value_or(0), field->count - 1) : 0);
  throw std::invalid_argument(fmt::format("\"{}\": no content has such a parameter{}", path, hint));
}

std::optional<std::int64_t> parseNumber(const std::string& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

Condition::Condition(const std::string& text, const ParameterNames& names, std::optional<ContentKind> kind) {
  const Words words = split(text);
  const bool isFoundThere = kind && findPlace(words.path, names, *kind);
  bool isFound = isFoundThere;
  for (std::size_t any = 0; any < kContentKinds && !isFoundThere; ++any)
    isFound = findPlace(words.path, names, ContentKind(any)) || isFound;
  if (!isFound) failToFind(words.path, names);
  compare_ = words.comparison->holds;
  if (!isOfName_) {
    setNumbers(words.path, std::string(trimmed(words.value)), names);
  } else if (words.comparison->isOfNames) {
    name_ = utf8ToLatin1(words.value);
  } else {
    throw std::invalid_argument(fmt::format("\"{}\": {} is a name: it can be equal (=) or not (!=)", text, words.path));
  }
}

bool Condition::findPlace(const std::string& word, const ParameterNames& names, ContentKind kind) {
  const std::vector<ValueField> fields = valueFieldsOf(emptySetFor(kind));
  const std::string path = names.pathOf(word, [&](const std::string& one) { return placeIn(fields, one).has_value(); });
  const std::optional<std::size_t> at = placeIn(fields, path);
  if (!at) return false;
  isOfName_ = path.back() != ']';
  places_[std::size_t(kind)] = Place{path, isOfName_, *at};
  return true;
}

// A value's name may stand for another number in each kind, and for none in some, of which none fits then.
void Condition::setNumbers(const std::string& word, const std::string& value, const ParameterNames& names) {
  const std::optional<std::int64_t> number = parseNumber(value);
  bool isFound = false;
  for (std::optional<Place>& place : places_) {
    if (!place) continue;
    const std::vector<std::int64_t> called =
        number ? std::vector<std::int64_t>{*number} : names.valuesOf(place->path, value);
    if (called.size() > 1)
      throw std::invalid_argument(fmt::format("\"{}\" is the name of {} of {}: a number says which", value,
                                              fmt::join(called, ", "), place->path));
    isFound = isFound || !called.empty();
    if (called.empty())
      place.reset();
    else
      place->number = called.front();
  }
  if (!isFound) throw std::invalid_argument(fmt::format("\"{}\": {} is a number: expected an integer", value, word));
}

bool Condition::holds(ContentKind kind, const ModelValues& values) const {
  const std::optional<Place>& place = places_[std::size_t(kind)];
  if (!place) return false;
  if (!place->isName) return compare_(values.numbers[place->at], place->number);
  return compare_(std::int64_t(name_ == values.names[place->at]), 1);
}

Condition::Asked Condition::asked(ContentKind kind, const ModelValues& values) const {
  const Place& place = *places_[std::size_t(kind)];
  if (place.isName) return {place.path, values.names[place.at]};
  return {place.path, std::int64_t(values.numbers[place.at])};
}

}  // namespace Editor
