#include "convert/Batch.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "bda/BulkDumpAssistant.h"
#include "messages/Messages.h"
#include "targets/TargetJson.h"

namespace Editor {

namespace {

// What a trigger has written, by the numbers of the messages.
std::vector<std::uint64_t> fileDumpsOf(const UnitReport& report) {
  if (report.state != UnitReport::State::written) return {};
  return {report.messages.begin(), report.messages.end() - 1};
}

}  // namespace

std::vector<std::vector<std::size_t>> Batch::messagesByUnit() const {
  std::vector<std::vector<std::size_t>> found(units.size());
  for (std::size_t i = 0; i < messages.size(); ++i)
    if (messages[i].unit) found[*messages[i].unit].push_back(i);
  return found;
}

std::string describe(const Batch::BrokenMessage& message) {
  return fmt::format("{}: broken (message {}): {}",
                     message.address ? nameOrBytes(*message.address) : "of no known type", message.message,
                     message.why);
}

void BatchBuilder::add(std::span<const std::uint8_t> message) {
  batch_.messages.push_back({{message.begin(), message.end()}});
  const std::uint64_t number = batch_.messages.size();
  const Reading reading = readMessage(message);
  const bool isFileDump = reading.kind == Reading::Kind::dump && reading.role == Role::fileDump;
  if (isBroken(reading)) {
    batch_.brokenMessages.push_back({reading.address, isFileDump, number, describeFault(reading)});
    const bool bounds = reading.role == Role::header || reading.role == Role::footer;
    if (reading.role == Role::part || (bounds && reading.verdict == Reading::Verdict::blockLengthWrong))
      brokenBlocks_.insert(number);
  } else if (isFileDump) {
    const BulkAddress address = *reading.address;
    const ContentKind kind = contentKindOf(*contentNamedBy(address));
    found_.push_back(
        {{Batch::Unit::Form::fileDump, placeNameOf(address), address, kind, reading.removes.has_value()}, {number}});
  }
  take(follower_.next(reading, number));
  if (reading.role != Role::fileDump && reading.role != Role::trigger) return;
  for (const UnitReport& report : fileDumpFollowers_[*reading.device].next(reading, number))
    for (const std::uint64_t fileDump : fileDumpsOf(report)) writtenBy_.emplace(fileDump, number);
}

void BatchBuilder::addJson(nlohmann::ordered_json object, std::string source) {
  Batch::Unit unit{Batch::Unit::Form::json, {}, std::nullopt};
  if (const auto target = object.is_object() ? object.find("target") : object.end(); target != object.end()) {
    try {
      unit.target = target->is_string() ? target->get<std::string>() : target->dump();
      unit.place = placeNameOf(parseTarget(unit.target));
    } catch (const TargetError& error) {
      throw TargetJsonError(std::string("target: ") + error.what());
    }
    object.erase(target);
  }
  unit.object = std::move(object);
  unit.source = std::move(source);
  batch_.messages.emplace_back();
  found_.push_back({std::move(unit), {batch_.messages.size()}});
}

Batch BatchBuilder::finish() {
  take(follower_.finish());
  leaveOutLackingBlocks();
  std::stable_sort(found_.begin(), found_.end(),
                   [](const Found& a, const Found& b) { return a.messages.front() < b.messages.front(); });
  for (Found& found : found_) {
    for (const std::uint64_t number : found.messages) batch_.messages[number - 1].unit = batch_.units.size();
    batch_.units.push_back(std::move(found.unit));
  }
  for (const auto& [fileDump, trigger] : writtenBy_)
    batch_.messages[trigger - 1].writes.push_back(*batch_.messages[fileDump - 1].unit);
  return std::move(batch_);
}

void BatchBuilder::take(const std::vector<UnitReport>& reports) {
  for (const UnitReport& report : reports) {
    switch (report.state) {
      case UnitReport::State::complete:
        found_.push_back(
            {{Batch::Unit::Form::blocks, placeNameOf(report.address), report.address, kindOfBlocks(report)},
             report.messages});
        break;
      case UnitReport::State::written:  // for whatever device: those of their own are followed by themselves
      case UnitReport::State::held:
      case UnitReport::State::discarded:
        break;
      default:
        batch_.broken.push_back(report);
    }
  }
}

// What is told of their unit is enough.
void BatchBuilder::leaveOutLackingBlocks() {
  std::set<std::uint64_t> lacking;
  for (const UnitReport& unit : batch_.broken)
    lacking.insert(brokenBlocks_.lower_bound(unit.firstMessage), brokenBlocks_.upper_bound(unit.lastMessage));
  std::erase_if(batch_.brokenMessages, [&](const auto& broken) { return lacking.contains(broken.message); });
}

// By its blocks: the header of a part's voice does not tell.
ContentKind BatchBuilder::kindOfBlocks(const UnitReport& report) const {
  for (const std::uint64_t number : report.messages) {
    switch (BDA::List(BDA::listOf(batch_.messages[number - 1].bytes[BDA::kDumpAddressAt]))) {
      case BDA::List::drumVoice:
        return ContentKind::drum;
      case BDA::List::multi:
        return ContentKind::multi;
      case BDA::List::performance:
        return ContentKind::performance;
      case BDA::List::master:
        return ContentKind::master;
      case BDA::List::remote:
        return ContentKind::remote;
      default:
        break;
    }
  }
  return ContentKind::voice;
}

void readdress(std::vector<std::uint8_t>& dump, BulkAddress address) {
  dump[BDA::kDumpAddressAt] = address.hi;
  dump[BDA::kDumpAddressAt + 1] = address.mid;
  dump[BDA::kDumpAddressAt + 2] = address.lo;
  dump[dump.size() - 2] = std::uint8_t(BDA::Utility::calcCheckSum(dump.data(), dump.size()));
}

void setDevice(std::vector<std::uint8_t>& message, unsigned device) {
  if (readMessage(message).device) message[2] = std::uint8_t((message[2] & BDA::kTypeMask) | (device - 1));
}

std::vector<std::uint8_t> triggerFor(std::span<const std::uint8_t> fileDump) {
  return writeTrigger(std::uint8_t(*readMessage(fileDump).device - 1));
}

}  // namespace Editor
