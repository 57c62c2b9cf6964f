#include "exchange/Outcome.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "AddressRows.h"
#include "EditorNumbers.h"
#include "models/LiveKeys.h"

namespace Editor {

std::uint16_t lastShown(const AssistantHost::Effects& effects) {
  return effects.shown.empty() ? std::uint16_t(0) : effects.shown.back();
}

bool hasFailed(const AssistantHost::Effects& effects) {
  return effects.report.outcome == BDA::BulkDumpOutcome::refused;
}

const char* wordOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::notOurs:
      return "not-ours";
    case Outcome::ignored:
      return "ignored";
    case Outcome::refused:
      return "refused";
    case Outcome::nothingToSend:
      return "nothing-to-send";
    case Outcome::answered:
      return "answered";
    case Outcome::stored:
      return "stored";
    case Outcome::accepted:
      return "accepted";
    case Outcome::completed:
      return "completed";
  }
  return "?";
}

namespace {

using Refusal = BDA::BulkDumpRefusal;

struct Words {
  Refusal refusal;
  const char* words;
};
constexpr Words kWords[] = {
    {Refusal::none, ""},
    {Refusal::malformedMessage, "it is no dump and no request"},
    {Refusal::wrongByteCount, "its byte count does not fit its length"},
    {Refusal::wrongCheckSum, "its checksum is wrong"},
    {Refusal::deviceNumberOff, "the device number is off"},
    {Refusal::wrongDeviceNumber, "it is for another device number"},
    {Refusal::receiveSwitchOff, "receive-bulk is off"},
    {Refusal::wrongMode, "the editor's mode does not admit it"},
    {Refusal::wrongVoiceTypeInMode, "it is for the other type of voice"},
    {Refusal::editCompare, "the editor is comparing"},
    {Refusal::sampleAudition, "the editor is playing a sample"},
    {Refusal::mixingVoicesFull, "there is no room for another mixing voice"},
    {Refusal::unknownModeResult, "the editor's mode is not known"},
    {Refusal::loadingOrSaving, "a content file is being loaded or saved"},
    {Refusal::noBlock, "no block is found at its address"},
    {Refusal::headerMismatch, "it does not fit the open header"},
    {Refusal::unknownHeader, "no unit begins with such a header"},
    {Refusal::unknownVoiceType, "its voice is neither a normal nor a drum voice"},
    {Refusal::wrongBank, "the part selects no bank of voices"},
    {Refusal::notRequestedAlone, "it is not answered by itself, only with the header that it belongs to"},
    {Refusal::requestOnly, "it can only be requested"},
    {Refusal::wrongBlockType, "it belongs to no insertion effect"},
    {Refusal::wrongDataLength, "it has not the number of data bytes of its block"},
    {Refusal::modelMissing, "the editor has no model for it"},
    {Refusal::wrongDirection, "a footer carries nothing to send"},
    {Refusal::dumpNotCreated, "its dump could not be built"},
    {Refusal::blockFailed, "its block failed"},
    {Refusal::noExecuter, "its block has no converter"},
    {Refusal::notLoaded, "it could not be loaded"},
    {Refusal::notStored, "it could not be stored"},
    {Refusal::nameNotFound, "a name could not be found"},
    {Refusal::nameTooLong, "a name is too long"},
    {Refusal::noSuchFavorites, "the bank has no such favorites"},
    {Refusal::favoriteNotSet, "a favorite could not be set"},
    {Refusal::favoriteNotRead, "a favorite could not be read"},
    {Refusal::fileDumpTooLong, "its file dump would have more data bytes than are possible"},
    {Refusal::emptyFileDump, "a file dump has no data bytes"},
    {Refusal::fileDumpNameCutShort, "a file dump ends before its name does"},
    {Refusal::fileDumpDataCutShort, "a file dump ends before its content does"},
    {Refusal::notPacked, "a content could not be packed"},
    {Refusal::notUnpacked, "a file dump could not be unpacked"},
    {Refusal::nameNotUnpacked, "a file dump could not be unpacked"},
    {Refusal::noContentType, "its address names no content"},
    {Refusal::noContentNumber, "its address names no content"},
    {Refusal::mixingVoicesNotCounted, "the mixing voices could not be counted"},
    {Refusal::mixingVoiceNotRemoved, "a mixing voice could not be removed"},
    {Refusal::overwriteRefused, "the library does not let contents be overwritten"},
    {Refusal::contentNotRemoved, "a content could not be removed"},
    {Refusal::noFilePath, "the library has no place for a content"},
    {Refusal::fileNotOpened, "a content could not be opened"},
    {Refusal::fileNotClosed, "a content could not be closed"},
    {Refusal::dataNotOpened, "a content could not be opened"},
    {Refusal::dataNotClosed, "a content could not be closed"},
    {Refusal::dataNotWritten, "a content could not be written"},
    {Refusal::dataNotRead, "a content could not be read"},
    {Refusal::nameNotSet, "a name could not be set"},
    {Refusal::nameNotRead, "a name could not be read"},
    {Refusal::noBridge, "there is no way to send anything"},
    {Refusal::outOfMemory, "storage ran out"},
    {Refusal::serviceThrew, "the editor failed"},
    {Refusal::notConstructed, "the assistant could not be set up"},
};
static_assert(std::size(kWords) == std::size_t(Refusal::notConstructed) + 1);
static_assert([] {
  for (std::size_t i = 0; i < std::size(kWords); ++i)
    if (std::size_t(kWords[i].refusal) != i) return false;
  return true;
}());

// What became of each place in the end, in the order in which they were changed. What is named besides is stored.
std::vector<Change> byPlace(const std::vector<Change>& steps) {
  std::vector<Change> changes;
  std::map<Place, std::size_t> known;
  for (const Change& step : steps) {
    const auto [at, isNew] = known.emplace(step.place, changes.size());
    if (isNew) {
      changes.push_back(step);
      continue;
    }
    Change& change = changes[at->second];
    if (step.what != What::renamed) change.what = step.what;
    change.after = step.after;
  }
  return changes;
}

std::optional<Place> editBufferStoredBy(const Reading& reading, const Handed& handed) {
  if (handed.report.outcome != BDA::BulkDumpOutcome::handedToStore || reading.role != Role::footer) return std::nullopt;
  const std::optional<EditBuffer> buffer = editBufferOf(reading.address->mid);
  return buffer ? std::optional(liveAt(liveKeyOf(*buffer, reading.address->lo))) : std::nullopt;
}

}  // namespace

