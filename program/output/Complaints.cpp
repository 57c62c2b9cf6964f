#include "output/Complaints.h"

#include <fmt/format.h>

namespace Editor {

void Complaints::finish(std::string_view where) {
  for (const auto& [kind, count] : counts_)
    if (count > kMostAlike) console_.problem(fmt::format("and {} more: {}{}", count - kMostAlike, where, kind));
  counts_.clear();
}

}  // namespace Editor
