#pragma once

#include <rapidcheck.h>

#include <cstdint>
#include <string>

#include "models/ModelSet.h"

namespace Editor {

// Fills models with values that a test can tell apart from any others.
class Filler {
 public:
  explicit Filler(std::uint32_t seed) : state_(seed) {}

  void group(const char* /*key*/, ArrayGroup& group) {
    for (std::uint16_t i = 0; i < group.values().size(); ++i) {
      const auto value = std::uint16_t(next() & group.maximum());
      group.set(&value, i, 1);
    }
  }
  void name(const char* /*key*/, NameText& name) {
    std::string text(next() % (name.capacity() + 1), ' ');
    for (char& c : text) c = char(1 + next() % 255);
    name.assign(text);
  }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }

 private:
  std::uint32_t next() {
    state_ = state_ * 1664525u + 1013904223u;
    return state_ >> 8;
  }

  std::uint32_t state_;
};

inline void fill(ModelSet& models, std::uint32_t seed) {
  Filler filler(seed);
  forEachModel(models, [&](const char* /*key*/, auto& model) { visitFields(model, filler); });
}

inline ModelSet filled(ModelSet models, std::uint32_t seed) {
  fill(models, seed);
  return models;
}

inline ModelSet systemSet() {
  ModelSet models;
  models.system.emplace();
  return models;
}

inline ModelSet additionalSet() {
  ModelSet models;
  models.additional.emplace();
  return models;
}

// A number from `first` to before `end`, all equally likely from the first trial on.
inline unsigned anyOf(unsigned first, unsigned end) {
  return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(first, end));
}

// Any shape that there is.
inline ModelSet anyShape() {
  const unsigned headerType = anyOf(1, 20);
  if (headerType == 18) return systemSet();
  if (headerType == 19) return additionalSet();
  return emptySetFor(headerType, *rc::gen::arbitrary<bool>());
}

inline std::uint32_t anySeed() { return anyOf(0, 0xFFFFFFFF); }

}  // namespace Editor