const char* wordsOf(BDA::BulkDumpRefusal refusal) { return kWords[std::size_t(refusal)].words; }

Touched touchedBy(const Reading& reading, const Handed& handed) {
  Touched touched;
  if (!handed.isKept) return touched;
  const std::vector<Change> changes = byPlace(handed.changes);
  const auto add = [&](const std::string& name, const std::optional<Standing>& before) {
    touched.contents.push_back(name);
    if (before) touched.replaced.emplace(name, before->name);
  };
  for (const Change& change : changes) {
    if (change.before != change.after || change.wasDamaged) {
      touched.changed.push_back(change);
      touched.changed.back().what = whatBecame(change.place, change.before, change.after);
    }
    if (change.place.kind != Place::Kind::content || change.what == What::renamed) continue;
    add(nameOf(change.place.id), change.before);
    if (!change.after) touched.removed.push_back(touched.contents.back());
  }
  const std::optional<Place> own = editBufferStoredBy(reading, handed);
  if (!own) return touched;
  const auto stored =
      std::find_if(changes.begin(), changes.end(), [&](const Change& one) { return one.place == *own; });
  add(nameOrBytes({BDA::kHeaderHi, reading.address->mid, reading.address->lo}),
      stored == changes.end() ? std::nullopt : stored->before);
  return touched;
}

Outcome outcomeOf(const Reading& reading, const Handed& handed, const Touched& touched) {
  // The header of an empty mixing voice, whatever is wrong with it: its footer says so again, and is acted upon.
  if (reading.kind == Reading::Kind::dump && reading.role == Role::emptyHeader) return Outcome::ignored;
  // The module does not look at how the last step of a write trigger went, and answers a content that cannot be read as
  // an empty one.
  if (!handed.storeError.empty()) return Outcome::refused;
  switch (handed.report.outcome) {
    case BDA::BulkDumpOutcome::notOurs:
      return Outcome::notOurs;
    case BDA::BulkDumpOutcome::ignored:
      return Outcome::ignored;
    case BDA::BulkDumpOutcome::refused:
      return Outcome::refused;
    case BDA::BulkDumpOutcome::nothingToSend:
      return Outcome::nothingToSend;
    case BDA::BulkDumpOutcome::answered:
      return Outcome::answered;
    case BDA::BulkDumpOutcome::accepted:
      return Outcome::accepted;
    case BDA::BulkDumpOutcome::handedToStore:
    case BDA::BulkDumpOutcome::completed:
    case BDA::BulkDumpOutcome::nothingToDo:
      break;
  }
  if (!touched.contents.empty()) return Outcome::stored;
  return handed.shown.empty() ? Outcome::ignored : Outcome::completed;  // the former: no such mixing voice
}

const char* nameOf(BDA::BulkMsgType result) {
  switch (result) {
    case BDA::BulkMsg_BulkDump:
      return "BulkMsg_BulkDump";
    case BDA::BulkMsg_BulkRequest:
      return "BulkMsg_BulkRequest";
    case BDA::BulkMsg_Type1:
      return "BulkMsg_Type1";
    case BDA::BulkMsg_Type3:
      return "BulkMsg_Type3";
    case BDA::BulkMsg_Type4:
      return "BulkMsg_Type4";
    case BDA::BulkMsg_OtherModel:
      return "BulkMsg_OtherModel";
    case BDA::BulkMsg_NotSysEx:
      return "BulkMsg_NotSysEx";
    case BDA::BulkMsg_CheckSumError:
      return "BulkMsg_CheckSumError";
    case BDA::BulkMsg_DeviceNumberOff:
      return "BulkMsg_DeviceNumberOff";
    case BDA::BulkMsg_WrongDeviceNumber:
      return "BulkMsg_WrongDeviceNumber";
    case BDA::BulkMsg_ReceiveSwOff:
      return "BulkMsg_ReceiveSwOff";
    case BDA::BulkMsg_ReceiveError:
      return "BulkMsg_ReceiveError";
    case BDA::BulkMsg_RequestSkipped:
      return "BulkMsg_RequestSkipped";
  }
  return "?";
}

}  // namespace Editor
