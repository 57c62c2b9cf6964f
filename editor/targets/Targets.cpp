#include "targets/Targets.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <stdexcept>

#include "AddressRows.h"
#include "messages/Text.h"

namespace Editor {

namespace {

bool isByte(const std::string& word) {
  return word.size() == 2 &&
         std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

[[noreturn]] void failToName(const std::string& text) { throw TargetError(TargetError::Kind::noTarget, text); }

BulkAddress parse(const std::string& text, const TakenNames& taken) {
  try {
    return parseAddress(text, taken);
  } catch (const std::invalid_argument& error) {
    failToName(error.what());
  }
}

std::optional<Target> findTarget(BulkAddress address) {
  Target target;
  target.name = nameOrBytes(address);
  const std::size_t list = BDA::listOf(address.hi);
  if (list == std::size_t(BDA::List::header) && findBlock(address)) {
    target.header = address;
    if (const auto buffer = editBufferOf(address.mid)) {
      target.kind = Target::Kind::editBuffer;
      target.buffer = *buffer;
      target.part = *buffer == EditBuffer::partVoice ? address.lo : std::uint8_t(0);
      return target;
    }
    if (const auto content = contentOfHeader({address.mid, address.lo})) {
      target.kind = Target::Kind::content;
      target.content = *content;
      return target;
    }
  }
  if (list == std::size_t(BDA::List::fileDump)) {
    if (const auto content = contentOfFileDump({address.mid, address.lo}); content && address.hi == BDA::kFileDumpHi) {
      target.kind = Target::Kind::content;
      target.content = *content;
      if (const auto header = headerOf(*content)) target.header = BulkAddress{BDA::kHeaderHi, header->mid, header->lo};
      return target;
    }
  }
  return std::nullopt;
}

Target targetAt(BulkAddress address) {
  if (std::optional<Target> target = findTarget(address)) return std::move(*target);
  throw TargetError(
      TargetError::Kind::noTarget,
      fmt::format("{} ({}) is no target: expected system, additional, or the address or name of a header or "
                  "a file dump",
                  formatAddress(address), describeAddress(address)));
}

// What is taken of all that has a name.
enum class Taken : std::uint8_t { blocks, targets, contents };

// For who may have meant one of them.
std::vector<std::string> namesOf(Taken taken) {
  const auto isTaken = [taken](const std::string& name) {
    if (taken == Taken::blocks) return true;
    const std::optional<Target> target = findTarget(*findName(name));
    return target && (taken == Taken::targets || target->kind == Target::Kind::content);
  };
  std::vector<std::string> names = blockNames();
  std::erase_if(names, [&](const std::string& name) { return !isTaken(name); });
  if (taken != Taken::contents) names.emplace_back("system");
  if (taken == Taken::targets) names.emplace_back("additional");
  return names;
}

std::vector<std::string> namesAndBanksOf(Taken taken) {
  std::vector<std::string> names = namesOf(taken);
  std::vector<std::string> banks;
  for (const std::string& name : names)
    if (std::string bank = bankOfName(name); bank != name && (banks.empty() || banks.back() != bank))
      banks.push_back(std::move(bank));
  std::ranges::move(banks, std::back_inserter(names));
  return names;
}

// "voice:user1:6"
std::string numbered(const std::string& bank, std::string_view number) { return fmt::format("{}:{}", bank, number); }

// The places of a bank; none when there is no such bank.
std::vector<BulkAddress> placesOfBank(const std::string& bank) {
  std::vector<BulkAddress> places;
  for (unsigned number = 1; const auto place = findName(numbered(bank, std::to_string(number))); ++number)
    places.push_back(*place);
  return places;
}

// "voice:user1:1..16", whose second number begins at `dots`.
std::vector<BulkAddress> placesOfRange(const std::string& text, std::size_t dots, const TakenNames& taken) {
  const std::string first = text.substr(0, dots);
  const std::string bank = bankOfName(first);
  if (bank == first || dots + 2 == text.size() || text.find_first_not_of("0123456789", dots + 2) != std::string::npos)
    failToName(fmt::format("\"{}\": expected a range such as voice:user1:1..16", text));
  const BulkAddress from = parse(first, taken);
  const BulkAddress to = parse(numbered(bank, std::string_view(text).substr(dots + 2)), taken);
  const std::vector<BulkAddress> places = placesOfBank(bank);
  const auto begin = std::find(places.begin(), places.end(), from);
  const auto end = std::find(begin, places.end(), to);
  if (end == places.end()) failToName(fmt::format("\"{}\": the second number is less than the first", text));
  return {begin, end + 1};
}

// The range that someone meant who wrote "voice:user1:1-16"; empty: none.
std::string rangeMeantBy(const std::string& text) {
  const std::size_t dash = text.rfind('-');
  if (dash == std::string::npos || !findName(text.substr(0, dash))) return "";
  std::string range = text.substr(0, dash) + ".." + text.substr(dash + 1);
  try {
    placesOfRange(range, dash, blockNames);
  } catch (const TargetError&) {
    return "";
  }
  return range;
}

// A word that has no meaning of its own.
Places<BulkAddress> parseBlocks(const std::string& text, Taken kind) {
  const auto taken = [kind] { return namesAndBanksOf(kind); };
  if (const std::size_t dots = text.find(".."); dots != std::string::npos)
    return {text, false, placesOfRange(text, dots, taken)};
  if (const std::string range = rangeMeantBy(text); !range.empty())
    failToName(fmt::format("\"{}\": did you mean {}?", text, range));
  if (std::vector<BulkAddress> places = placesOfBank(text); !places.empty()) return {text, false, std::move(places)};
  const BulkAddress address = parse(text, taken);
  return {nameOrBytes(address), true, {address}};
}

Places<Target> parseTargets(const std::string& text, Taken taken) {
  if (text == "system" || text == "additional") return {text, true, {parseTarget(text)}};
  const Places<BulkAddress> blocks = parseBlocks(text, taken);
  Places<Target> targets{blocks.name, blocks.isOne, {}};
  for (const BulkAddress address : blocks.list) targets.list.push_back(targetAt(address));
  return targets;
}

void requireContent(const Target& target) {
  if (target.kind != Target::Kind::content)
    throw TargetError(TargetError::Kind::noTarget,
                      fmt::format("{} is no stored content: expected the address or name of one, such as "
                                  "voice:user1:6 or file:multi:1",
                                  target.name));
}

}  // namespace

std::string placeNameOf(const Target& target) {
  return target.kind == Target::Kind::content ? nameOf(canonical(target.content)) : target.name;
}

std::string placeNameOf(BulkAddress address) {
  const std::optional<ContentId> content = contentNamedBy(address);
  return content ? nameOf(canonical(*content)) : nameOrBytes(address);
}

std::optional<ContentId> contentNamedBy(BulkAddress address) {
  const MidLo place{address.mid, address.lo};
  if (address.hi == BDA::kHeaderHi || address.hi == BDA::kFooterHi) return contentOfHeader(place);
  if (address.hi == BDA::kFileDumpHi) return contentOfFileDump(place);
  return std::nullopt;
}

void refuse(const Target& target, const std::string& why) {
  throw TargetError(TargetError::Kind::refused, fmt::format("{}: {}", target.name, why));
}

std::vector<std::string> joinAddresses(const std::vector<std::string>& words) {
  std::vector<std::string> joined;
  for (std::size_t i = 0; i < words.size(); ++i) {
    joined.push_back(words[i]);
    if (i + 2 >= words.size() || !isByte(words[i]) || !isByte(words[i + 1]) || !isByte(words[i + 2])) continue;
    joined.back() += words[i + 1] + words[i + 2];
    i += 2;
  }
  return joined;
}

Places<BulkAddress> parsePlaces(const std::string& text) {
  if (text == "system") return {text, false, systemAddresses()};
  return parseBlocks(text, Taken::blocks);
}

Places<Target> parseTargets(const std::string& text) { return parseTargets(text, Taken::targets); }

Target parseTarget(const std::string& text) {
  Target target;
  target.name = text;
  target.kind = text == "additional" ? Target::Kind::additional : Target::Kind::system;
  if (text == "system" || text == "additional") return target;
  if (text.find("..") != std::string::npos || !placesOfBank(text).empty() || !rangeMeantBy(text).empty())
    failToName(fmt::format("\"{}\": expected one place, not a bank or a range", text));
  return targetAt(parse(text, [] { return namesOf(Taken::targets); }));
}

Target parseOneTarget(const std::vector<std::string>& words) {
  const std::vector<std::string> joined = joinAddresses(words);
  if (joined.size() != 1) throw TargetError(TargetError::Kind::noTarget, "expected one target");
  return parseTarget(joined.front());
}

std::vector<BulkAddress> parseAddresses(const std::vector<std::string>& words) {
  std::vector<BulkAddress> addresses;
  for (const std::string& word : joinAddresses(words))
    for (const BulkAddress address : parsePlaces(word).list) addresses.push_back(address);
  return addresses;
}

std::string bankOfName(const std::string& name) {
  const std::size_t colon = name.rfind(':');
  const bool isNumbered = colon != std::string::npos && colon + 1 < name.size() &&
                          name.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  return isNumbered ? name.substr(0, colon) : name;
}

Target parseContent(const std::string& text) {
  Target target = parseTarget(text);
  requireContent(target);
  return target;
}

Places<Target> parseContents(const std::string& text) {
  Places<Target> targets = parseTargets(text, Taken::contents);
  for (const Target& target : targets.list) requireContent(target);
  return targets;
}

std::vector<Target> placesFrom(const Target& first, std::size_t count) {
  std::vector<Target> places;
  for (const BulkAddress address : placesOfBank(bankOfName(first.name)))
    if (Target target = targetAt(address); !places.empty() || target.name == first.name)
      places.push_back(std::move(target));
  if (places.empty()) places.push_back(first);
  if (places.size() < count)
    failToName(
        fmt::format("{}: {} places are needed from there on, its bank has {}", first.name, count, places.size()));
  places.resize(count);
  return places;
}

}  // namespace Editor
