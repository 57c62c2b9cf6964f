// The verb contents: what the library holds.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "contents/ContentFormat.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/Latin1.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

struct Entry {
  ContentId id;
  std::optional<Library::Content> content;  // nothing: only a favourite flag
  std::uint8_t favourite = 0;
};

// The part of a readable name that its bank shares: "voice:user1:6" is number 6 of "voice:user1"; "drum:gm" has a bank
// to itself.
std::string bankOfName(const std::string& name) {
  const std::size_t colon = name.rfind(':');
  const bool isNumbered = name.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  return isNumbered ? name.substr(0, colon) : name;
}

bool isOpaque(const Entry& entry) {
  ModelSet models = emptySetFor(entry.id);
  return haveSameShape(models, ModelSet()) || decodeContent(entry.content->bytes, models).has_value();
}

std::vector<Entry> entriesOf(Library& library) {
  std::map<ContentId, Entry> entries;
  const Library::Transaction oneState(library, Library::Transaction::Access::Read);
  for (const ContentId id : library.contents()) entries[id] = {id, library.content(id), 0};
  for (const auto& [id, flag] : library.favourites()) {
    entries[id].id = id;
    entries[id].favourite = flag;
  }
  std::vector<Entry> list;
  list.reserve(entries.size());
  for (auto& [id, entry] : entries) list.push_back(std::move(entry));
  return list;
}

std::string toJsonLine(const Entry& entry) {
  nlohmann::ordered_json json{{"content", nameOf(entry.id)},
                              {"type", entry.id.type},
                              {"number", entry.id.number},
                              {"stored", entry.content.has_value()}};
  if (entry.content) {
    json["name"] = latin1ToUtf8(entry.content->name);
    json["bytes"] = entry.content->bytes.size();
    json["opaque"] = isOpaque(entry);
  }
  json["favourite"] = entry.favourite;
  return json.dump(-1, ' ', true);  // a terminal would obey U+0080 to U+009F
}

// The contents bank by bank, a line each; flags of empty slots, of which there may be hundreds, share one line a bank.
void printByBank(const std::vector<Entry>& entries, Console& console) {
  std::string bank;
  std::string emptyFavourites;
  const auto endBank = [&] {
    if (!emptyFavourites.empty()) console.line("  favourites that hold nothing: " + emptyFavourites);
    emptyFavourites.clear();
  };
  for (const Entry& entry : entries) {
    const std::string name = nameOf(entry.id);
    if (bankOfName(name) != bank) {
      endBank();
      bank = bankOfName(name);
      console.line(bank + ":");
    }
    if (!entry.content) {
      if (!emptyFavourites.empty()) emptyFavourites += ", ";
      emptyFavourites += name == bank ? "the only one" : name.substr(bank.size() + 1);
      continue;
    }
    std::string line = fmt::format("  {:<24} {}", name, showName(entry.content->name));
    if (entry.favourite != 0) line += "  *favourite";
    if (isOpaque(entry)) line += fmt::format("  opaque, {} bytes", entry.content->bytes.size());
    console.line(line);
  }
  endBank();
}

}  // namespace

void contents(bool json, Program& program) {
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  const std::vector<Entry> entries = entriesOf(editor->library());
  if (json) {
    for (const Entry& entry : entries) program.console.line(toJsonLine(entry));
  } else {
    printByBank(entries, program.console);
  }
  const auto stored =
      std::count_if(entries.begin(), entries.end(), [](const Entry& entry) { return entry.content.has_value(); });
  program.console.note(counted(std::uint64_t(stored), "content") + " stored");
}

}  // namespace Editor
