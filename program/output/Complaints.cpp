#include "output/Complaints.h"

#include <fmt/format.h>

namespace Editor {

void Complaints::finish() {
  for (const auto& [kind, count] : counts_)
    if (count > kMostAlike) console_.problem(fmt::format("and {} more: {}", count - kMostAlike, kind));
  counts_.clear();
}

}  // namespace Editor
