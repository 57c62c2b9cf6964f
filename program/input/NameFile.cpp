#include "input/NameFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>

#include "ExitCode.h"
#include "messages/Text.h"
#include "midi/MidiFile.h"
#include "output/Console.h"

namespace Editor {

namespace {

constexpr std::size_t kLongestName = 28;

struct Kind {
  std::string_view word;
  std::size_t most;
  std::vector<std::string> NameLists::*names;
};
constexpr Kind kKinds[] = {{"waveform", 1024, &NameLists::waveforms}, {"arpeggio", 256, &NameLists::arpeggios}};

// Takes the text up to the next blank, and that blank.
std::string_view takeWord(std::string_view& line) {
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(word.size() + 1, line.size()));
  return word;
}

std::string parseLine(std::string_view line, NameLists& names,
                      std::set<std::pair<std::string_view, std::size_t>>& seen) {
  const std::string_view word = takeWord(line);
  const auto kind =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& one) { return one.word == word; });
  if (kind == std::end(kKinds))
    return fmt::format("\"{}\": expected waveform or arpeggio, a number and a name", escape(word));
  const std::string_view digits = takeWord(line);
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || number < 1 || number > kind->most)
    return fmt::format("\"{}\": expected a number from 1 to {}", escape(digits), kind->most);
  if (!seen.emplace(kind->word, number).second) return fmt::format("{} {} occurs twice", kind->word, number);
  if (line.size() > kLongestName)
    return fmt::format("the name has {} characters, at most {} are possible", line.size(), kLongestName);
  if (std::any_of(line.begin(), line.end(), [](char c) { return c < ' ' || c > '~'; }))
    return "the name has a character that is not printable ASCII";
  std::vector<std::string>& list = names.*kind->names;
  if (list.size() < number) list.resize(number);
  list[number - 1] = line;
  return {};
}

}  // namespace

std::string parseNames(std::string_view text, NameLists& names) {
  names = {};
  std::set<std::pair<std::string_view, std::size_t>> seen;
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#') continue;
    if (const std::string error = parseLine(line, names, seen); !error.empty())
      return fmt::format("line {}: {}", number, error);
  }
  return {};
}

NameLists loadNames(const std::string& file) {
  std::string error;
  NameLists names;
  if (const auto bytes = loadBytes(file, error))
    error = parseNames({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, names);
  if (!error.empty()) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error));
  return names;
}

}  // namespace Editor
