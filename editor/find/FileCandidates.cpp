#include "find/FileCandidates.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "AddressRows.h"

namespace Editor {

namespace {

bool isEditBuffer(const UnitReport& unit) {
  return unit.state == UnitReport::State::complete && editBufferOf(unit.address.mid).has_value();
}

bool lacksBlocks(const UnitReport& unit) {
  return isBroken(unit) && unit.state != UnitReport::State::held && unit.state != UnitReport::State::discarded;
}

// File dumps are lost one by one, and with those that were held the one for which they are discarded.
std::uint64_t countLost(const UnitReport& unit) {
  if (unit.state == UnitReport::State::held) return unit.blocks.size();
  return 1 + (unit.state == UnitReport::State::discarded ? unit.blocks.size() : 0);
}

}  // namespace

// The messages of a file, each with what it says of itself, and the units that they make.
struct FileReceiver::Judged {
  explicit Judged(std::span<const FileMessage> all) : messages(all) {
    UnitFollower follower;
    const auto keep = [&](std::vector<UnitReport> ended) {
      std::move(ended.begin(), ended.end(), std::back_inserter(units));
    };
    readings.reserve(messages.size());
    for (const FileMessage& message : messages) {
      readings.push_back(readMessage(message.bytes));
      keep(follower.next(readings.back(), readings.size() - 1));
    }
    keep(follower.finish());
  }

  // Of the file dumps that its trigger wrote: by content the message that counts, the last.
  std::map<ContentId, std::size_t> dumpsOf(const UnitReport& unit) const {
    std::map<ContentId, std::size_t> dumps;
    if (unit.state != UnitReport::State::written) return dumps;
    for (const std::uint64_t at : unit.messages)
      if (const auto content = contentNamedBy(*readings[at].address)) dumps[canonical(*content)] = at;
    return dumps;
  }

  // Those of which no broken unit tells: lost by what is wrong with their messages, or left out by their trigger. The
  // remainder of a message may be that of one, unless it stands where a unit lacks blocks.
  std::uint64_t countBrokenDumps() const {
    std::uint64_t count = 0;
    for (std::size_t at = 0; at < readings.size(); ++at) {
      const Reading& reading = readings[at];
      const auto isIn = [&](auto isSuch) {
        return std::any_of(units.begin(), units.end(), [&](const UnitReport& unit) {
          return unit.firstMessage <= at && at <= unit.lastMessage && isSuch(unit);
        });
      };
      const bool isFileDump = reading.role == Role::fileDump && reading.kind == Reading::Kind::dump;
      if (isFileDump && isBroken(reading)) {
        const bool isHeld = reading.verdict == Reading::Verdict::fileDumpBroken;
        if (!isHeld || isIn([](const UnitReport& unit) { return unit.state == UnitReport::State::written; })) ++count;
      } else if (isRemainder(reading) && !isIn(lacksBlocks)) {
        ++count;
      }
    }
    return count;
  }

  std::span<const FileMessage> messages;
  std::vector<Reading> readings;
  std::vector<UnitReport> units;  // their messages counted from 0
};

FileReceiver::FileReceiver() = default;

// What another file has left behind goes: its edit buffers decide what the parts of a multi play. Contents need not go,
// each is read as soon as it is stored.
void FileReceiver::beginFile() {
  const bool isClean = run_ && !hasFlags_ && editor_.tools().changeCount() == liveBefore_;
  if (isClean) return;
  run_.reset();
  run_.emplace(editor_, Library::Transaction::Access::Write, EmbeddedEditor::Run::Devices::any);
  liveBefore_ = editor_.tools().changeCount();
  hasFlags_ = false;
}

FileContents FileReceiver::receive(std::span<const FileMessage> messages, EditBuffers buffers,
                                   const std::function<void(std::size_t)>& progress) {
  beginFile();
  const Judged judged(messages);
  FileContents found;
  found.broken = judged.countBrokenDumps();
  for (const UnitReport& unit : judged.units) {
    if (progress) progress(unit.firstMessage);
    if (isBroken(unit))
      found.broken += countLost(unit);
    else if (buffers == EditBuffers::included || !isEditBuffer(unit))
      take(judged, unit, found);
  }
  takeFlags(judged, found);
  return found;
}

void FileReceiver::take(const Judged& judged, const UnitReport& unit, FileContents& found) {
  bool isRefused = false;
  for (const std::uint64_t at : unit.messages) {
    const Record record = editor_.handle(judged.readings[at], judged.messages[at].bytes, BDA::DevicePort_Main, at);
    isRefused = isRefused || record.outcome == Outcome::refused;
    if (at == unit.lastMessage) takeStored(judged, unit, record, found);
  }
  if (isRefused) ++found.broken;
}

// What the last message of a unit has stored.
void FileReceiver::takeStored(const Judged& judged, const UnitReport& unit, const Record& record, FileContents& found) {
  const auto add = [&](Candidate candidate, std::size_t at) {
    candidate.message = judged.messages[at].number;
    found.whole.push_back(std::move(candidate));
  };
  if (isEditBuffer(unit)) {
    if (record.outcome != Outcome::refused)
      add(candidateAt(editor_, parseTarget(formatAddress(unit.address))), unit.firstMessage);
    return;
  }
  const std::map<ContentId, std::size_t> dumps = judged.dumpsOf(unit);
  std::set<ContentId> seen;
  for (const Change& change : record.changes) {
    const bool isContent = change.place.kind == Place::Kind::content && change.what == What::stored;
    const ContentId id = change.place.id;
    if (!isContent || !seen.insert(id).second) continue;
    const auto dump = dumps.find(id);
    if (auto candidate = findCandidate(editor_, id))
      add(std::move(*candidate), dump == dumps.end() ? unit.firstMessage : dump->second);
  }
}

void FileReceiver::takeFlags(const Judged& judged, FileContents& found) {
  for (std::size_t at = 0; at < judged.messages.size(); ++at) {
    const Reading& reading = judged.readings[at];
    const bool areFlags = reading.kind == Reading::Kind::dump && !isBroken(reading) &&
                          BDA::listOf(reading.address->hi) == std::size_t(BDA::List::favorite);
    if (!areFlags) continue;
    hasFlags_ = true;
    editor_.handle(reading, judged.messages[at].bytes, BDA::DevicePort_Main, at);
  }
  if (!hasFlags_) return;
  for (Candidate& candidate : found.whole)
    if (candidate.id) candidate.favourite = editor_.library().favourite(*candidate.id);
}

}  // namespace Editor
