#include "output/Complaints.h"

#include <fmt/format.h>

#include <utility>

#include "midi/Counted.h"

namespace Editor {

bool Complaints::isTold(Counts& counts, std::string_view kind) {
  auto count = counts.find(kind);
  if (count == counts.end()) count = counts.emplace(kind, 0).first;
  return ++count->second <= kMostAlike;
}

void Complaints::finish(std::string_view where) {
  const auto more = [&](std::uint64_t count, const std::string& kind) {
    return fmt::format("and {} more: {}{}", count - kMostAlike, where, kind);
  };
  for (const auto& [kind, count] : std::exchange(problems_, {}))
    if (count > kMostAlike) console_.problem(more(count, kind));
  for (const auto& [kind, count] : std::exchange(notes_, {}))
    if (count > kMostAlike) console_.note(more(count, kind));
}

}  // namespace Editor
