#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "models/ModelSet.h"

namespace Editor {

// All values of a set of models without their paths, in the order of the published JSON: sets of one shape have each
// value in the same place.
struct ModelValues {
  std::vector<std::uint16_t> numbers;
  std::vector<std::string> names;
};
ModelValues valuesOf(const ModelSet& models);

// The share of the numbers that are equal, 0 to 1; both have as many.
double likenessOf(const ModelValues& a, const ModelValues& b);

// The values that have one path between them: a name, or a group of numbers, "voice.common", of which each has an index
// behind it.
struct ValueField {
  std::string path;
  bool isName;
  std::size_t first;  // in ModelValues
  std::size_t count;
};
std::vector<ValueField> valueFieldsOf(const ModelSet& shape);

// "voice.common[3]" is number 3 of "voice.common"; nothing: the path ends with no index.
struct IndexedPath {
  std::string_view group;
  std::size_t index;
};
std::optional<IndexedPath> splitValuePath(std::string_view path);

}  // namespace Editor
