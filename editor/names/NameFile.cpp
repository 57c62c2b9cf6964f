#include "names/NameFile.h"

#include <utility>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>

#include "messages/Nearest.h"
#include "messages/Text.h"
#include "midi/HexText.h"

namespace Editor {

namespace {

constexpr std::size_t kLongestName = 28;

// Takes the text up to the next blank, and that blank.
std::string_view takeWord(std::string_view& line) {
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(word.size() + 1, line.size()));
  return word;
}

std::optional<std::size_t> numberIn(std::string_view digits) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// Whatever may be meant as one where a number can stand: "12", "-1", "+5", "0x5".
bool looksLikeNumber(std::string_view name) {
  if (name.starts_with('-') || name.starts_with('+')) name.remove_prefix(1);
  const bool isHex = name.starts_with("0x") || name.starts_with("0X");
  if (isHex) name.remove_prefix(2);
  return (isHex || !name.empty()) &&
         name.find_first_not_of(isHex ? "0123456789ABCDEFabcdef" : "0123456789") == std::string_view::npos;
}

std::string whyNoName(std::string_view name) {
  if (name.size() > kLongestName)
    return fmt::format("the name has {} characters, at most {} are possible", name.size(), kLongestName);
  if (std::any_of(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }))
    return "the name has a character that is not printable ASCII";
  return {};
}

// Every group of parameters that a target can have, by its path: any with parameters, once.
class Groups {
 public:
  Groups() {
    for (unsigned type = 1; type <= kHeaderTypes; ++type) add(emptySetFor(type));
    ModelSet others;
    others.system.emplace();
    others.additional.emplace();
    add(others);
  }

  struct Group {
    std::size_t count;  // of parameters
    std::size_t most;   // that each can be
  };
  const Group* find(std::string_view path) const {
    const auto found = groups_.find(path);
    return found == groups_.end() ? nullptr : &found->second;
  }
  std::vector<std::string> paths() const {
    std::vector<std::string> all;
    for (const auto& [path, group] : groups_) all.push_back(path);
    return all;
  }

 private:
  void add(const ModelSet& models) {
    for (const ModelField& field : fieldsOf(models))
      if (field.group != nullptr && !field.group->values().empty())
        groups_.try_emplace(field.path, Group{field.group->values().size(), field.group->maximum()});
  }

  std::map<std::string, Group, std::less<>> groups_;
};

class Reader {
 public:
  explicit Reader(NameLists& names) : names_(names) {}

  // What is wrong with the line; empty: it is taken.
  std::string read(std::string_view line);

 private:
  struct Kind {
    std::string_view word;
    std::string (Reader::*read)(const Kind& kind, std::string_view line);  // of what stands behind the word
    std::size_t most = 0;
    std::vector<std::string> NameLists::*list = nullptr;
  };
  static const std::array<Kind, 4> kKinds;

  std::string readListed(const Kind& kind, std::string_view line);
  std::string readParameter(const Kind& kind, std::string_view line);
  std::string readValue(const Kind& kind, std::string_view line);

  std::string takePath(std::string_view& line, std::string& path, Groups::Group& group);
  std::string whyNotCalled(std::string_view name, const std::string& what) const;
  const Groups& groups() { return groups_ ? *groups_ : groups_.emplace(); }

  NameLists& names_;
  std::optional<Groups> groups_;  // from the first parameter on
  std::set<std::pair<std::string_view, std::size_t>> seen_;
};

const std::array<Reader::Kind, 4> Reader::kKinds{{
    {"waveform", &Reader::readListed, 1024, &NameLists::waveforms},
    {"arpeggio", &Reader::readListed, 256, &NameLists::arpeggios},
    {"parameter", &Reader::readParameter},
    {"value", &Reader::readValue},
}};

std::string Reader::read(std::string_view line) {
  const std::string_view word = takeWord(line);
  const auto* const kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& one) { return one.word == word; });
  if (kind == kKinds.end())
    return fmt::format(
        "\"{}\": expected waveform or arpeggio, a number and a name, parameter, a path and a name, or "
        "value, a path, a number and a name",
        escape(word));
  return (this->*kind->read)(*kind, line);
}

