#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "targets/ContentKind.h"

namespace Editor {

// Places of contents that share a bank, "voice:user1": they follow each other. One without others is a bank of itself.
struct Bank {
  std::string name;
  ContentKind kind;
  std::string first;  // of the places
  std::string last;
  std::size_t places;
};

// All that there are, in the order of a backup: of contents that a message carries.
const std::vector<Bank>& allBanks();

nlohmann::ordered_json toJson(const Bank& bank);

}  // namespace Editor
