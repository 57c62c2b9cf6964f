#include "messages/AddressNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "midi/Hex.h"

namespace Editor {

namespace {

// Words and name of a block type. {number} is the low byte and {index} the running middle byte, both counted from 1,
// {letter} and {capital} the latter as a letter, {first} to {last} the sixteen names that a name block carries.
struct Naming {
  std::uint8_t type;
  const char* words;
  const char* name;  // null: none
};

constexpr std::array kNamings{
    // Contents: a header with this name, and a footer.
    Naming{1, "normal voice preset {index}, {number:03}", "voice:preset{index}:{number}"},
    Naming{2, "normal voice GM, {number:03}", "voice:gm:{number}"},
    Naming{3, "normal voice user {index}, {number:03}", "voice:user{index}:{number}"},
    Naming{4, "normal voice edit buffer", "voice:edit"},
    Naming{5, "drum voice preset, {number:03}", "drum:preset:{number}"},
    Naming{6, "drum voice user, {number:03}", "drum:user:{number}"},
    Naming{7, "drum voice GM", "drum:gm"},
    Naming{8, "drum voice edit buffer", "drum:edit"},
    Naming{9, "voice of multi part {number}", "voice:part:{number}"},
    Naming{10, "mixing voice {number}", "voice:mix:{number}"},
    Naming{11, "multi edit buffer", "multi:edit"},
    Naming{12, "performance {capital}, {number:03}", "performance:{letter}:{number}"},
    Naming{13, "performance edit buffer", "performance:edit"},
    Naming{14, "master {number:03}", "master:{number}"},
    Naming{15, "master edit buffer", "master:edit"},
    Naming{16, "remote setting {number:02}", "remote:{number}"},
    Naming{17, "remote edit buffer", "remote:edit"},
    // File dumps.
    Naming{37, "file dump of voice preset{index}:{number}", "file:voice:preset{index}:{number}"},
    Naming{38, "file dump of voice gm:{number}", "file:voice:gm:{number}"},
    Naming{39, "file dump of voice user{index}:{number}", "file:voice:user{index}:{number}"},
    Naming{40, "file dump of drum preset:{number}", "file:drum:preset:{number}"},
    Naming{41, "file dump of drum user:{number}", "file:drum:user:{number}"},
    Naming{42, "file dump of drum gm", "file:drum:gm"},
    Naming{43, "file dump of voice mix:{number}", "file:voice:mix:{number}"},
    Naming{44, "file dump of multi {number}, mixing voice {index}", "file:mix:{number}:{index}"},
    Naming{45, "file dump of multi {number}", "file:multi:{number}"},
    Naming{46, "file dump of the single content", "file:single"},
    // System.
    Naming{49, "system common", "system:common"},
    Naming{50, "system audio input part", "system:audio-input"},
    Naming{51, "system audio input insertion effect A", "system:insertion-a"},
    Naming{52, "system audio input insertion effect B", "system:insertion-b"},
    Naming{53, "system master EQ", "system:master-eq"},
    Naming{54, "system master effect", "system:master-effect"},
    Naming{57, "system quick setup {index}", "system:quick-setup:{index}"},
    Naming{58, "system sequencer", "system:sequencer"},
    Naming{59, "system remote", "system:remote"},
    // Between header and footer.
    Naming{61, "normal voice common", nullptr},
    Naming{62, "normal voice reverb", nullptr},
    Naming{63, "normal voice chorus", nullptr},
    Naming{64, "normal voice insertion effect A", nullptr},
    Naming{65, "normal voice insertion effect B", nullptr},
    Naming{66, "normal voice insertion effect L", nullptr},
    Naming{67, "normal voice controllers", nullptr},
    Naming{68, "normal voice arpeggio", nullptr},
    Naming{69, "element {index} oscillator", nullptr},
    Naming{70, "element {index} filter", nullptr},
    Naming{72, "drum voice common", nullptr},
    Naming{73, "drum voice reverb", nullptr},
    Naming{74, "drum voice chorus", nullptr},
    Naming{75, "drum voice insertion effect A", nullptr},
    Naming{76, "drum voice insertion effect B", nullptr},
    Naming{77, "drum voice insertion effect L", nullptr},
    Naming{78, "drum voice controllers", nullptr},
    Naming{79, "drum voice arpeggio", nullptr},
    Naming{80, "drum key {index}", nullptr},
    Naming{82, "multi common", nullptr},
    Naming{83, "multi reverb", nullptr},
    Naming{84, "multi chorus", nullptr},
    Naming{85, "multi insertion effect A", nullptr},
    Naming{86, "multi insertion effect B", nullptr},
    Naming{87, "multi master EQ", nullptr},
    Naming{88, "multi master effect", nullptr},
    Naming{89, "multi arpeggio", nullptr},
    Naming{90, "multi part {index}", nullptr},
    Naming{91, "multi part {index} arpeggio", nullptr},
    Naming{92, "multi audio input part", nullptr},
    Naming{94, "performance common", nullptr},
    Naming{95, "performance reverb", nullptr},
    Naming{96, "performance chorus", nullptr},
    Naming{97, "performance insertion effect A", nullptr},
    Naming{98, "performance insertion effect B", nullptr},
    Naming{99, "performance master EQ", nullptr},
    Naming{100, "performance master effect", nullptr},
    Naming{101, "performance arpeggio", nullptr},
    Naming{102, "performance part {index}", nullptr},
    Naming{103, "performance part {index} arpeggio", nullptr},
    Naming{104, "performance audio input part", nullptr},
    Naming{106, "master common", nullptr},
    Naming{107, "master zone {index}", nullptr},
    Naming{109, "remote common", nullptr},
    Naming{110, "remote controller {index}", nullptr},
    // The editor's own.
    Naming{112, "waveform names {first} to {last}", "names:waveforms:{number}"},
    Naming{113, "arpeggio names {first} to {last}", "names:arpeggios:{number}"},
    Naming{114, "multi names", "names:multis"},
    Naming{116, "screen capture", "screen"},
    Naming{118, "favourites of preset bank {index}", "favourites:voice:preset{index}"},
    Naming{119, "favourites of user bank {index}", "favourites:voice:user{index}"},
    Naming{120, "favourites of GM bank", "favourites:voice:gm"},
    Naming{121, "favourites of preset drum bank", "favourites:drum:preset"},
    Naming{122, "favourites of user drum bank", "favourites:drum:user"},
    Naming{123, "favourites of GM drum voice", "favourites:drum:gm"},
};
// The two write triggers share a type: told apart by the middle byte.
constexpr std::uint8_t kTriggerType = 47;
constexpr std::array kTriggers{
    Naming{kTriggerType, "write trigger", "write"},
    Naming{kTriggerType, "write trigger that removes all mixing voices first", "write:no-mixing-voices"},
};

// Their blocks come in any length; a screen leaves in messages of several.
constexpr unsigned kFileDumpExecuter = 60;
constexpr unsigned kScreenExecuter = 61;

const Naming& namingOf(std::uint8_t type, std::uint8_t mid) {
  if (type == kTriggerType) return kTriggers[mid];
  return *std::find_if(kNamings.begin(), kNamings.end(), [&](const Naming& naming) { return naming.type == type; });
}

std::string fill(const char* pattern, unsigned running, unsigned lo) {
  return fmt::format(fmt::runtime(pattern), fmt::arg("number", lo + 1), fmt::arg("index", running + 1),
                     fmt::arg("letter", char('a' + running)), fmt::arg("capital", char('A' + running)),
                     fmt::arg("first", 16 * lo + 1), fmt::arg("last", 16 * lo + 16));
}

// Calls visit(row) for the rows of the map, footers as headers with their own high byte. Stops at the first
// row for which visit is true, and returns whether there was one.
template <typename Visit>
bool anyRow(Visit visit) {
  for (const BDA::AddressRow& row : BDA::kParameterRows)
    if (visit(row)) return true;
  for (const BDA::AddressRow& row : BDA::kHeaderRows)
    if (visit(row) || visit(BDA::footerOf(row))) return true;
  for (const BDA::AddressRow& row : BDA::kFileDumpRows)
    if (visit(row)) return true;
  for (const BDA::AddressRow& row : BDA::kFavoriteRows)
    if (visit(row)) return true;
  return false;
}

bool holds(BDA::Run run, std::uint8_t byte) { return byte >= run.first && byte <= run.last; }

// A footer's type, as that of the header that it closes.
std::uint8_t headerTypeOf(const BDA::AddressRow& row) {
  return row.hi == BDA::kFooterHi && row.type > 17 ? std::uint8_t(row.type - 18) : row.type;
}

// ---- Names back to addresses ----

// A pattern's running parts as they stand in a name, counted from 1.
struct Running {
  unsigned index = 1;
  unsigned number = 1;
};

bool takeNumber(std::string_view& text, unsigned& value) {
  std::size_t digits = 0;
  value = 0;
  while (digits < text.size() && digits < 4 && std::isdigit(static_cast<unsigned char>(text[digits])) != 0)
    value = 10 * value + unsigned(text[digits++] - '0');
  text.remove_prefix(digits);
  return digits > 0;
}

// Nothing when the name has another shape.
std::optional<Running> match(std::string_view pattern, std::string_view text) {
  Running running;
  while (!pattern.empty()) {
    if (pattern.front() != '{') {
      if (text.empty() || text.front() != pattern.front()) return std::nullopt;
      pattern.remove_prefix(1);
      text.remove_prefix(1);
      continue;
    }
    const std::string_view what = pattern.substr(1, pattern.find('}') - 1);
    pattern.remove_prefix(what.size() + 2);
    if (what == "letter") {
      if (text.empty() || text.front() < 'a' || text.front() > 'z') return std::nullopt;
      running.index = unsigned(text.front() - 'a') + 1;
      text.remove_prefix(1);
    } else if (!takeNumber(text, what == "index" ? running.index : running.number)) {
      return std::nullopt;
    }
  }
  if (!text.empty()) return std::nullopt;
  return running;
}

// "voice:user1..3:1..128"
std::string shapeOf(const char* pattern, const BDA::AddressRow& row) {
  const auto range = [](const std::string& first, const std::string& last) {
    return first == last ? first : first + ".." + last;
  };
  const auto replace = [](std::string& shape, std::string_view what, const std::string& with) {
    if (const std::size_t at = shape.find(what); at != std::string::npos) shape.replace(at, what.size(), with);
  };
  std::string shape = pattern;
  replace(shape, "{index}", range("1", std::to_string(row.mid.size())));
  replace(shape, "{letter}", range("a", std::string(1, char('a' + row.mid.size() - 1))));
  replace(shape, "{number}", range(std::to_string(row.lo.first + 1), std::to_string(row.lo.last + 1)));
  return shape;
}

// Calls visit(row, pattern) for the rows whose blocks have names, up to the first for which it is true.
template <typename Visit>
void anyNamedRow(Visit visit) {
  anyRow([&](const BDA::AddressRow& row) {
    const char* const pattern = row.hi == BDA::kFooterHi ? nullptr : namingOf(row.type, row.mid.first).name;
    return pattern != nullptr && visit(row, pattern);
  });
}

// What the map knows of a name.
struct Search {
  std::optional<BulkAddress> found;
  std::string outOfRange;  // its shape, when only its numbers are none that exist
};

Search searchName(std::string_view name) {
  Search search;
  anyNamedRow([&](const BDA::AddressRow& row, const char* pattern) {
    const std::optional<Running> running = match(pattern, name);
    if (!running) return false;
    if (running->index < 1 || running->index > row.mid.size() || running->number < 1 ||
        running->number > row.lo.size()) {
      search.outOfRange = shapeOf(pattern, row);
      return false;
    }
    search.found =
        BulkAddress{row.hi, std::uint8_t(row.mid.first + running->index - 1), std::uint8_t(running->number - 1)};
    return true;
  });
  return search;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The shapes of the names that begin alike, of those that are taken.
std::string relativesOf(const std::string& name, const std::vector<std::string>& taken) {
  std::string relatives;
  const std::string family = name.substr(0, std::min(name.find(':'), name.size() - 1) + 1);
  anyNamedRow([&](const BDA::AddressRow& row, const char* pattern) {
    const std::string shape = shapeOf(pattern, row);
    if (!family.empty() && shape.compare(0, family.size(), family) == 0 &&
        contains(taken, fill(pattern, 0, row.lo.first)))
      relatives += (relatives.empty() ? "" : ", ") + shape;
    return false;
  });
  return relatives;
}

BulkAddress parseName(const std::string& name, const TakenNames& taken) {
  const Search search = searchName(name);
  if (search.found) return *search.found;
  const std::vector<std::string> candidates = taken();
  // What travels as a file dump only has no other name.
  if (const std::string dump = "file:" + name; contains(candidates, dump))
    throw std::invalid_argument(fmt::format("\"{}\": did you mean {}?", escape(name), dump));
  if (!search.outOfRange.empty())
    throw std::invalid_argument(fmt::format("\"{}\": expected {}", escape(name), search.outOfRange));
  const std::string question = didYouMean(name, candidates);
  if (const std::string relatives = relativesOf(name, candidates); !relatives.empty())
    throw std::invalid_argument(question.empty()
                                    ? fmt::format("\"{}\": expected one of {}", escape(name), relatives)
                                    : fmt::format("\"{}\"{} Else one of {}", escape(name), question, relatives));
  if (!question.empty()) throw std::invalid_argument(fmt::format("\"{}\"{}", escape(name), question));
  throw std::invalid_argument(
      fmt::format("\"{}\": expected three hex bytes such as 0E0A05, or a name such as voice:user1:6, drum:edit, "
                  "performance:b:18, multi:edit, master:1, remote:1, system, file:voice:user1:6",
                  escape(name)));
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return char(std::tolower(c)); });
  return lower;
}

Role roleOf(const BDA::AddressRow& row) {
  switch (BDA::List(BDA::listOf(row.hi))) {
    case BDA::List::header:
      return Role::header;
    case BDA::List::footer:
      return Role::footer;
    case BDA::List::normalVoice:
    case BDA::List::drumVoice:
    case BDA::List::multi:
    case BDA::List::performance:
    case BDA::List::master:
    case BDA::List::remote:
      return Role::part;
    case BDA::List::fileDump:
      return row.hi == BDA::kTriggerHi ? Role::trigger : Role::fileDump;
    case BDA::List::system:
    case BDA::List::editorName:
    case BDA::List::screenCap:
    case BDA::List::favorite:
      break;
  }
  return Role::alone;
}

}  // namespace

