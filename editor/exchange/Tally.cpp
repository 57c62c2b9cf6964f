#include "exchange/Tally.h"

#include <fmt/format.h>

namespace Editor {

void Tally::add(const Record& record) {
  stored_ += record.contents.size() - record.removed.size();
  removed_ += record.removed.size();
  if (record.outcome != Outcome::stored) ++messages_[record.outcome];
}

std::string Tally::words() const {
  std::string words;
  const auto say = [&words](std::uint64_t count, const char* what) {
    if (count > 0) words += fmt::format("{}{} {}", words.empty() ? "" : ", ", count, what);
  };
  say(stored_, "stored");
  say(removed_, "removed");
  for (const Outcome outcome : {Outcome::completed, Outcome::answered, Outcome::accepted, Outcome::refused,
                                Outcome::nothingToSend, Outcome::ignored, Outcome::notOurs})
    if (const auto found = messages_.find(outcome); found != messages_.end()) say(found->second, wordOf(outcome));
  return words.empty() ? "nothing received" : words;
}

}  // namespace Editor
