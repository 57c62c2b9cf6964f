#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace Editor {

// Each line of a transcript ends with "hash", the 64-bit FNV-1a hash, as 16 hex digits, of the line as it is printed
// without that, going on from the hash of the line before: so an altered line shows, and one that is missing before
// another. It keeps out accidents, and nobody who means to deceive. A first line that says "sealed" has all of them
// sealed.
class Seal {
 public:
  // The text of the next line, without its end.
  std::string close(nlohmann::ordered_json line);

  // Takes the seal off the next line. What is wrong with it, in words; "": nothing, or there is none and need be none.
  std::string open(nlohmann::ordered_json& line);

 private:
  std::uint64_t last_ = 0;
  bool areAllSealed_ = false;
};

}  // namespace Editor