std::optional<BlockFacts> findBlock(BulkAddress address) {
  std::optional<BlockFacts> facts;
  anyRow([&](const BDA::AddressRow& row) {
    if (row.hi != address.hi || !holds(row.mid, address.mid) || !holds(row.lo, address.lo)) return false;
    facts = BlockFacts{row.type, roleOf(row), std::uint8_t(address.mid - row.mid.first), std::nullopt};
    const unsigned executer = BDA::executerOf(row, address.mid);
    const bool varies = executer == kFileDumpExecuter || executer == kScreenExecuter;
    if (!varies) facts->dataLength = BDA::kExecuterDataLength[executer];
    return true;
  });
  return facts;
}

Role roleOutsideOfMap(BulkAddress address) {
  if (address.mid != BDA::kMixingVoiceMid || (address.lo & 0xC0) != BDA::kEmptyVoice) return Role::unknown;
  if (address.hi == BDA::kHeaderHi) return Role::emptyHeader;
  return address.hi == BDA::kFooterHi ? Role::emptyFooter : Role::unknown;
}

bool isWritableFileDump(BulkAddress address) {
  constexpr std::uint8_t kWritable[] = {39, 41, 43, 44, 45, 46};
  const std::optional<BlockFacts> block = findBlock(address);
  return block && std::find(std::begin(kWritable), std::end(kWritable), block->type) != std::end(kWritable);
}

