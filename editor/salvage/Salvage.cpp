#include "salvage/Salvage.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

using Group = std::vector<const Capture*>;
using Addresses = std::set<BulkAddress, BackupOrder>;

std::vector<BulkAddress> listOf(const Addresses& addresses) { return {addresses.begin(), addresses.end()}; }

std::vector<std::size_t> sourcesOf(const Group& captures) {
  std::set<std::size_t> sources;
  for (const Capture* const capture : captures) sources.insert(capture->source);
  return {sources.begin(), sources.end()};
}

bool hasParameters(BulkAddress address) { return address.hi != BDA::kHeaderHi && address.hi != BDA::kFooterHi; }

// Calls visit(address, isEqual) for each block that both have.
template <typename Visit>
void forEachShared(const Capture& a, const Capture& b, Visit visit) {
  for (const auto& [address, piece] : a.pieces)
    if (const auto other = b.pieces.find(address); other != b.pieces.end())
      visit(address, carrySame(piece, other->second));
}

Addresses differencesOf(const Group& captures) {
  Addresses found;
  for (auto a = captures.begin(); a != captures.end(); ++a)
    for (auto b = a + 1; b != captures.end(); ++b)
      forEachShared(**a, **b, [&](BulkAddress address, bool isEqual) {
        if (!isEqual) found.insert(address);
      });
  return found;
}

bool differ(const Capture& a, const Capture& b) { return !differencesOf({&a, &b}).empty(); }

bool haveSomethingInCommon(const Capture& a, const Capture& b) {
  bool have = false;
  if (a.device != b.device) return false;  // no instrument would take what they made together
  forEachShared(a, b, [&](BulkAddress address, bool isEqual) { have = have || (isEqual && hasParameters(address)); });
  return have;
}

// All blocks of the captures: those of the preferred source before all others, those of the fullest before the rest.
Pieces joined(Group captures, std::optional<std::size_t> preferred) {
  std::ranges::stable_sort(captures, std::ranges::greater(),
                           [&](const Capture* one) { return std::pair(one->source == preferred, one->pieces.size()); });
  Pieces pieces;
  for (const Capture* const capture : captures) pieces.insert(capture->pieces.begin(), capture->pieces.end());
  return pieces;
}

// What the pieces lack of the whole; nothing when they are not all of one thing, as two kinds of voices are not.
std::optional<std::vector<BulkAddress>> lackOf(BulkAddress address, const Pieces& pieces) {
  std::vector<BulkAddress> missing = blocksOf(address, pieces);
  const std::size_t blocks = missing.size();
  std::erase_if(missing, [&](BulkAddress block) { return pieces.contains(block); });
  if (blocks - missing.size() != pieces.size()) return std::nullopt;
  return missing;
}

// Those that hang together by blocks that they share.
std::vector<Group> connected(Group captures) {
  std::vector<Group> groups;
  while (!captures.empty()) {
    Group group{captures.front()};
    captures.erase(captures.begin());
    for (std::size_t i = 0; i < group.size(); ++i) {
      const auto others = std::stable_partition(captures.begin(), captures.end(), [&](const Capture* one) {
        return !haveSomethingInCommon(*group[i], *one);
      });
      group.insert(group.end(), others, captures.end());
      captures.erase(others, captures.end());
    }
    groups.push_back(std::move(group));
  }
  return groups;
}

void keep(Salvaged& salvaged, Salvaged::State state, const Pieces& pieces) {
  salvaged.state = state;
  std::set<std::size_t> sources;
  for (const BulkAddress block : blocksOf(salvaged.address, pieces)) {
    salvaged.messages.push_back(pieces.at(block));
    sources.insert(salvaged.messages.back().source);
  }
  salvaged.from.assign(sources.begin(), sources.end());
}

// Decides of all captures of one unit or single block.
class Decision {
 public:
  Decision(const Salvage::Options& options, BulkAddress address, Group captures)
      : options_(options), captures_(std::move(captures)) {
    salvaged_.address = address;
  }

  Salvaged run() {
    const Group whole = wholeOnes();
    whole.empty() ? complete() : choose(whole);
    if (salvaged_.state == Salvaged::State::lost) {
      salvaged_.device = 1;
      for (const Capture* const capture : captures_)
        if (capture->device) salvaged_.device = capture->device;
    }
    return std::move(salvaged_);
  }

