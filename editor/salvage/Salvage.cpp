#include "salvage/Salvage.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "salvage/Remains.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

std::vector<BulkAddress> listOf(const Addresses& addresses) { return {addresses.begin(), addresses.end()}; }

std::vector<std::size_t> sourcesOf(const Group& captures) {
  std::set<std::size_t> sources;
  for (const Capture* const capture : captures) sources.insert(capture->source);
  return {sources.begin(), sources.end()};
}

// From 1.
unsigned deviceOf(const Piece& piece) { return (piece.bytes[2] & BDA::kDeviceMask) + 1U; }

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
    } else {
      // What merging chooses between is told as that.
      Group remains = captures_;
      std::erase_if(remains, [&](const Capture* one) {
        return one->isWhole || (salvaged_.isMerged && one->device == deviceOf(salvaged_.messages.front()));
      });
      addNotTaken(NotTaken::Form::remains, remains);
      addNotTaken(NotTaken::Form::whole, whole);
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
    salvaged_.contradicts = different.empty() ? std::vector{salvaged_.address} : listOf(different);
  }

  void complete() {
    Group all = captures_;
    std::erase_if(all, [](const Capture* one) { return one->pieces.empty(); });
    Group current = all;
    std::erase_if(current, [](const Capture* one) { return one->isSuperseded; });
    const Group remains = uncontradicted(current, options_.preferred);
    const Addresses different = differencesOf(remains);
    if (different.empty())
      for (const Group& group : connected(remains)) {
        const Pieces pieces = joined(group, options_.preferred);
        if (lackOf(salvaged_.address, pieces) == std::vector<BulkAddress>()) return keepCompleted(pieces);
      }
    const std::optional<Group> mergeable = mergeableOf(all);
    if (mergeable && options_.merges) return merge(*mergeable);
    salvaged_.isMergeable = mergeable.has_value();
    salvaged_.contradicts = listOf(different);
    const std::optional<std::vector<BulkAddress>> missing =
        lackOf(salvaged_.address, joined(remains, options_.preferred));
    salvaged_.from = sourcesOf(captures_);
    salvaged_.missing = missing && !missing->empty() ? *missing : lackOfFullest(remains);
  }

  // Those for one device that have all blocks together.
  std::optional<Group> mergeableOf(const Group& all) const {
    std::map<std::optional<unsigned>, Group> ofDevices;
    for (const Capture* const capture : all) ofDevices[capture->device].push_back(capture);
    for (auto& [device, group] : ofDevices)
      if (lackOf(salvaged_.address, joined(group, options_.preferred)) == std::vector<BulkAddress>())
        return std::move(group);
    return std::nullopt;
  }

  void merge(const Group& group) {
    salvaged_.isMerged = true;
    salvaged_.contradicts = listOf(differencesOf(group));
    keepCompleted(joined(group, options_.preferred));
  }

  void keepCompleted(const Pieces& pieces) { keep(salvaged_, Salvaged::State::completed, pieces); }

  // Those of the captures that have something else than what is kept.
  void addNotTaken(NotTaken::Form form, const Group& captures) {
    Pieces kept;
    for (const Piece& piece : salvaged_.messages) kept.emplace(*readMessage(piece.bytes).address, piece);
    Group others;
    Addresses differs;
    for (const Capture* const capture : captures) {
      bool isOther = false;
      for (const auto& [address, piece] : capture->pieces) {
        const auto same = kept.find(address);
        if (same != kept.end() && carrySame(same->second, piece)) continue;
        differs.insert(address);
        isOther = true;
      }
      if (isOther) others.push_back(capture);
    }
    if (!others.empty()) salvaged_.notTaken.push_back({form, sourcesOf(others), listOf(differs)});
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

Salvaged lostOrphan(const Capture& orphan) {
  Salvaged lost;
  lost.address = orphan.address;
  lost.from = {orphan.source};
  return lost;
}

// The blocks of no known unit but those that a unit has that is kept.
void addOrphans(SalvageResult& result, const std::vector<Capture>& orphans, const std::function<void()>& pause) {
  KeptBlocks kept;
  for (const Salvaged& unit : result.units) kept.add(unit.messages);
  std::vector<Salvaged> lost;
  for (const Capture& orphan : orphans) {
    pause();
    if (!kept.haveAll(orphan.pieces)) lost.push_back(lostOrphan(orphan));
  }
  std::ranges::move(lost, std::back_inserter(result.units));
}

// Behind the file dumps for a device. One that a file has like that goes before one that was corrected.
Piece triggerBehind(unsigned device, const std::vector<Piece>& triggers, SalvageResult& result) {
  const Piece* found = nullptr;
  bool isOther = false;
  for (const Piece& trigger : triggers) {
    if (deviceOf(trigger) != device) continue;
    const bool isIt = readMessage(trigger.bytes).address == kWriteTrigger;
    isOther = isOther || !isIt;
    if (isIt && (found == nullptr || (found->wrongChecksum && !trigger.wrongChecksum))) found = &trigger;
  }
  if (found != nullptr) return *found;
  result.addedTriggers.push_back({device, isOther});
  Piece trigger;
  trigger.bytes = writeTrigger(std::uint8_t(device - 1));
  return trigger;
}

// Where one form of a content alone is of the preferred source, the other goes.
void chooseForms(std::vector<Salvaged>& units, std::size_t preferred) {
  const auto isPreferred = [&](const Salvaged& unit) {
    return std::ranges::find(unit.from, preferred) != unit.from.end();
  };
  std::map<ContentId, Salvaged*> forms;
  Addresses leftOut;
  for (Salvaged& unit : units) {
    const std::optional<ContentId> content = contentNamedBy(unit.address);
    if (unit.state == Salvaged::State::lost || !content) continue;
    const auto [other, isNew] = forms.emplace(canonical(*content), &unit);
    if (isNew || isPreferred(unit) == isPreferred(*other->second)) continue;
    Salvaged* left = &unit;
    if (isPreferred(unit)) std::swap(left, other->second);
    const auto form = isUnit(left->address) ? NotTaken::Form::asUnit : NotTaken::Form::asFileDump;
    other->second->notTaken.push_back({form, left->from, {left->address}});
    leftOut.insert(left->address);
  }
  std::erase_if(units, [&](const Salvaged& unit) { return leftOut.contains(unit.address); });
}

// All messages that are kept, and the requests that fetch the rest. Of file dumps for several devices an instrument
// writes none by the trigger of another.
void gather(SalvageResult& result, const std::vector<Piece>& triggers) {
  std::set<ContentId> contents;
  std::map<unsigned, std::vector<Piece>> fileDumps;
  std::vector<Piece> others;
  for (const Salvaged& unit : result.units) {
    if (unit.state == Salvaged::State::lost) {
      if (unit.device) result.requests.push_back(requestMessage(unit.address, std::uint8_t(*unit.device - 1)));
      continue;
    }
    const bool isFileDump = unit.address.hi == BDA::kFileDumpHi;
    std::vector<Piece>& messages = isFileDump ? fileDumps[deviceOf(unit.messages.front())] : others;
    messages.insert(messages.end(), unit.messages.begin(), unit.messages.end());
    if (const std::optional<ContentId> content = contentNamedBy(unit.address))
      if (!contents.insert(canonical(*content)).second) result.twice.push_back(*content);
  }
  for (auto& [device, messages] : fileDumps) {
    std::ranges::move(messages, std::back_inserter(result.messages));
    result.messages.push_back(triggerBehind(device, triggers, result));
  }
  std::ranges::move(others, std::back_inserter(result.messages));
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

bool SalvageResult::isNothingLost() const {
  const auto isLost = [](const Salvaged& unit) { return unit.state == Salvaged::State::lost; };
  return unknown == 0 && notInFull == 0 && std::none_of(units.begin(), units.end(), isLost);
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

void Salvage::lose(std::size_t source, const InputLoss& loss) {
  switch (loss.kind) {
    case InputLoss::Kind::realTime:
      return;
    case InputLoss::Kind::cutShort:
      return addFragment(source, loss.beginning);
    case InputLoss::Kind::brokenFile:
      notInFull_.insert(source);
      return addLoose(source);
    case InputLoss::Kind::loose:
      return addLoose(source);
  }
}

// What is there without correcting anything goes before what is not.
SalvageResult Salvage::finish(const std::function<void()>& pause) {
  captures_.finish();
  if (corrected_) corrected_->finish();
  const Captures& last = corrected_ ? *corrected_ : captures_;
  Groups groups = byAddress(captures_);
  const Groups corrected = byAddress(last);
  for (const auto& [address, group] : corrected) groups[address];
  SalvageResult result;
  result.notInFull = notInFull_.size();
  for (const auto& [address, group] : groups) {
    pause();
    Salvaged unit = Decision(options_, address, group).run();
    if (const auto again = corrected.find(address);
        corrected_ && unit.state == Salvaged::State::lost && again != corrected.end())
      unit = Decision(options_, address, again->second).run();
    result.units.push_back(std::move(unit));
  }
  addOrphans(result, last.orphans(), pause);
  if (options_.preferred) chooseForms(result.units, *options_.preferred);
  gather(result, last.triggers());
  result.leftOut = last.leftOut();
  result.unknown = last.countUnknown();
  return result;
}

}  // namespace Editor