std::string formatAddress(BulkAddress address) {
  const std::array bytes{address.hi, address.mid, address.lo};
  return formatHex(bytes);
}

std::string describeAddress(BulkAddress address) {
  const bool isControl = address.hi == BDA::kHeaderHi || address.hi == BDA::kFooterHi;
  if (const Role role = roleOutsideOfMap(address); role != Role::unknown)
    return fmt::format("mixing voice {}: {} of an empty voice", (address.lo & 0x0F) + 1,
                       role == Role::emptyHeader ? "header" : "footer");
  std::string words = "unknown address";
  anyRow([&](const BDA::AddressRow& row) {
    if (row.hi != address.hi || !holds(row.mid, address.mid) || !holds(row.lo, address.lo)) return false;
    words = fill(namingOf(headerTypeOf(row), address.mid).words, address.mid - row.mid.first, address.lo);
    if (isControl) words += row.hi == BDA::kHeaderHi ? ": header" : ": footer";
    return true;
  });
  return words;
}

std::optional<std::string> nameOf(BulkAddress address) {
  if (address.hi == BDA::kFooterHi) return std::nullopt;
  const std::optional<BlockFacts> block = findBlock(address);
  if (!block) return std::nullopt;
  const char* const pattern = namingOf(block->type, address.mid).name;
  if (pattern == nullptr) return std::nullopt;
  return fill(pattern, block->running, address.lo);
}

