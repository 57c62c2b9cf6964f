#include "messages/Units.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "midi/Counted.h"
#include "models/ContentAddress.h"

namespace Editor {

namespace {

bool isList(std::size_t list, BDA::List which) { return list == std::size_t(which); }

// An instrument takes the messages for its own device number only, unless it takes all.
std::string noteOf(const std::set<unsigned>& devices) {
  return devices.size() < 2 ? "" : fmt::format("its messages are for different devices: {}", fmt::join(devices, ", "));
}

}  // namespace

BulkAddress footerOf(BulkAddress header) { return {BDA::kFooterHi, header.mid, header.lo}; }

OpenUnit::OpenUnit(BulkAddress header, std::uint64_t message) : header_(header), firstMessage_(message) {
  const std::uint8_t type = findBlock(header)->type;
  if (type != BDA::kPartVoiceHeader) expect(BDA::listBetween(type));
}

void OpenUnit::expect(std::size_t list) {
  BDA::forEachAddress(BDA::kParameterRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (BDA::listOf(row.hi) == list) blocks_.push_back({{row.hi, mid, lo}, false, 0});
  });
}

void OpenUnit::expectVoice(bool isDrum) {
  if (blocks_.empty()) expect(std::size_t(isDrum ? BDA::List::drumVoice : BDA::List::normalVoice));
}

bool OpenUnit::arrive(BulkAddress block, std::uint64_t message) {
  const std::size_t list = BDA::listOf(block.hi);
  const bool isVoiceBlock = isList(list, BDA::List::normalVoice) || isList(list, BDA::List::drumVoice);
  if (blocks_.empty() && isVoiceBlock) expect(list);
  const auto found =
      std::find_if(blocks_.begin(), blocks_.end(), [&](const Block& expected) { return expected.address == block; });
  if (found == blocks_.end()) return false;
  found->arrived = true;
  found->message = message;
  return true;
}

bool OpenUnit::isClosedBy(BulkAddress footer) const {
  return footer.hi == BDA::kFooterHi && footer.mid == header_.mid && footer.lo == header_.lo;
}

std::vector<BulkAddress> OpenUnit::missing() const {
  if (blocks_.empty()) {
    OpenUnit normal = *this;
    normal.expectVoice(false);
    return normal.missing();
  }
  std::vector<BulkAddress> missing;
  for (const Block& block : blocks_)
    if (!block.arrived) missing.push_back(block.address);
  return missing;
}

std::vector<std::uint64_t> OpenUnit::messages() const {
  std::vector<std::uint64_t> messages{firstMessage_};
  for (const Block& block : blocks_)
    if (block.arrived) messages.push_back(block.message);
  std::sort(messages.begin(), messages.end());
  return messages;
}

std::vector<UnitReport> UnitFollower::next(const Reading& reading, std::uint64_t message) {
  message_ = message;
  switch (reading.kind) {
    case Reading::Kind::foreign:
    case Reading::Kind::other:
      break;
    case Reading::Kind::invalid:
      if (reading.device) abandon(std::string("a message of ") + wordOf(reading.verdict));
      break;
    case Reading::Kind::request:
      abandon("a request");
      break;
    case Reading::Kind::dump:
      // A wrong checksum or byte count and an unknown address lose the message, and leave the open header open.
      if (!isBroken(reading) || reading.verdict == Reading::Verdict::blockLengthWrong ||
          reading.verdict == Reading::Verdict::fileDumpBroken)
        dump(reading);
      break;
  }
  return std::exchange(ended_, {});
}

std::vector<UnitReport> UnitFollower::finish() {
  if (open_) {
    report(UnitReport::State::open, open_->header());
    ended_.back().firstMessage = open_->firstMessage();
    ended_.back().blocks = open_->missing();
  }
  open_.reset();
  if (!held_.empty()) ended_.push_back(endHeld(UnitReport::State::held, held_.front().address));
  return std::exchange(ended_, {});
}

