#include "exchange/WholeUnits.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace Editor {

namespace {

const UnitReport* find(const std::vector<UnitReport>& ended, UnitReport::State state) {
  const auto found = std::ranges::find(ended, state, &UnitReport::state);
  return found == ended.end() ? nullptr : &*found;
}

// A header or footer of the wrong length for its block, which the instrument takes all the same.
bool beginsOrEndsUnit(const Reading& reading, const std::vector<UnitReport>& ended) {
  if (reading.verdict != Reading::Verdict::blockLengthWrong) return false;
  return reading.role == Role::header ||
         (reading.role == Role::footer && find(ended, UnitReport::State::strayFooter) == nullptr);
}

}  // namespace

std::vector<WholeUnits::Decided> WholeUnits::next(Message message, bool isHeard) {
  if (!isHeard && message.reading.kind == Reading::Kind::dump) {
    handOn(std::move(message));
    return std::exchange(decided_, {});
  }
  const std::vector<UnitReport> ended = follower_.next(message.reading, message.number);
  const UnitReport* const abandoned = find(ended, UnitReport::State::abandoned);
  if (abandoned != nullptr && message.reading.role != Role::footer) refuse(unit_, *abandoned);
  decide(std::move(message), ended);
  return std::exchange(decided_, {});
}

std::vector<WholeUnits::Decided> WholeUnits::finish() {
  for (const UnitReport& unit : follower_.finish())
    refuse(unit.state == UnitReport::State::held ? fileDumps_ : unit_, unit);
  return std::exchange(decided_, {});
}

void WholeUnits::decide(Message message, const std::vector<UnitReport>& ended) {
  const Reading& reading = message.reading;
  const bool mayBeFileDump = reading.role == Role::fileDump || reading.role == Role::unknown;
  if (isBroken(reading) && mayBeFileDump && reading.kind != Reading::Kind::request)
    missFileDump(fmt::format("message {}: {}: {}", message.number, describeContent(reading), describeFault(reading)));
  if (reading.kind != Reading::Kind::dump && !isRemainder(reading)) return handOn(std::move(message));
  if (isBroken(reading)) {
    std::string why = describeContent(reading) + ": " + describeFault(reading);
    if (!beginsOrEndsUnit(reading, ended)) return refuse(std::move(message), std::move(why));
    unit_.fault = std::move(why);
  }
  switch (reading.role) {
    case Role::header:
      return wait(unit_, std::move(message));
    case Role::part:
      if (const UnitReport* const outside = find(ended, UnitReport::State::outside))
        return refuse(std::move(message), describeUnit(*outside));
      return wait(unit_, std::move(message));
    case Role::footer:
      if (find(ended, UnitReport::State::complete) != nullptr) return release(unit_, std::move(message));
      if (find(ended, UnitReport::State::strayFooter) != nullptr)
        return refuse(std::move(message), describeUnit(ended.back()));
      unit_.messages.push_back(std::move(message));
      return refuse(unit_, ended.back());
    case Role::fileDump:
      wait(fileDumps_, std::move(message));
      if (const UnitReport* const discarded = find(ended, UnitReport::State::discarded)) {
        missFileDump(describeUnit(*discarded));
        refuse(fileDumps_, *discarded);
      }
      return;
    case Role::trigger:
      return releaseFileDumps(std::move(message));
    case Role::alone:
    case Role::unknown:
    case Role::emptyHeader:
    case Role::emptyFooter:
      return handOn(std::move(message));
  }
}

void WholeUnits::wait(Waiting& waiting, Message message) {
  const std::string what = describeContent(message.reading);
  waiting.bytes += message.bytes.size();
  waiting.isTooMuch = waiting.isTooMuch || waiting.bytes > mostBytes_;
  waiting.messages.push_back(std::move(message));
  if (waiting.isTooMuch) {
    decided_.push_back({std::exchange(waiting.messages, {}),
                        fmt::format("{}: more than {} bytes would have to be held back", what, mostBytes_)});
  }
}

void WholeUnits::release(Waiting& waiting, Message last) {
  if (waiting.isTooMuch) {
    wait(waiting, std::move(last));
    waiting = {};
    return;
  }
  Waiting whole = std::exchange(waiting, {});
  whole.messages.push_back(std::move(last));
  decided_.push_back({std::move(whole.messages), {}});
}

void WholeUnits::releaseFileDumps(Message trigger) {
  const std::string missing = std::exchange(missing_, {});
  if (missing.empty() || *trigger.reading.address == kWriteTrigger) return release(fileDumps_, std::move(trigger));
  Waiting refused = std::exchange(fileDumps_, {});
  refused.messages.push_back(std::move(trigger));
  decided_.push_back(
      {std::move(refused.messages),
       fmt::format("all mixing voices would be removed, and not all file dumps are whole: {}", missing)});
}

void WholeUnits::missFileDump(const std::string& why) {
  if (missing_.empty()) missing_ = why;
}

void WholeUnits::refuse(Waiting& waiting, const UnitReport& unit) {
  Waiting refused = std::exchange(waiting, {});
  if (refused.messages.empty()) return;
  decided_.push_back({std::move(refused.messages), refused.fault.empty() ? describeUnit(unit) : refused.fault});
}

void WholeUnits::refuse(Message message, std::string why) {
  decided_.emplace_back();
  decided_.back().messages.push_back(std::move(message));
  decided_.back().refusal = std::move(why);
}

void WholeUnits::handOn(Message message) {
  decided_.emplace_back();
  decided_.back().messages.push_back(std::move(message));
}

}  // namespace Editor
