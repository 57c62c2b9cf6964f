#include "models/ModelSet.h"

#include <charconv>
#include <unordered_map>

namespace Editor {

bool haveSameShape(const ModelSet& a, const ModelSet& b) {
  bool same = !a.voice || !b.voice || a.voice->isDrum() == b.voice->isDrum();
  forEachSlot(
      [&](const char* /*key*/, const auto& left, const auto& right) {
        if (left.has_value() != right.has_value()) same = false;
      },
      a, b);
  return same;
}

ModelSet emptySetFor(unsigned headerType, bool drum) {
  ModelSet set;
  if (headerType >= 1 && headerType <= 10)
    set.voice.emplace(headerType == 9 ? drum : headerType >= 5 && headerType <= 8);
  if (headerType >= 1 && headerType <= 13) {
    set.multi.emplace();
    set.arpeggio.emplace();
  }
  if (headerType == 14 || headerType == 15) set.master.emplace();
  if (headerType == 16 || headerType == 17) set.remote.emplace();
  return set;
}

ModelSet emptySetFor(ContentId id) {
  constexpr unsigned kMixingVoice = 10;
  constexpr unsigned kMulti = 11;
  if (const std::optional<MidLo> header = headerOf(id)) return emptySetFor(headerTypeOf(*header));
  if (isMixingVoice(id)) return emptySetFor(kMixingVoice);
  return emptySetFor(isContent(id) && id.type == ContSrv::ContType_Multi ? kMulti : 0);
}

namespace {

template <typename Set>
auto* findName(Set& set) {
  if (set.voice) return &set.voice->name;
  if (set.multi) return &set.multi->name;
  if (set.master) return &set.master->name;
  if (set.remote) return &set.remote->name1;
  return decltype(&set.voice->name)(nullptr);
}

}  // namespace

NameText* nameIn(ModelSet& set) { return findName(set); }

std::string nameOf(const ModelSet& set) {
  const NameText* const name = findName(set);
  return name == nullptr ? std::string() : name->text();
}

namespace {

using Fields = std::vector<ModelField>;

// Lists the fields of a model with their paths; a list comes before its nodes.
class FieldLister {
 public:
  FieldLister(std::string path, Fields& fields) : path_(std::move(path)), fields_(fields) {}

  void group(const char* key, const ArrayGroup& group) { fields_.push_back({path_ + '.' + key, &group, nullptr, 0}); }
  void name(const char* key, const NameText& name) { fields_.push_back({path_ + '.' + key, nullptr, &name, 0}); }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    const std::string outer = path_;
    const std::string list = outer + '.' + key;
    fields_.push_back({list, nullptr, nullptr, count});
    for (std::size_t i = 0; i < count; ++i) {
      path_ = list + '[' + std::to_string(i) + ']';
      visit(i);
    }
    path_ = outer;
  }

 private:
  std::string path_;
  Fields& fields_;
};

template <typename Model>
Fields fieldsOf(const char* key, const Model& model) {
  Fields fields;
  FieldLister lister(key, fields);
  visitFields(model, lister);
  return fields;
}

using Differences = std::vector<ParameterDifference>;

void compareFields(const ModelField& left, const ModelField& right, Differences& differences) {
  if (left.count != right.count)
    differences.push_back({left.path, std::int64_t(left.count), std::int64_t(right.count)});
  if (left.name != nullptr && !(*left.name == *right.name))
    differences.push_back({left.path, left.name->text(), right.name->text()});
  if (left.group == nullptr) return;
  const std::vector<std::uint16_t>& a = left.group->values();
  const std::vector<std::uint16_t>& b = right.group->values();
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) differences.push_back({parameterPath(left, i), std::int64_t(a[i]), std::int64_t(b[i])});
}

void compareModels(const Fields& left, const Fields& right, Differences& differences) {
  std::unordered_map<std::string, const ModelField*> others;
  for (const ModelField& field : right) others.emplace(field.path, &field);
  for (const ModelField& field : left) {
    const auto found = others.find(field.path);
    if (found != others.end()) compareFields(field, *found->second, differences);  // else its list has been named
  }
}

struct NameClearer {
  void group(const char* /*key*/, ArrayGroup& /*group*/) {}
  void name(const char* /*key*/, NameText& name) { name.assign({}); }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

}  // namespace

void clearNames(ModelSet& set) {
  NameClearer clearer;
  forEachModel(set, [&](const char* /*key*/, auto& model) { visitFields(model, clearer); });
}

std::vector<ParameterDifference> differencesOf(const ModelSet& a, const ModelSet& b) {
  Differences differences;
  forEachSlot(
      [&](const char* key, const auto& left, const auto& right) {
        if (left.has_value() != right.has_value())
          differences.push_back({key, std::int64_t(left.has_value()), std::int64_t(right.has_value())});
        if (left && right) compareModels(fieldsOf(key, *left), fieldsOf(key, *right), differences);
      },
      a, b);
  return differences;
}

std::vector<std::string> differingPaths(const ModelSet& a, const ModelSet& b) {
  std::vector<std::string> paths;
  for (ParameterDifference& difference : differencesOf(a, b)) paths.push_back(std::move(difference.path));
  return paths;
}

std::string namePathIn(const ModelSet& set) {
  const NameText* const name = findName(set);
  if (name == nullptr) return {};
  std::string path;
  forEachModel(set, [&](const char* key, const auto& model) {
    for (ModelField& field : fieldsOf(key, model))
      if (field.name == name) path = std::move(field.path);
  });
  return path;
}

std::vector<ModelField> fieldsOf(const ModelSet& set) {
  Fields all;
  forEachModel(set, [&](const char* key, const auto& model) {
    for (ModelField& field : fieldsOf(key, model)) all.push_back(std::move(field));
  });
  return all;
}

std::string parameterPath(const ModelField& group, std::size_t index) {
  return group.path + '[' + std::to_string(index) + ']';
}

std::optional<IndexedPath> splitParameterPath(std::string_view path) {
  const std::size_t open = path.rfind('[');
  if (open == std::string_view::npos || path.back() != ']') return std::nullopt;
  IndexedPath indexed{path.substr(0, open), std::nullopt};
  const std::string_view digits = path.substr(open + 1, path.size() - open - 2);
  std::size_t index = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, index);
  const bool isOneWay = !digits.starts_with('0') || digits.size() == 1;
  if (error == std::errc() && stop == end && isOneWay) indexed.index = index;
  return indexed;
}

}  // namespace Editor
