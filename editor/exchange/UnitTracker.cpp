#include "exchange/UnitTracker.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "EditorNumbers.h"

namespace Editor {

namespace {

// From here on the shown ids tell that the open header was forgotten.
constexpr std::uint16_t kFirstResettingId = BDA::kReceiveSwitchOffMessage;

bool completesByItself(Role role) { return role == Role::footer || role == Role::trigger || role == Role::alone; }

// Whether the assistant now waits for a header again.
bool hasForgottenHeader(const Reading& reading, const Handed& handed) {
  if (handed.shown.empty()) return false;
  switch (handed.result) {
    case BDA::BulkMsg_BulkDump:
      return (handed.report.isTaken && completesByItself(reading.role)) || lastShown(handed) >= kFirstResettingId;
    case BDA::BulkMsg_BulkRequest:
    case BDA::BulkMsg_RequestSkipped:
    case BDA::BulkMsg_DeviceNumberOff:
    case BDA::BulkMsg_WrongDeviceNumber:
    case BDA::BulkMsg_ReceiveSwOff:
    case BDA::BulkMsg_ReceiveError:
      return true;
    default:
      return false;
  }
}

std::string noteOf(const std::vector<std::uint64_t>& doubtful) {
  if (doubtful.empty()) return {};
  return fmt::format("refused, and in it all the same, is what {} {} carried",
                     doubtful.size() == 1 ? "message" : "messages", fmt::join(doubtful, ", "));
}

}  // namespace

std::vector<UnitReport> UnitTracker::follow(const Reading& reading, const Handed& handed, Outcome outcome,
                                            std::uint64_t number) {
  // A dump whose length is wrong is refused in words, but taken when the byte where its checksum should be is 0. What
  // it stored is taken back.
  const bool isDoubtful = hasFailed(handed) && handed.report.isTaken && !completesByItself(reading.role);
  const Message message{reading, handed, outcome, number, isDoubtful};
  if (handed.result == BDA::BulkMsg_BulkDump && reading.address && !handed.shown.empty()) take(message);
  if (hasForgottenHeader(reading, handed)) abandon(message);
  return std::exchange(ended_, {});
}

void UnitTracker::take(const Message& message) {
  const bool isRefused = message.outcome == Outcome::refused;
  const bool isTaken = message.isDoubtful || (!isRefused && message.outcome != Outcome::ignored);
  const BulkAddress address = *message.reading.address;
  if (message.reading.role == Role::trigger) return endHeld(message, UnitReport::State::written);
  if (isTaken && message.reading.role == Role::header) begin(message);
  if (message.isDoubtful && open_) doubtful_.push_back(message.number);
  if (isTaken && message.reading.role == Role::footer && isClosedBy(address))
    close(message);
  else if (isTaken && message.reading.role == Role::fileDump)
    hold(message);
  else if (isTaken && open_)
    open_->arrive(address);
  const bool isDiscarding = message.reading.role == Role::fileDump && isRefused &&
                            lastShown(message.handed) >= kFirstResettingId && !held_.empty();
  if (isDiscarding) endHeld(message, UnitReport::State::discarded);
}

void UnitTracker::begin(const Message& message) {
  const BulkAddress header = *message.reading.address;
  abandon(message);
  open_.emplace(header, message.number);
  doubtful_.clear();
  if (editBufferOf(header.mid) == EditBuffer::partVoice)
    open_->expectVoice(tools_.live(EditBuffer::partVoice, header.lo).voice->isDrum());
}

void UnitTracker::close(const Message& message) {
  UnitReport unit{UnitReport::State::complete,
                  open_->firstMessage(),
                  message.number,
                  open_->header(),
                  open_->missing(),
                  {},
                  noteOf(doubtful_)};
  if (!unit.blocks.empty()) unit.state = UnitReport::State::incomplete;
  ended_.push_back(std::move(unit));
  open_.reset();
}

void UnitTracker::abandon(const Message& message) {
  if (!open_) return;
  std::string cause = describeContent(message.reading);
  if (message.outcome == Outcome::refused) cause += ", which was refused,";
  ended_.push_back({UnitReport::State::abandoned, open_->firstMessage(), message.number, open_->header(), {}, cause});
  open_.reset();
}

// A dump that comes again takes the place of the one that is held, and a mixing voice has two addresses.
void UnitTracker::hold(const Message& message) {
  const BulkAddress address = *message.reading.address;
  const auto same = std::find_if(held_.begin(), held_.end(), [&](const Held& held) { return held.address == address; });
  if (same == held_.end())
    held_.push_back({address, message.number, message.isDoubtful});
  else
    same->isDoubtful = message.isDoubtful;
  const std::optional<ContentId> content = contentOfFileDump({address.mid, address.lo});
  if (!content) return;
  if (message.reading.isNamed)
    nameless_.erase(canonical(*content));
  else
    nameless_.insert(canonical(*content));
}

void UnitTracker::endHeld(const Message& message, UnitReport::State state) {
  UnitReport unit{
      state, held_.empty() ? message.number : held_.front().message, message.number, *message.reading.address, {}, {},
      {}};
  std::vector<std::uint64_t> doubtful;
  for (const Held& held : held_) {
    unit.blocks.push_back(held.address);
    if (held.isDoubtful) doubtful.push_back(held.message);
  }
  if (state == UnitReport::State::written) unit.note = noteOf(doubtful);
  ended_.push_back(std::move(unit));
  held_.clear();
  nameless_.clear();
}

std::vector<UnitReport> UnitTracker::open() const {
  std::vector<UnitReport> units;
  if (open_)
    units.push_back(
        {UnitReport::State::open, open_->firstMessage(), open_->firstMessage(), open_->header(), open_->missing(), {}});
  if (!held_.empty()) {
    UnitReport unit{
        UnitReport::State::held, held_.front().message, held_.back().message, held_.front().address, {}, {}};
    for (const Held& held : held_) unit.blocks.push_back(held.address);
    units.push_back(std::move(unit));
  }
  return units;
}

}  // namespace Editor
