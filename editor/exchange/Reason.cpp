#include "exchange/Reason.h"

#include <fmt/format.h>

#include <algorithm>

#include "EditorNumbers.h"
#include "FileDumpCodec.h"

namespace Editor {

namespace {

constexpr std::size_t kLongestFileDump = 0x3FFF;

// As many data bytes as a file dump of what is stored there would have.
std::size_t fileDumpSize(Library& library, BulkAddress address) {
  const auto packed = [](std::size_t size) { return BDA::FileDumpCodec::packedSize(size); };
  const std::optional<ContentId> id = contentOfFileDump({address.mid, address.lo});
  const std::optional<Library::Content> content = id ? library.content(*id) : std::nullopt;
  return content ? packed(content->name.size()) + packed(content->bytes.size()) + 4 : 0;
}

// What is known better than the assistant's own reason says it; empty: nothing.
std::string reasonOfDump(const Reading& reading, const UnitTracker& units) {
  const BulkAddress address = *reading.address;
  switch (reading.role) {
    case Role::part:
      return units.admits(address) ? "" : "no open header admits this block";
    case Role::footer:
      return units.isClosedBy(address) ? "" : "it closes no open header";
    case Role::fileDump:
      return isWritableFileDump(address) ? "" : "this bank is not stored by file dumps";
    default:
      return {};
  }
}

std::string reasonOfRequest(const Reading& reading, Library& library) {
  if (reading.role == Role::part) return "it is not answered by itself, only with the header that it belongs to";
  if (reading.role != Role::fileDump) return {};
  const std::size_t size = fileDumpSize(library, *reading.address);
  if (size <= kLongestFileDump) return {};
  return fmt::format("its file dump would have {} data bytes, at most {} are possible", size, kLongestFileDump);
}

Reason reasonOfMessage(const Reading& reading, const Handed& handed, const UnitTracker& units, Library& library,
                       const EditorJobTools& tools, bool isDeviceOff) {
  const BDA::BulkDumpRefusal refusal = handed.report.refusal;
  const bool isAboutListening =
      refusal == BDA::BulkDumpRefusal::deviceNumberOff || refusal == BDA::BulkDumpRefusal::receiveSwitchOff;
  const auto same = [](const std::string& words) { return Reason{words, words}; };
  if (isAboutListening) return same(wordsOf(refusal));
  if (refusal == BDA::BulkDumpRefusal::wrongDeviceNumber) {
    const unsigned setting = tools.liveSystem().system->utility.values()[SystemModel::kDeviceNumber];
    return same(fmt::format("it is for device {}, the device number is {}{}", *reading.device,
                            isDeviceOff ? "off, and counts as " : "", setting + 1));
  }
  if (lastShown(handed) == BDA::kMixingVoiceFullMessage) return same(wordsOf(BDA::BulkDumpRefusal::mixingVoicesFull));
  if (isBroken(reading)) return {describeFault(reading), wordOf(reading.verdict)};
  if (!handed.storeError.empty()) return same(handed.storeError);
  std::string reason;
  if (handed.result == BDA::BulkMsg_BulkDump) reason = reasonOfDump(reading, units);
  if (handed.result == BDA::BulkMsg_BulkRequest) reason = reasonOfRequest(reading, library);
  return same(reason.empty() ? wordsOf(refusal) : reason);
}

// The file dumps that a refused write trigger has not written.
std::string heldInVain(const Handed& handed, const UnitTracker& units) {
  std::string names;
  for (const UnitTracker::Held& held : units.held()) {
    const std::optional<ContentId> id = contentOfFileDump({held.address.mid, held.address.lo});
    const auto isIt = [&](const Change& change) { return id && change.place == contentAt(*id); };
    if (std::any_of(handed.changes.begin(), handed.changes.end(), isIt)) continue;
    names += fmt::format("{} {} (message {})", names.empty() ? "; not written:" : ",", nameOrBytes(held.address),
                         held.message);
  }
  return names;
}

}  // namespace

Reason reasonOf(const Reading& reading, const Handed& handed, const UnitTracker& units, Library& library,
                const EditorJobTools& tools, bool isDeviceOff) {
  Reason reason = reasonOfMessage(reading, handed, units, library, tools, isDeviceOff);
  if (reading.kind == Reading::Kind::dump && reading.role == Role::trigger) reason.words += heldInVain(handed, units);
  return reason;
}

}  // namespace Editor
