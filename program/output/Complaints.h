#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "output/Console.h"

namespace Editor {

// Problems that may be many: of each kind so many are told, and at the end how many more there were.
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
    auto count = counts_.find(kind);
    if (count == counts_.end()) count = counts_.emplace(kind, 0).first;
    if (++count->second <= kMostAlike) console_.problem(makeText());
  }
  // Says "and 12 more: `where``kind`" of each, and forgets them.
  void finish(std::string_view where = "");

 private:
  static constexpr std::uint64_t kMostAlike = 20;

  Console& console_;
  std::map<std::string, std::uint64_t, std::less<>> counts_;
};

}  // namespace Editor
