#include "find/ModelValues.h"

#include <charconv>
#include <functional>
#include <numeric>
#include <utility>

namespace Editor {

namespace {

// Nodes stand one after the other.
struct NodeVisitor {
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

struct Counter : NodeVisitor {
  std::size_t numbers = 0;

  void group(const char* /*key*/, const ArrayGroup& group) { numbers += group.values().size(); }
  void name(const char* /*key*/, const NameText& /*name*/) {}
};

struct Collector : NodeVisitor {
  ModelValues values;

  void group(const char* /*key*/, const ArrayGroup& group) {
    values.numbers.insert(values.numbers.end(), group.values().begin(), group.values().end());
  }
  void name(const char* /*key*/, const NameText& name) { values.names.push_back(name.text()); }
};

class FieldLister {
 public:
  void begin(const char* model) { path_ = model; }
  void group(const char* key, const ArrayGroup& group) { add(key, false, numbers_, group.values().size()); }
  void name(const char* key, const NameText& /*name*/) { add(key, true, names_, 1); }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    const std::string outer = path_;
    for (std::size_t i = 0; i < count; ++i) {
      path_ = outer + '.' + key + '[' + std::to_string(i) + ']';
      visit(i);
    }
    path_ = outer;
  }

  std::vector<ValueField> fields;

 private:
  void add(const char* key, bool isName, std::size_t& next, std::size_t count) {
    fields.push_back({path_ + '.' + key, isName, next, count});
    next += count;
  }

  std::string path_;
  std::size_t numbers_ = 0;
  std::size_t names_ = 0;
};

}  // namespace

ModelValues valuesOf(const ModelSet& models) {
  Counter counter;
  Collector collector;
  forEachModel(models, [&](const char* /*key*/, const auto& model) { visitFields(model, counter); });
  collector.values.numbers.reserve(counter.numbers);
  forEachModel(models, [&](const char* /*key*/, const auto& model) { visitFields(model, collector); });
  return std::move(collector.values);
}

double likenessOf(const ModelValues& a, const ModelValues& b) {
  const auto equal = std::transform_reduce(a.numbers.begin(), a.numbers.end(), b.numbers.begin(), std::size_t{0},
                                           std::plus<>(), std::equal_to<>());
  return double(equal) / double(a.numbers.size());
}

std::vector<ValueField> valueFieldsOf(const ModelSet& shape) {
  FieldLister lister;
  forEachModel(shape, [&](const char* key, const auto& model) {
    lister.begin(key);
    visitFields(model, lister);
  });
  return std::move(lister.fields);
}

std::optional<IndexedPath> splitValuePath(std::string_view path) {
  const std::size_t open = path.rfind('[');
  if (open == std::string_view::npos || path.back() != ']') return std::nullopt;
  std::size_t index = 0;
  const char* const end = path.data() + path.size() - 1;
  const auto [stop, error] = std::from_chars(path.data() + open + 1, end, index);
  if (error != std::errc() || stop != end) return std::nullopt;
  return IndexedPath{path.substr(0, open), index};
}

}  // namespace Editor