void UnitFollower::dump(const Reading& reading) {
  const BulkAddress address = *reading.address;
  const unsigned device = *reading.device;
  switch (reading.role) {
    case Role::header:
      abandon(describeAddress(address));
      open_.emplace(address, message_);
      isHeaderBroken_ = isBroken(reading);
      openDevices_ = {device};
      break;
    case Role::part:
      part(reading);
      break;
    case Role::footer:
      footer(reading);
      break;
    case Role::fileDump:
      fileDump(reading);
      break;
    case Role::trigger:
      writeTrigger(address, device);
      break;
    case Role::alone:
      abandon(describeAddress(address));
      break;
    case Role::unknown:  // as an unknown address
    case Role::emptyHeader:
    case Role::emptyFooter:
      break;
  }
}

void UnitFollower::part(const Reading& reading) {
  const BulkAddress address = *reading.address;
  if (!open_ || !open_->arrive(address, message_))
    report(UnitReport::State::outside, address);
  else if (reading.verdict != Reading::Verdict::good)
    abandon(describeAddress(address) + " of the wrong length");
  else
    openDevices_.insert(*reading.device);
}

void UnitFollower::footer(const Reading& reading) {
  const BulkAddress address = *reading.address;
  if (!open_ || !open_->isClosedBy(address)) return report(UnitReport::State::strayFooter, address);
  std::vector<BulkAddress> missing = open_->missing();
  if (missing.empty() && isHeaderBroken_) return abandon("a header of the wrong length, closed");
  if (missing.empty() && isBroken(reading)) return abandon("a footer of the wrong length");
  report(missing.empty() ? UnitReport::State::complete : UnitReport::State::incomplete, open_->header());
  ended_.back().firstMessage = open_->firstMessage();
  ended_.back().blocks = std::move(missing);
  ended_.back().messages = open_->messages();
  ended_.back().messages.push_back(message_);
  openDevices_.insert(*reading.device);
  ended_.back().note = noteOf(openDevices_);
  open_.reset();
}

void UnitFollower::fileDump(const Reading& reading) {
  const BulkAddress address = *reading.address;
  if (!isWritableFileDump(address)) {
    ended_.push_back(endHeld(UnitReport::State::discarded, address));
    return abandon(describeAddress(address));
  }
  const auto supersede = [&](const HeldFileDump& dump, const std::string& by) {
    if (++supersededCount_ > kMostAlike) return;
    superseded_ += fmt::format("{}{} of message {} is replaced by {} of message {}", superseded_.empty() ? "" : "; ",
                               nameOrBytes(dump.address), dump.message, by, message_);
  };
  const auto same =
      std::find_if(held_.begin(), held_.end(), [&](const HeldFileDump& dump) { return dump.address == address; });
  if (held_.empty()) firstHeld_ = message_;
  if (same != held_.end()) {
    supersede(*same, "that");
    same->message = message_;
    same->removes = reading.removes;
    same->isBroken = isBroken(reading);
  } else {
    // A mixing voice of the first multi has two addresses. Both are written, in the order in which they came to be
    // held.
    const auto content = contentOfFileDump({address.mid, address.lo});
    for (const HeldFileDump& dump : held_)
      if (contentOfFileDump({dump.address.mid, dump.address.lo}) == content) supersede(dump, nameOrBytes(address));
    held_.push_back({address, message_, reading.removes, isBroken(reading)});
  }
  heldDevices_.insert(*reading.device);
}

void UnitFollower::writeTrigger(BulkAddress address, unsigned device) {
  abandon(describeAddress(address));
  if (!held_.empty()) heldDevices_.insert(device);
  ended_.push_back(endHeld(UnitReport::State::written, address));
}

void UnitFollower::abandon(const std::string& by) {
  if (!open_) return;
  report(UnitReport::State::abandoned, open_->header());
  ended_.back().firstMessage = open_->firstMessage();
  ended_.back().cause = by;
  open_.reset();
}

void UnitFollower::report(UnitReport::State state, BulkAddress address) {
  ended_.push_back({state, message_, message_, address, {}, {}});
}

