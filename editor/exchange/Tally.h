#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// What a run of messages came to. Contents count for what is stored and removed, messages for everything else: a
// refused trigger that stored some counts as refused, and with each of those.
class Tally {
 public:
  void add(const Record& record);
  // A message that was answered, but whose answer could not be passed on.
  void addRefused() { ++messages_[Outcome::refused]; }

  // "2 stored, 1 removed, 24 accepted"; "nothing received".
  std::string words() const;

 private:
  std::uint64_t stored_ = 0;
  std::uint64_t removed_ = 0;
  std::map<Outcome, std::uint64_t> messages_;
};

}  // namespace Editor
