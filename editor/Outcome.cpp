#include "Outcome.h"

#include "AddressRows.h"
#include "EditorNumbers.h"

namespace Editor {

std::uint16_t lastShown(const AssistantHost::Effects& effects) {
  return effects.shown.empty() ? std::uint16_t(0) : effects.shown.back();
}

bool hasFailed(const AssistantHost::Effects& effects) {
  return !effects.log.empty() || lastShown(effects) >= BDA::kCheckSumErrorMessage;  // the first of the errors
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

Outcome outcomeOf(const AssistantHost::Effects& effects, const Reading& reading, bool libraryChanged) {
  const bool isDump = reading.kind == Reading::Kind::dump;
  // The header of an empty mixing voice, whatever is wrong with it: its footer says so again, and is acted upon.
  if (isDump && reading.address->hi == BDA::kHeaderHi && marksEmptyVoice(*reading.address)) return Outcome::ignored;
  switch (effects.result) {
    case BDA::BulkMsg_OtherModel:
    case BDA::BulkMsg_NotSysEx:
      return Outcome::notOurs;
    case BDA::BulkMsg_Type1:
    case BDA::BulkMsg_Type3:
    case BDA::BulkMsg_Type4:
      return Outcome::ignored;
    case BDA::BulkMsg_DeviceNumberOff:
    case BDA::BulkMsg_WrongDeviceNumber:
      return effects.shown.empty() ? Outcome::ignored : Outcome::refused;
    case BDA::BulkMsg_CheckSumError:
    case BDA::BulkMsg_ReceiveSwOff:
    case BDA::BulkMsg_ReceiveError:
      return Outcome::refused;
    case BDA::BulkMsg_RequestSkipped:
      return hasFailed(effects) ? Outcome::refused : Outcome::nothingToSend;
    case BDA::BulkMsg_BulkRequest:
      if (hasFailed(effects)) return Outcome::refused;
      return effects.sent.empty() ? Outcome::ignored : Outcome::answered;
    case BDA::BulkMsg_BulkDump:
      break;
  }
  if (hasFailed(effects)) return Outcome::refused;
  if (libraryChanged) return Outcome::stored;
  if (effects.shown.empty()) return Outcome::ignored;
  return lastShown(effects) == BDA::kReceiving ? Outcome::accepted : Outcome::completed;
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
