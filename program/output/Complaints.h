#pragma once

#include <cstdint>
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
  void tell(const std::string& kind, std::string_view text) {
    if (++problems_[kind] <= kMostAlike) console_.problem(text);
  }
  void note(const std::string& kind, std::string_view text) {
    if (++notes_[kind] <= kMostAlike) console_.note(text);
  }
  // Says "and 12 more: `kind`" of each, and forgets them.
  void finish();

 private:
  static constexpr std::uint64_t kMostAlike = 20;

  Console& console_;
  std::map<std::string, std::uint64_t> problems_;
  std::map<std::string, std::uint64_t> notes_;
};

}  // namespace Editor
