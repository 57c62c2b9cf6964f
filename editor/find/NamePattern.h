#pragma once

#include <string>
#include <string_view>

namespace Editor {

// What is looked for in names: any part of one, or with `*`, which stands for any characters or none, the whole. Case
// does not count.
class NamePattern {
 public:
  // As the user wrote it, in UTF-8. What no name can have fits none.
  explicit NamePattern(std::string_view utf8);

  // A name of the instrument, ISO 8859-1.
  bool fits(std::string_view name) const;

 private:
  bool isPossible_;
  std::string pattern_;  // in small letters
};

}  // namespace Editor
