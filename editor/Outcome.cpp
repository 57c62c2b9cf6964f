#include "Outcome.h"

#include "AddressRows.h"
#include "EditorNumbers.h"

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

const char* wordsOf(BDA::BulkDumpRefusal refusal) {
  using Refusal = BDA::BulkDumpRefusal;
  switch (refusal) {
    case Refusal::none:
      return "";
    case Refusal::malformedMessage:
      return "it is no dump and no request";
    case Refusal::wrongByteCount:
      return "its byte count does not fit its length";
    case Refusal::wrongCheckSum:
      return "its checksum is wrong";
    case Refusal::deviceNumberOff:
      return "the device number is off";
    case Refusal::wrongDeviceNumber:
      return "it is for another device number";
    case Refusal::receiveSwitchOff:
      return "receive-bulk is off";
    case Refusal::wrongMode:
      return "the editor's mode does not admit it";
    case Refusal::wrongVoiceTypeInMode:
      return "it is for the other type of voice";
    case Refusal::editCompare:
      return "the editor is comparing";
    case Refusal::sampleAudition:
      return "the editor is playing a sample";
    case Refusal::mixingVoicesFull:
      return "there is no room for another mixing voice";
    case Refusal::unknownModeResult:
      return "the editor's mode is not known";
    case Refusal::loadingOrSaving:
      return "a content file is being loaded or saved";
    case Refusal::noBlock:
      return "no block is found at its address";
    case Refusal::headerMismatch:
      return "it does not fit the open header";
    case Refusal::unknownHeader:
      return "no unit begins with such a header";
    case Refusal::unknownVoiceType:
      return "its voice is neither a normal nor a drum voice";
    case Refusal::wrongBank:
      return "the part selects no bank of voices";
    case Refusal::notRequestedAlone:
      return "it is not answered by itself, only with the header that it belongs to";
    case Refusal::requestOnly:
      return "it can only be requested";
    case Refusal::wrongBlockType:
      return "it belongs to no insertion effect";
    case Refusal::wrongDataLength:
      return "it has not the number of data bytes of its block";
    case Refusal::modelMissing:
      return "the editor has no model for it";
    case Refusal::wrongDirection:
      return "a footer carries nothing to send";
    case Refusal::dumpNotCreated:
      return "its dump could not be built";
    case Refusal::blockFailed:
      return "its block failed";
    case Refusal::noExecuter:
      return "its block has no converter";
    case Refusal::notLoaded:
      return "it could not be loaded";
    case Refusal::notStored:
      return "it could not be stored";
    case Refusal::nameNotFound:
      return "a name could not be found";
    case Refusal::nameTooLong:
      return "a name is too long";
    case Refusal::noSuchFavorites:
      return "the bank has no such favorites";
    case Refusal::favoriteNotSet:
      return "a favorite could not be set";
    case Refusal::favoriteNotRead:
      return "a favorite could not be read";
    case Refusal::fileDumpTooLong:
      return "its file dump would have more data bytes than are possible";
    case Refusal::emptyFileDump:
      return "a file dump has no data bytes";
    case Refusal::fileDumpNameCutShort:
      return "a file dump ends before its name does";
    case Refusal::fileDumpDataCutShort:
      return "a file dump ends before its content does";
    case Refusal::notPacked:
      return "a content could not be packed";
    case Refusal::notUnpacked:
      return "a file dump could not be unpacked";
    case Refusal::noContentType:
    case Refusal::noContentNumber:
      return "its address names no content";
    case Refusal::mixingVoicesNotCounted:
      return "the mixing voices could not be counted";
    case Refusal::mixingVoiceNotRemoved:
      return "a mixing voice could not be removed";
    case Refusal::overwriteRefused:
      return "the library does not let contents be overwritten";
    case Refusal::contentNotRemoved:
      return "a content could not be removed";
    case Refusal::noFilePath:
      return "the library has no place for a content";
    case Refusal::fileNotOpened:
    case Refusal::dataNotOpened:
      return "a content could not be opened";
    case Refusal::fileNotClosed:
    case Refusal::dataNotClosed:
      return "a content could not be closed";
    case Refusal::dataNotWritten:
      return "a content could not be written";
    case Refusal::dataNotRead:
      return "a content could not be read";
    case Refusal::nameNotSet:
      return "a name could not be set";
    case Refusal::nameNotRead:
      return "a name could not be read";
    case Refusal::noBridge:
      return "there is no way to send anything";
    case Refusal::outOfMemory:
      return "storage ran out";
    case Refusal::serviceThrew:
      return "the editor failed";
    case Refusal::notConstructed:
      return "the assistant could not be set up";
  }
  return "?";
}

Outcome outcomeOf(const AssistantHost::Effects& effects, const Reading& reading, bool libraryChanged) {
  const bool isDump = reading.kind == Reading::Kind::dump;
  // The header of an empty mixing voice, whatever is wrong with it: its footer says so again, and is acted upon.
  if (isDump && reading.address->hi == BDA::kHeaderHi && marksEmptyVoice(*reading.address)) return Outcome::ignored;
  switch (effects.report.outcome) {
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
  if (libraryChanged) return Outcome::stored;
  return effects.shown.empty() ? Outcome::ignored : Outcome::completed;  // the former: no such mixing voice
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
