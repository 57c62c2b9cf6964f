#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "output/Console.h"

namespace Editor {

// Problems and notes that may be many: of each kind so many are told, and at the end how many more there were.
class Complaints {
 public:
  explicit Complaints(Console& console) : console_(console) {}

  // `kind` says in words what those of a kind have in common.
  void tell(std::string_view kind, std::string_view text) {
    tell(kind, [text] { return text; });
  }
  // The text is made only when it is told.
  template <std::invocable MakeText>
  void tell(std::string_view kind, MakeText makeText) {
    if (isTold(problems_, kind)) console_.problem(makeText());
  }
  void note(std::string_view kind, std::string_view text) {
    if (isTold(notes_, kind)) console_.note(text);
  }
  // Says "and 12 more: `where``kind`" of each, and forgets them.
  void finish(std::string_view where = "");

 private:
  using Counts = std::map<std::string, std::uint64_t, std::less<>>;

  static bool isTold(Counts& counts, std::string_view kind);

  Console& console_;
  Counts problems_;
  Counts notes_;
};

}  // namespace Editor