std::string nameOf(ContentId content) {
  if (const auto header = headerOf(content)) return nameOrBytes({BDA::kHeaderHi, header->mid, header->lo});
  if (const auto dump = fileDumpOf(content)) return nameOrBytes({BDA::kFileDumpHi, dump->mid, dump->lo});
  return fmt::format("content {} of type {}", content.number, content.type);
}

std::string nameOrBytes(BulkAddress address) { return nameOf(address).value_or(formatAddress(address)); }

std::string nameAndBytes(BulkAddress address, const std::string& more) {
  const std::optional<std::string> name = nameOf(address);
  std::string inBrackets = name ? formatAddress(address) : "";
  if (!more.empty()) inBrackets += (inBrackets.empty() ? "" : ", ") + more;
  const std::string text = nameOrBytes(address);
  return inBrackets.empty() ? text : fmt::format("{} ({})", text, inBrackets);
}

std::vector<std::string> blockNames() {
  std::vector<std::string> names;
  anyNamedRow([&](const BDA::AddressRow& row, const char* pattern) {
    for (unsigned running = 0; running < row.mid.size(); ++running)
      for (unsigned lo = row.lo.first; lo <= row.lo.last; ++lo) names.push_back(fill(pattern, running, lo));
    return false;
  });
  return names;
}

