// The verb contents: what the library holds.

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "contents/Fingerprint.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/Columns.h"
#include "targets/Inventory.h"
#include "targets/InventoryJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

constexpr const char* kFavourite = "*";  // in a grid

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

  void print(const Inventory& found, const EmbeddedEditor& editor) {
    for (const Inventory::Entry& entry : found.entries) add(entry);
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
  void add(const Inventory::Entry& entry) {
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
std::string countOf(const Inventory& found) {
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
  const std::uint64_t stored = countEntries([](const Inventory::Entry& entry) { return entry.isStored(); });
  if (stored > 0) counts.push_back(counted(stored, "content"));
  if (const std::uint64_t buffers = countLive(Target::Kind::editBuffer); buffers > 0)
    counts.push_back(counted(buffers, "edit buffer"));
  if (countLive(Target::Kind::system) > 0) counts.emplace_back("the system settings");
  if (countLive(Target::Kind::additional) > 0) counts.emplace_back("the additional parameters");
  if (counts.empty()) return "nothing stored";
  const std::string last = counts.back();
  counts.pop_back();
  const std::uint64_t damaged =
      found.damaged.size() + countEntries([](const Inventory::Entry& one) { return one.isDamaged; });
  return fmt::format("{}{}{} stored{}", fmt::join(counts, ", "), counts.empty() ? "" : " and ", last,
                     damaged == 0 ? "" : fmt::format(" ({} damaged)", damaged));
}

}  // namespace

void contents(const Words& words, const ContentsOptions& options, Program& program) {
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(words)) asked.push_back(parseTargets(word));
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  const Inventory found = inventoryOf(*editor, asked);
  if (options.json) {
    for (const Inventory::Entry& entry : found.entries) program.console.line(jsonLine(toJson(entry)));
  } else {
    const bool isGrid = options.grid || (!options.lines && ::isatty(STDOUT_FILENO) != 0);
    Listing(program.console, isGrid).print(found, *editor);
  }
  for (const Inventory::Entry& entry : found.entries)
    if (entry.isDamaged) program.tellDamaged(nameOf(entry.id));
  for (const Target& live : found.damaged) program.leaveOutDamaged(live.name);
  program.console.note(countOf(found) + (asked.empty() ? "" : " there"));
}

}  // namespace Editor
