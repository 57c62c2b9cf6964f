#include "find/NamePattern.h"

#include <algorithm>

#include "models/Latin1.h"

namespace Editor {

namespace {

constexpr char kAnything = '*';

char toSmall(char letter) {
  const auto code = static_cast<unsigned char>(letter);
  constexpr unsigned char kTimes = 0xD7;  // between the letters
  const bool isCapital = (code >= 'A' && code <= 'Z') || (code >= 0xC0 && code <= 0xDE && code != kTimes);
  return isCapital ? char(code + 0x20) : letter;
}

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  std::transform(small.begin(), small.end(), small.begin(), toSmall);
  return small;
}

// Where a character does not fit, the last star before it has to stand for one more.
bool fitsWhole(std::string_view pattern, std::string_view name) {
  std::size_t at = 0;
  std::size_t star = std::string_view::npos;
  std::size_t behindStar = 0;  // in the name
  for (std::size_t i = 0; i < name.size();) {
    if (at < pattern.size() && pattern[at] == kAnything) {
      star = at++;
      behindStar = i;
    } else if (at < pattern.size() && pattern[at] == name[i]) {
      ++at;
      ++i;
    } else if (star != std::string_view::npos) {
      at = star + 1;
      i = ++behindStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(kAnything, at) == std::string_view::npos;
}

}  // namespace

NamePattern::NamePattern(std::string_view utf8) {
  const auto latin1 = utf8ToLatin1(utf8);
  isPossible_ = latin1.has_value();
  if (latin1) pattern_ = inSmallLetters(*latin1);
}

bool NamePattern::fits(std::string_view name) const {
  if (!isPossible_) return false;
  const std::string small = inSmallLetters(name);
  return pattern_.find(kAnything) == std::string::npos ? small.find(pattern_) != std::string::npos
                                                       : fitsWhole(pattern_, small);
}

}  // namespace Editor