std::optional<BulkAddress> findName(std::string_view name) { return searchName(lowerCase(name)).found; }

BulkAddress parseAddress(std::string_view text, const TakenNames& taken) {
  std::string plain(text);
  const bool isHex = !plain.empty() && std::all_of(plain.begin(), plain.end(), [](unsigned char c) {
    return std::isxdigit(c) != 0 || c == ' ' || c == '/';
  });
  if (!isHex) return parseName(lowerCase(text), taken);
  std::replace(plain.begin(), plain.end(), '/', ' ');
  const auto bytes = parseHex(plain);
  if (!bytes || bytes->size() != 3)
    throw std::invalid_argument(
        fmt::format("\"{}\": expected three hex bytes such as 0E0A05 or 0E 0A 05", escape(text)));
  if (std::any_of(bytes->begin(), bytes->end(), [](std::uint8_t byte) { return byte > 0x7F; }))
    throw std::invalid_argument(fmt::format("\"{}\": the bytes of an address run from 00 to 7F", escape(text)));
  return {(*bytes)[0], (*bytes)[1], (*bytes)[2]};
}

std::vector<BulkAddress> systemAddresses() {
  std::vector<BulkAddress> addresses;
  BDA::forEachAddress(BDA::kParameterRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (BDA::listOf(row.hi) == std::size_t(BDA::List::system)) addresses.push_back({row.hi, mid, lo});
  });
  return addresses;
}

}  // namespace Editor
