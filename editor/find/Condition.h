#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "find/ModelValues.h"
#include "names/ParameterNames.h"
#include "targets/ContentKind.h"

namespace Editor {

// What a parameter or a name of a content has to be: "voice.common[3]>64", "voice.name!=Piano". The path is that of
// `show --json`, or a name that the user has given to a parameter; so may the value be.
class Condition {
 public:
  // One of = != < <= > >= between a path that contents of some kind have and a value: an integer, or of a name, which
  // can be equal or not, its characters in UTF-8. Throws std::invalid_argument, which says what was expected or may
  // have been meant.
  //
  // `kind`: the only one that is asked about: where it has the parameter, what a name stands for in others is no
  // matter.
  explicit Condition(const std::string& text, const ParameterNames& names = {},
                     std::optional<ContentKind> kind = std::nullopt);

  // Whether it holds for the values of a content of that kind. For one that has no such parameter it never does.
  bool holds(ContentKind kind, const ModelValues& values) const;

  // What it has asked of such values, for which it held.
  struct Asked {
    std::string path;
    ParameterValue value;
  };
  Asked asked(ContentKind kind, const ModelValues& values) const;

 private:
  using Holds = std::function<bool(std::int64_t, std::int64_t)>;  // of value and operand

  // Where a value stands among those of its kind.
  struct Place {
    std::string path;
    bool isName;
    std::size_t at;
    std::int64_t number = 0;  // that it is compared with
  };
  bool findPlace(const std::string& word, const ParameterNames& names, ContentKind kind);
  void setNumbers(const std::string& word, const std::string& value, const ParameterNames& names);

  std::array<std::optional<Place>, kContentKinds> places_;  // by kind; nothing: it has none
  Holds compare_;
  bool isOfName_ = false;
  std::optional<std::string> name_;  // nothing: no name can have those characters
};

}  // namespace Editor
