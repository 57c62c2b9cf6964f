#pragma once

#include <string>
#include <vector>

#include "compare/Compare.h"
#include "names/ParameterNames.h"

namespace Editor {

// What two libraries do not have in common, as lines for people.

// "\"Old\" | \"New\"", and behind it the name inside the models where that is another one.
std::string namesOf(const Difference& difference);
// What differs in a thing that both have, its name first, a line each: "voice.common[3]: 1 | 2", "favourite: 0 | 1".
std::vector<std::string> detailsOf(const Difference& difference, const ParameterNames& names = {});
// A content that only one has: "\"Piano\", a favourite"; with what else is said of its place.
std::string contentOf(const Difference& difference);
// What that says behind the name.
std::string flagsOf(const Difference& difference);
// "; the empty place is a favourite", of the other one's, where that is another flag; else empty.
std::string emptyPlaceOf(const Difference& difference);

}  // namespace Editor