 private:
  // The last one of each source.
  Group wholeOnes() {
    Group whole;
    for (const Capture* const capture : captures_) {
      if (!capture->isWhole) continue;
      if (whole.empty() || whole.back()->source != capture->source) {
        whole.push_back(capture);
        continue;
      }
      if (salvaged_.repeatedIn.empty() || salvaged_.repeatedIn.back() != capture->source)
        salvaged_.repeatedIn.push_back(capture->source);
      whole.back() = capture;
    }
    return whole;
  }

  void choose(const Group& whole) {
    const auto preferred =
        std::ranges::find(whole, options_.preferred, [](const Capture* one) { return std::optional(one->source); });
    const Addresses different = differencesOf(whole);
    const bool areOfOneKind =
        std::ranges::all_of(whole, [&](const Capture* one) { return one->pieces.size() == whole[0]->pieces.size(); });
    if (preferred != whole.end()) return keep(salvaged_, Salvaged::State::whole, (*preferred)->pieces);
    if (different.empty() && areOfOneKind) return keep(salvaged_, Salvaged::State::whole, whole.front()->pieces);
    salvaged_.from = sourcesOf(whole);
    salvaged_.contradicts = listOf(different);
  }

  void complete() {
    Group all = captures_;
    std::erase_if(all, [](const Capture* one) { return one->pieces.empty(); });
    Group remains = all;
    std::erase_if(remains, [&](const Capture* one) { return isContradicted(*one); });
    const Addresses different = differencesOf(remains);
    if (different.empty())
      for (const Group& group : connected(remains)) {
        const Pieces pieces = joined(group, options_.preferred);
        if (lackOf(salvaged_.address, pieces) == std::vector<BulkAddress>()) return keepCompleted(pieces);
      }
    if (options_.merges && merge(all)) return;
    salvaged_.contradicts = listOf(different);
    const std::optional<std::vector<BulkAddress>> missing =
        lackOf(salvaged_.address, joined(remains, options_.preferred));
    salvaged_.from = sourcesOf(captures_);
    salvaged_.missing = missing && !missing->empty() ? *missing : lackOfFullest(remains);
  }

  bool merge(const Group& all) {
    std::map<std::optional<unsigned>, Group> ofDevices;
    for (const Capture* const capture : all) ofDevices[capture->device].push_back(capture);
    for (const auto& [device, group] : ofDevices) {
      const Pieces merged = joined(group, options_.preferred);
      if (lackOf(salvaged_.address, merged) != std::vector<BulkAddress>()) continue;
      salvaged_.isMerged = true;
      salvaged_.contradicts = listOf(differencesOf(group));
      keepCompleted(merged);
      return true;
    }
    return false;
  }

  void keepCompleted(const Pieces& pieces) { keep(salvaged_, Salvaged::State::completed, pieces); }

  // By one that is preferred to it.
  bool isContradicted(const Capture& capture) const {
    if (capture.source == options_.preferred) return false;
    return std::ranges::any_of(
        captures_, [&](const Capture* one) { return one->source == options_.preferred && differ(*one, capture); });
  }

  std::vector<BulkAddress> lackOfFullest(const Group& remains) const {
    std::optional<std::vector<BulkAddress>> least;
    for (const Group& group : differencesOf(remains).empty() ? connected(remains) : oneByOne(remains)) {
      std::optional<std::vector<BulkAddress>> missing = lackOf(salvaged_.address, joined(group, options_.preferred));
      if (missing && (!least || missing->size() < least->size())) least = std::move(missing);
    }
    return least ? *least : blocksOf(salvaged_.address, {});
  }

  static std::vector<Group> oneByOne(const Group& captures) {
    std::vector<Group> groups;
    for (const Capture* const capture : captures) groups.push_back({capture});
    return groups;
  }

  const Salvage::Options& options_;
  const Group captures_;
  Salvaged salvaged_;
};

using Groups = std::map<BulkAddress, Group, BackupOrder>;

Groups byAddress(const Captures& captures) {
  Groups groups;
  for (const Capture& capture : captures.captures()) groups[capture.address].push_back(&capture);
  return groups;
}

// Whether a unit that is kept has all of these blocks.
bool isKeptElsewhere(const Capture& orphan, const std::vector<Salvaged>& units) {
  return std::ranges::any_of(units, [&](const Salvaged& unit) {
    return std::ranges::all_of(orphan.pieces, [&](const Pieces::value_type& one) {
      return std::ranges::any_of(unit.messages, [&](const Piece& piece) {
        return readMessage(piece.bytes).address == one.first && carrySame(piece, one.second);
      });
    });
  });
}