UnitReport UnitFollower::endHeld(UnitReport::State state, BulkAddress address) {
  UnitReport ended{state, held_.empty() ? message_ : firstHeld_, message_, address, {}, {}};
  std::string broken;
  for (const HeldFileDump& dump : held_) {
    if (state == UnitReport::State::written && dump.isBroken) {
      broken +=
          fmt::format("{} {} of message {}", broken.empty() ? "broken:" : ",", nameOrBytes(dump.address), dump.message);
      continue;
    }
    ended.blocks.push_back(dump.address);
    if (state != UnitReport::State::written) continue;
    ended.messages.push_back(dump.message);
    if (dump.removes) ended.removes.push_back(*dump.removes);
  }
  if (state == UnitReport::State::written) ended.messages.push_back(message_);
  ended.note = noteOf(heldDevices_);
  if (supersededCount_ > kMostAlike)
    superseded_ += fmt::format("; {} more are replaced", supersededCount_ - kMostAlike);
  const bool isRemoving = state == UnitReport::State::written && address != kWriteTrigger;
  for (const std::string& note :
       {std::string(isRemoving ? "removes all mixing voices first" : ""), superseded_, broken})
    if (!note.empty()) ended.note += (ended.note.empty() ? "" : "; ") + note;
  held_.clear();
  heldDevices_.clear();
  superseded_.clear();
  supersededCount_ = 0;
  return ended;
}

const char* wordOf(UnitReport::State state) {
  switch (state) {
    case UnitReport::State::complete:
      return "complete";
    case UnitReport::State::incomplete:
      return "incomplete";
    case UnitReport::State::abandoned:
      return "abandoned";
    case UnitReport::State::open:
      return "open";
    case UnitReport::State::outside:
      return "outside";
    case UnitReport::State::strayFooter:
      return "stray footer";
    case UnitReport::State::written:
      return "written";
    case UnitReport::State::held:
      return "held";
    case UnitReport::State::discarded:
      return "discarded";
  }
  return "?";
}

bool isBroken(const UnitReport& unit) {
  return unit.state != UnitReport::State::complete && unit.state != UnitReport::State::written;
}

std::string describeBlocks(const std::vector<BulkAddress>& blocks) {
  std::string text;
  for (const BulkAddress block : blocks) {
    if (!text.empty()) text += ", ";
    text += fmt::format("{} ({})", describeAddress(block), formatAddress(block));
  }
  return text;
}

namespace {

std::string describeState(const UnitReport& unit) {
  std::string name = nameOrBytes(unit.address);
  const std::string where = unit.firstMessage == unit.lastMessage
                                ? fmt::format("message {}", unit.lastMessage)
                                : fmt::format("messages {} to {}", unit.firstMessage, unit.lastMessage);
  const std::size_t count = unit.blocks.size();
  switch (unit.state) {
    case UnitReport::State::complete:
      return fmt::format("{}: complete ({})", name, where);
    case UnitReport::State::incomplete:
      return fmt::format("{}: {} missing ({}): {}", name, counted(count, "block"), where, describeBlocks(unit.blocks));
    case UnitReport::State::abandoned:
      return fmt::format("{}: abandoned ({}), by {} at message {}", name, where, unit.cause, unit.lastMessage);
    case UnitReport::State::open:
      return fmt::format("{}: still open at the end, without footer (from message {})", name, unit.firstMessage);
    case UnitReport::State::outside:
      return fmt::format("{}: no open header admits this block ({})", describeAddress(unit.address), where);
    case UnitReport::State::strayFooter:
      return fmt::format("{} closes no open header ({})", describeAddress(unit.address), where);
    case UnitReport::State::written:
      if (count == 0) return fmt::format("{}: no whole file dump to write ({})", name, where);
      return fmt::format("{}: {}{} ({}): {}", name, counted(count, "file dump"),
                         unit.removes.empty() ? "" : fmt::format(" written, removes {}", unit.removes.size()), where,
                         describeBlocks(unit.blocks));
    case UnitReport::State::held:
      return fmt::format("{} still held at the end, without write trigger (from message {}): {}",
                         counted(count, "file dump"), unit.firstMessage, describeBlocks(unit.blocks));
    case UnitReport::State::discarded:
      if (count == 0) return fmt::format("{}: can be requested, but not stored ({})", name, where);
      return fmt::format("{}: can be requested, but not stored ({}); it discards {}: {}", name, where,
                         counted(count, "held file dump"), describeBlocks(unit.blocks));
  }
  return name;
}

}  // namespace

std::string describeUnit(const UnitReport& unit) {
  return describeState(unit) + (unit.note.empty() ? "" : "; " + unit.note);
}

}  // namespace Editor
