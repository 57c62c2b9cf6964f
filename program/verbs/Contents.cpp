// The verb contents: what the library holds.

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "contents/Fingerprint.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/Latin1.h"
#include "models/ModelJson.h"
#include "output/Columns.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

struct Entry {
  ContentId id;
  std::optional<Library::Content> content;  // nothing: only a favourite flag, or it is damaged
  bool isDamaged = false;
  Library::Flag favourite = 0;  // nothing: the flag is damaged

  bool isStored() const { return content || isDamaged; }
};

constexpr const char* kFavourite = "*";  // in a grid

// What is asked for: everything, unless words say what.
class Selection {
 public:
  explicit Selection(const Words& words) : isAll_(words.empty()) {
    for (const std::string& word : joinAddresses(words))
      for (const Target& target : parseTargets(word).list)
        if (target.kind == Target::Kind::content)
          contents_.insert(target.content);
        else
          live_.insert(target.name);
  }

  bool isAll() const { return isAll_; }
  bool has(ContentId id) const { return isAll_ || contents_.contains(id); }
  bool has(const Target& live) const { return isAll_ || live_.contains(live.name); }

 private:
  bool isAll_;
  std::set<ContentId> contents_;
  std::set<std::string> live_;
};

struct Found {
  std::vector<Entry> entries;
  std::vector<Target> live;     // edit buffers, system and additional that were ever stored
  std::vector<Target> damaged;  // those of them that cannot be read
};

Found find(EmbeddedEditor& editor, const Selection& selection) {
  Library& library = editor.library();
  std::map<ContentId, Entry> entries;
  Found found;
  const EmbeddedEditor::View oneState(editor);
  for (const ContentId id : library.contents()) {
    if (!selection.has(id)) continue;
    try {
      entries[id] = {id, library.content(id)};
    } catch (const LibraryError& error) {
      if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
      entries[id] = {id, {}, true};
    }
  }
  for (const auto& [id, flag] : library.favourites())
    if (selection.has(id)) entries[id].id = id;
  found.entries.reserve(entries.size());
  for (auto& [id, entry] : entries) {
    entry.favourite = library.flag(id);
    found.entries.push_back(std::move(entry));
  }
  for (Target& target : storedLive(editor))
    if (selection.has(target)) {
      // Of the voice of a part no more than the name is told: it may be whole where its multi is not.
      const bool isBuffer = target.kind == Target::Kind::editBuffer;
      if ((isBuffer ? editor.tools().ownDamage(target.buffer, target.part) : damageOf(editor.tools(), target)).empty())
        found.live.push_back(std::move(target));
      else
        found.damaged.push_back(std::move(target));
    }
  return found;
}

std::string toJsonLine(const Entry& entry) {
  nlohmann::ordered_json json{{"content", nameOf(entry.id)},
                              {"type", entry.id.type},
                              {"number", entry.id.number},
                              {"stored", entry.isStored()}};
  if (entry.isDamaged) json["damaged"] = true;
  if (entry.content) {
    const Fingerprint print = fingerprintOf(entry.id, entry.content->bytes);
    json["name"] = latin1ToUtf8(entry.content->name);
    json["bytes"] = entry.content->bytes.size();
    json["opaque"] = print.isOpaque;
    json["hash"] = print.hash;
  }
  json["favourite"] = entry.favourite ? nlohmann::ordered_json(*entry.favourite) : nlohmann::ordered_json();
  return jsonLine(json);
}

// The name that an edit buffer bears.
std::string bufferName(const Target& live, const EmbeddedEditor& editor) {
  const bool isBuffer = live.kind == Target::Kind::editBuffer;
  return isBuffer ? showName(nameOf(editor.tools().live(live.buffer, live.part))) : "";
}

// What `name` has behind its bank; all of it when it has a bank to itself.
std::string behind(const std::string& bank, const std::string& name) {
  return name == bank ? name : name.substr(bank.size() + 1);
}

// Bank by bank, in one of two forms. Flags of empty slots, of which there may be hundreds, share a line a bank.
class Listing {
 public:
  Listing(Console& console, bool isGrid) : console_(console), isGrid_(isGrid) {}

  void print(const Found& found, const EmbeddedEditor& editor) {
    for (const Entry& entry : found.entries) add(entry);
    endBank();
    for (const Target& live : found.live) {
      beginBank(live.kind == Target::Kind::editBuffer ? "edit buffers" : "system settings");
      const std::string name = bufferName(live, editor);
      if (name.empty())
        addCell(live.name, live.name);
      else
        addCell(fmt::format("{} {}", live.name, name), fmt::format("{:<24} {}", live.name, name));
    }
    endBank();
    if (isGrid_ && hasFavourites_) console_.note(fmt::format("{} is a favourite", kFavourite));
  }

