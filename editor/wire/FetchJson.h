#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "history/History.h"
#include "wire/Fetch.h"

namespace Editor {

// What became of a unit that came, or did not, in the end.
enum class FetchedAs : std::uint8_t {
  stored,  // in the library
  kept,    // in a file
  empty,
  lost,
};
const char* wordOf(FetchedAs as);

// The same as it is printed. `isRemoved`: what is empty there is no longer here either. `with`: changes of other places
// that came with it.
nlohmann::ordered_json toJson(const Fetched& fetched, FetchedAs as, bool isRemoved,
                              const std::vector<PlaceChange>& with = {});

}  // namespace Editor