std::string Reader::readListed(const Kind& kind, std::string_view line) {
  const std::string_view digits = takeWord(line);
  const std::optional<std::size_t> number = numberIn(digits);
  if (!number || *number < 1 || *number > kind.most)
    return fmt::format("\"{}\": expected a number from 1 to {}", escape(digits), kind.most);
  if (!seen_.emplace(kind.word, *number).second) return fmt::format("{} {} occurs twice", kind.word, *number);
  if (std::string why = whyNoName(line); !why.empty()) return why;
  std::vector<std::string>& list = names_.*kind.list;
  if (list.size() < *number) list.resize(*number);
  list[*number - 1] = line;
  return {};
}

std::string Reader::takePath(std::string_view& line, std::string& path, Groups::Group& group) {
  path = takeWord(line);
  const std::optional<IndexedPath> indexed = splitParameterPath(path);
  const std::string_view wanted = indexed ? indexed->group : std::string_view(path);
  const Groups::Group* const found = groups().find(wanted);
  if (found == nullptr) {
    const std::string meant = nearest(wanted, groups().paths());
    const Groups::Group* const near = meant.empty() ? nullptr : groups().find(meant);
    const std::size_t index = near == nullptr || !indexed ? 0 : std::min(indexed->index.value_or(0), near->count - 1);
    return fmt::format("\"{}\": expected the path of a parameter, such as voice.common[3]{}", escape(path),
                       near == nullptr ? "" : fmt::format(": did you mean {}[{}]?", meant, index));
  }
  if (!indexed || indexed->index.value_or(found->count) >= found->count)
    return fmt::format("\"{}\": expected {}[0] to {}[{}]", escape(path), wanted, wanted, found->count - 1);
  group = *found;
  return {};
}

// As a word on the command line a name stands where a path or a number could, and before an operator.
std::string Reader::whyNotCalled(std::string_view name, const std::string& what) const {
  if (name.empty()) return fmt::format("expected a name behind {}", what);
  if (name.front() == ' ' || name.back() == ' ') return "the name has a blank at an end";
  if (looksLikeNumber(name)) return fmt::format("\"{}\": a number is no name", escape(name));
  return whyNoName(name);
}

std::string Reader::readParameter(const Kind& /*kind*/, std::string_view line) {
  std::string path;
  Groups::Group group{};
  if (std::string why = takePath(line, path, group); !why.empty()) return why;
  if (std::string why = whyNotCalled(line, path); !why.empty()) return why;
  if (line.find_first_of("=!<>") != std::string_view::npos)
    return fmt::format("\"{}\": the name of a parameter has none of = ! < >", line);
  const std::optional<IndexedPath> indexed = splitParameterPath(line);
  if (indexed && groups().find(indexed->group) != nullptr) return fmt::format("\"{}\": a path is no name", line);
  if (!names_.parameters.nameParameter(path, std::string(line))) return fmt::format("parameter {} occurs twice", path);
  return {};
}

std::string Reader::readValue(const Kind& /*kind*/, std::string_view line) {
  std::string path;
  Groups::Group group{};
  if (std::string why = takePath(line, path, group); !why.empty()) return why;
  const std::string_view digits = takeWord(line);
  const std::optional<std::size_t> value = numberIn(digits);
  if (!value || *value > group.most)
    return fmt::format("\"{}\": expected a number from 0 to {}", escape(digits), group.most);
  if (std::string why = whyNotCalled(line, fmt::format("{} {}", path, *value)); !why.empty()) return why;
  if (!names_.parameters.nameValue(path, std::int64_t(*value), std::string(line)))
    return fmt::format("value {} {} occurs twice", path, *value);
  return {};
}

}  // namespace

std::string parseNames(std::string_view text, NameLists& names) {
  names = {};
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  Reader reader(names);
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#') continue;
    if (const std::string error = reader.read(line); !error.empty()) return fmt::format("line {}: {}", number, error);
  }
  return {};
}

std::string giveNames(NameLists names, EditorJobTools& tools) {
  std::string error = tools.setWaveNames(std::move(names.waveforms));
  return error.empty() ? tools.setArpeggioNames(std::move(names.arpeggios)) : error;
}

}  // namespace Editor
