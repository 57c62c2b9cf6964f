#include "input/RenameTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "ExitCode.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/HexText.h"
#include "midi/MidiFile.h"
#include "targets/TargetChanges.h"

namespace Editor {

namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// `text` has no blanks at its ends, before and after.
std::string takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text = withoutBlanks(text.substr(word.size()));
  return std::string(word);
}

// One word, or three hex bytes.
std::string takeAddress(std::string_view& line) {
  std::string_view rest = line;
  const std::vector<std::string> joined = joinAddresses({takeWord(rest), takeWord(rest), takeWord(rest)});
  if (joined.size() > 1) return takeWord(line);
  line = rest;
  return joined.front();
}

std::string parseLine(std::string_view line, RenameRow& row) {
  try {
    row.target = parseTarget(takeAddress(line));
    requireNamed(row.target);
  } catch (const TargetError& error) {
    return error.what();
  }
  if (line.empty()) return fmt::format("expected a name behind {}", row.target.name);
  if (line.size() > 1 && line.front() == '"' && line.back() == '"') return "a name stands here without quotes";
  row.name = line;
  return {};
}

}  // namespace

std::string parseRenameTable(std::string_view text, std::vector<RenameRow>& rows) {
  rows.clear();
  std::set<std::string> seen;
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view raw = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(raw.size() + 1, text.size()));
    const std::string_view line =
        withoutBlanks(!raw.empty() && raw.back() == '\r' ? raw.substr(0, raw.size() - 1) : raw);
    if (line.empty() || line.front() == '#') continue;
    RenameRow row{number, {}, {}};
    std::string error = parseLine(line, row);
    if (error.empty() && !seen.insert(placeNameOf(row.target)).second)
      error = fmt::format("{} occurs twice", row.target.name);
    if (!error.empty()) return fmt::format("line {}: {}", number, error);
    rows.push_back(std::move(row));
  }
  return {};
}

std::vector<RenameRow> loadRenameTable(const std::string& file) {
  std::string error;
  std::vector<RenameRow> rows;
  if (const auto bytes = loadBytes(file, error))
    error = parseRenameTable({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, rows);
  if (!error.empty()) throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(file), error));
  return rows;
}

}  // namespace Editor