Salvaged lostOrphan(const Capture& orphan) {
  Salvaged lost;
  lost.address = orphan.address;
  lost.from = {orphan.source};
  return lost;
}

unsigned deviceOf(const Piece& piece) { return piece.bytes[2] & BDA::kDeviceMask; }

// The trigger that has these file dumps written; nothing: no file has one for their device.
const Piece* triggerFor(const Piece& fileDump, const std::vector<Piece>& triggers) {
  const auto found = std::ranges::find_if(triggers, [&](const Piece& trigger) {
    return readMessage(trigger.bytes).address == kWriteTrigger && deviceOf(trigger) == deviceOf(fileDump);
  });
  return found == triggers.end() ? nullptr : &*found;
}

void addTrigger(SalvageResult& result, const std::vector<Piece>& triggers) {
  const Piece& fileDump = result.messages.back();
  if (const Piece* const trigger = triggerFor(fileDump, triggers)) return result.messages.push_back(*trigger);
  Piece trigger;
  trigger.bytes = writeTrigger(std::uint8_t(deviceOf(fileDump)));
  result.isTriggerAdded = true;
  result.messages.push_back(std::move(trigger));
}

// All messages that are kept, and the requests that fetch the rest.
void gather(SalvageResult& result, const std::vector<Piece>& triggers) {
  std::set<ContentId> contents;
  bool isTriggerDue = false;
  for (const Salvaged& unit : result.units) {
    if (unit.state == Salvaged::State::lost) {
      if (unit.device) result.requests.push_back(requestMessage(unit.address, std::uint8_t(*unit.device - 1)));
      continue;
    }
    const bool isFileDump = unit.address.hi == BDA::kFileDumpHi;
    if (isTriggerDue && !isFileDump) addTrigger(result, triggers);
    isTriggerDue = isFileDump;
    result.messages.insert(result.messages.end(), unit.messages.begin(), unit.messages.end());
    if (const std::optional<ContentId> content = contentNamedBy(unit.address))
      if (!contents.insert(canonical(*content)).second) result.twice.push_back(*content);
  }
  if (isTriggerDue) addTrigger(result, triggers);
}

}  // namespace

const char* wordOf(Salvaged::State state) {
  switch (state) {
    case Salvaged::State::whole:
      return "whole";
    case Salvaged::State::completed:
      return "completed";
    case Salvaged::State::lost:
      return "lost";
  }
  return "?";
}

Salvage::Salvage(const Options& options) : options_(options) {
  if (options.correctsChecksums) corrected_.emplace(Captures::Checksums::areCorrected);
}

void Salvage::add(Piece piece) {
  if (corrected_) corrected_->add(piece);
  captures_.add(std::move(piece));
}

void Salvage::addFragment(std::size_t source, std::span<const std::uint8_t> beginning) {
  if (corrected_) corrected_->addFragment(source, beginning);
  captures_.addFragment(source, beginning);
}

void Salvage::addLoose(std::size_t source) {
  if (corrected_) corrected_->addLoose(source);
  captures_.addLoose(source);
}

// What is there without correcting anything goes before what is not.
SalvageResult Salvage::finish() {
  captures_.finish();
  if (corrected_) corrected_->finish();
  const Captures& last = corrected_ ? *corrected_ : captures_;
  Groups groups = byAddress(captures_);
  const Groups corrected = byAddress(last);
  for (const auto& [address, group] : corrected) groups[address];
  SalvageResult result;
  for (const auto& [address, group] : groups) {
    Salvaged unit = Decision(options_, address, group).run();
    if (const auto again = corrected.find(address);
        corrected_ && unit.state == Salvaged::State::lost && again != corrected.end())
      unit = Decision(options_, address, again->second).run();
    result.units.push_back(std::move(unit));
  }
  std::vector<Salvaged> orphans;
  for (const Capture& orphan : last.orphans())
    if (!isKeptElsewhere(orphan, result.units)) orphans.push_back(lostOrphan(orphan));
  result.units.insert(result.units.end(), orphans.begin(), orphans.end());
  gather(result, last.triggers());
  result.leftOut = last.leftOut();
  result.unknown = last.countUnknown();
  return result;
}

}  // namespace Editor
