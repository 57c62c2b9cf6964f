#include "messages/Nearest.h"

#include <algorithm>
#include <array>

namespace Editor {

std::size_t editDistance(std::string_view a, std::string_view b) {
  // Row i has the distances of the first i characters of a to all beginnings of b; a swap looks back two rows.
  std::array<std::vector<std::size_t>, 3> rows;
  for (std::vector<std::size_t>& row : rows) row.resize(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) rows[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t>& row = rows[i % 3];
    const std::vector<std::size_t>& above = rows[(i + 2) % 3];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + std::size_t(a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], rows[(i + 1) % 3][j - 2] + 1);
    }
  }
  return rows[a.size() % 3][b.size()];
}

std::string nearest(std::string_view word, const std::vector<std::string>& candidates) {
  constexpr std::size_t kMostSlips = 2;
  std::size_t best = std::min(word.size() / 3, kMostSlips) + 1;
  std::string found;
  for (const std::string& candidate : candidates) {
    const std::size_t longer = std::max(candidate.size(), word.size());
    if (longer - std::min(candidate.size(), word.size()) >= best) continue;
    const std::size_t distance = editDistance(word, candidate);
    if (distance >= best || distance >= longer) continue;
    best = distance;
    found = candidate;
  }
  return found;
}

std::string didYouMean(std::string_view word, const std::vector<std::string>& candidates) {
  const std::string meant = nearest(word, candidates);
  return meant.empty() ? "" : ": did you mean " + meant + "?";
}

}  // namespace Editor
