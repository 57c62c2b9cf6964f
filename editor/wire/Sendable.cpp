#include "wire/Sendable.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

#include "convert/InEditBuffers.h"
#include "midi/Counted.h"

namespace Editor {

namespace {

std::vector<MessageFault> faultsIn(const Batch& batch, bool isToBeStored) {
  std::vector<MessageFault> faults;
  for (const UnitReport& unit : batch.broken) faults.push_back({wordOf(unit.state), describeUnit(unit)});
  for (const Batch::BrokenMessage& message : batch.brokenMessages)
    faults.push_back({"broken message", describe(message)});
  if (!isToBeStored) return faults;
  for (const std::size_t unit : unwrittenIn(batch))
    faults.push_back({"without a write trigger",
                      fmt::format("{}: its file dump has no write trigger: the instrument would not store it",
                                  batch.units[unit].place)});
  return faults;
}

}  // namespace

Sendable sendableOf(Batch batch, const Sendable::Options& options) {
  using Why = Sendable::Why;
  Sendable sendable;
  const auto refuse = [&](Why why, std::string words) {
    sendable.why = why;
    sendable.words = std::move(words);
    return std::move(sendable);
  };
  const auto leaveOut = [&](std::uint64_t messages, const char* why) {
    if (messages > 0) sendable.leftOut.push_back(fmt::format("{} left out: {}", counted(messages, "message"), why));
  };
  sendable.faults = faultsIn(batch, !options.toEditBuffers);
  if (!sendable.faults.empty()) return refuse(Why::isBroken, "it is not whole: nothing is sent");
  if (options.toEditBuffers) {
    const InEditBuffers placed = placeInEditBuffers(batch);
    if (const auto& clash = placed.clash)
      return refuse(Why::isUnusable, fmt::format("{} and {} would both go to {}, which holds one: nothing is sent",
                                                 clash->first, clash->second, clash->buffer));
    leaveOut(placed.leftOut, "no edit buffer takes them");
  }
  SendPlan plan(batch);
  leaveOut(plan.leftOut, "no dumps for this instrument");
  if (plan.units.empty()) return refuse(Why::isUnusable, "no dump for this instrument: nothing is sent");
  if (plan.devices.size() > 1 && options.asks)
    return refuse(
        Why::isUnusable,
        fmt::format("its messages are for different devices ({}): nobody can be asked for them, nothing is sent",
                    fmt::join(plan.devices, ", ")));
  sendable.plan = std::move(plan);
  return sendable;
}

}  // namespace Editor
