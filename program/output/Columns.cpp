#include "output/Columns.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <numeric>

namespace Editor {

namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kBetween = 2;

// The width of each column when the cells stand in `rows` rows.
std::vector<std::size_t> columnWidths(const std::vector<std::size_t>& cells, std::size_t rows) {
  std::vector<std::size_t> columns((cells.size() + rows - 1) / rows);
  for (std::size_t i = 0; i < cells.size(); ++i) columns[i / rows] = std::max(columns[i / rows], cells[i]);
  return columns;
}

std::size_t totalWidth(const std::vector<std::size_t>& columns) {
  return std::accumulate(columns.begin(), columns.end(), kIndent + kBetween * (columns.size() - 1));
}

}  // namespace

std::size_t terminalWidth(int descriptor) {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  const char* const columns = std::getenv("COLUMNS");
  const std::string_view text = columns == nullptr ? "" : columns;
  std::size_t width = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
  return error == std::errc() && end == text.data() + text.size() && width > 0 ? width : kUsual;
}

std::size_t displayWidth(std::string_view text) {
  const auto beginsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  return std::size_t(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::vector<std::string> inColumns(const std::vector<std::string>& cells, std::size_t width) {
  if (cells.empty()) return {};
  std::vector<std::size_t> widths;
  widths.reserve(cells.size());
  for (const std::string& cell : cells) widths.push_back(displayWidth(cell));
  std::size_t rows = 1;
  while (rows < cells.size() && totalWidth(columnWidths(widths, rows)) > width) ++rows;
  const std::vector<std::size_t> columns = columnWidths(widths, rows);
  std::vector<std::string> lines(rows, std::string(kIndent, ' '));
  for (std::size_t i = 0; i < cells.size(); ++i) {
    std::string& line = lines[i % rows];
    line += cells[i];
    if (i + rows < cells.size()) line.append(columns[i / rows] - widths[i] + kBetween, ' ');
  }
  return lines;
}

std::vector<std::string> wrap(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (lines.empty() || displayWidth(lines.back()) + 1 + displayWidth(word) > width)
      lines.emplace_back(word);
    else
      lines.back().append(1, ' ').append(word);
  }
  return lines;
}

}  // namespace Editor
