#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace Editor {

// Each line of a transcript ends with "hash", the 64-bit FNV-1a hash, as 16 hex digits, of the line as it stands
// without that, going on from the hash of the line before: so every altered byte shows, and a line that is missing
// before another. It keeps out accidents, and nobody who means to deceive. A first line that says "sealed" has all of
// them sealed.
class Seal {
 public:
  // The text of the next line, without its end.
  std::string close(const nlohmann::ordered_json& line);

  // Takes the seal off the next line, which has that text. What is wrong with it, in words; "": nothing, or there is
  // none and need be none.
  std::string open(std::string_view text, nlohmann::ordered_json& line);

 private:
  std::uint64_t last_ = 0;
  bool areAllSealed_ = false;
};

}  // namespace Editor
