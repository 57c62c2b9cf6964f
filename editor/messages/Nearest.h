#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// How many characters have to be inserted, left out, replaced or swapped with their neighbour to make one word of the
// other (the optimal string alignment distance).
std::size_t editDistance(std::string_view a, std::string_view b);

// What someone who wrote `word` may have meant: the nearest of the candidates, of several the first. Empty when none
// is so near that it may be a slip: one for each three characters, and two at most.
std::string nearest(std::string_view word, const std::vector<std::string>& candidates);

// ": did you mean receive?"; empty when nothing is near.
std::string didYouMean(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace Editor
