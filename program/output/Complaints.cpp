#include "output/Complaints.h"

#include <fmt/format.h>

#include <utility>

namespace Editor {

void Complaints::finish() {
  for (const auto& [kind, count] : std::exchange(problems_, {}))
    if (count > kMostAlike) console_.problem(fmt::format("and {} more: {}", count - kMostAlike, kind));
  for (const auto& [kind, count] : std::exchange(notes_, {}))
    if (count > kMostAlike) console_.note(fmt::format("and {} more: {}", count - kMostAlike, kind));
}

}  // namespace Editor