 private:
  void add(const Entry& entry) {
    const std::string name = nameOf(entry.id);
    beginBank(bankOfName(name));
    if (entry.isDamaged)
      return addCell(fmt::format("{:>3} (damaged)", behind(bank_, name)), fmt::format("{:<24} (damaged)", name));
    if (!entry.content) {
      if (!entry.favourite) return;  // that is told
      emptyFavourites_ += emptyFavourites_.empty() ? "" : ", ";
      emptyFavourites_ += name == bank_ ? "the only one" : behind(bank_, name);
      return;
    }
    const std::string shown = showName(entry.content->name);
    const bool isOpaque = fingerprintOf(entry.id, entry.content->bytes).isOpaque;
    std::string cell = fmt::format("{:>3} {}", behind(bank_, name), shown);
    std::string line = fmt::format("{:<24} {}", name, shown);
    if (entry.favourite.value_or(0) != 0) {
      cell += fmt::format(" {}", kFavourite);
      hasFavourites_ = true;
      line += "  *favourite";
    }
    if (isOpaque) {
      cell += " (opaque)";
      line += fmt::format("  opaque, {} bytes", entry.content->bytes.size());
    }
    addCell(std::move(cell), line);
  }

  void beginBank(const std::string& bank) {
    if (bank == bank_) return;
    endBank();
    bank_ = bank;
    console_.line(bank + ":");
  }

  void addCell(std::string cell, const std::string& line) {
    if (isGrid_)
      cells_.push_back(std::move(cell));
    else
      console_.line("  " + line);
  }

  void endBank() {
    const std::size_t width = isGrid_ ? terminalWidth() : std::string::npos;
    for (const std::string& line : inColumns(cells_, width)) console_.line(line);
    cells_.clear();
    if (emptyFavourites_.empty()) return;
    std::string indent = "  ";
    for (const std::string& line : wrap("favourites that hold nothing: " + emptyFavourites_, width - 4)) {
      console_.line(indent + line);
      indent = "    ";
    }
    emptyFavourites_.clear();
  }

  Console& console_;
  const bool isGrid_;
  bool hasFavourites_ = false;
  std::string bank_;
  std::string emptyFavourites_;
  std::vector<std::string> cells_;
};

// "3 contents, 2 edit buffers and the system settings stored"
std::string countOf(const Found& found) {
  const auto countLive = [&](Target::Kind kind) {
    std::uint64_t count = 0;
    for (const std::vector<Target>* const group : {&found.live, &found.damaged})
      for (const Target& live : *group) count += live.kind == kind ? 1 : 0;
    return count;
  };
  const auto countEntries = [&](auto isOne) {
    return std::uint64_t(std::count_if(found.entries.begin(), found.entries.end(), isOne));
  };
  std::vector<std::string> counts;
  const std::uint64_t stored = countEntries([](const Entry& entry) { return entry.isStored(); });
  if (stored > 0) counts.push_back(counted(stored, "content"));
  if (const std::uint64_t buffers = countLive(Target::Kind::editBuffer); buffers > 0)
    counts.push_back(counted(buffers, "edit buffer"));
  if (countLive(Target::Kind::system) > 0) counts.emplace_back("the system settings");
  if (countLive(Target::Kind::additional) > 0) counts.emplace_back("the additional parameters");
  if (counts.empty()) return "nothing stored";
  const std::string last = counts.back();
  counts.pop_back();
  const std::uint64_t damaged = found.damaged.size() + countEntries([](const Entry& one) { return one.isDamaged; });
  return fmt::format("{}{}{} stored{}", fmt::join(counts, ", "), counts.empty() ? "" : " and ", last,
                     damaged == 0 ? "" : fmt::format(" ({} damaged)", damaged));
}

}  // namespace

void contents(const Words& words, const ContentsOptions& options, Program& program) {
  const Selection selection(words);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  const Found found = find(*editor, selection);
  if (options.json) {
    for (const Entry& entry : found.entries) program.console.line(toJsonLine(entry));
  } else {
    const bool isGrid = options.grid || (!options.lines && ::isatty(STDOUT_FILENO) != 0);
    Listing(program.console, isGrid).print(found, *editor);
  }
  for (const Entry& entry : found.entries)
    if (entry.isDamaged) program.tellDamaged(nameOf(entry.id));
  for (const Target& live : found.damaged) program.leaveOutDamaged(live.name);
  program.console.note(countOf(found) + (selection.isAll() ? "" : " there"));
}

}  // namespace Editor
