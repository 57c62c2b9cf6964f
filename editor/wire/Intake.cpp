#include "wire/Intake.h"

#include <iterator>
#include <utility>

#include "exchange/Handover.h"

namespace Editor {

Intake::Result Intake::store(const std::vector<Messages>& units) {
  EmbeddedEditor::Run run(editor_);
  Result result;
  bool areHeld = false;  // file dumps, for which there has been no trigger yet
  const auto hand = [&](const std::vector<std::uint8_t>& message) {
    Record record = editor_.handle(message, BDA::DevicePort_Main, ++number_);
    areHeld = record.reading.role == Role::fileDump;
    std::ranges::move(record.changes, std::back_inserter(result.changes));
    if (record.outcome != Outcome::refused) return true;
    const auto state = record.storeError.empty() ? Result::State::refused : Result::State::notStored;
    result = {state, std::move(record.reason), {}};
    return false;
  };
  const auto writeHeld = [&] { return !areHeld || hand(writeTrigger(deviceNumberOf(editor_.tools()))); };
  for (const Messages& messages : units) {
    if (readMessage(messages.front()).role != Role::fileDump && !writeHeld()) return result;
    for (const std::vector<std::uint8_t>& message : messages)
      if (!hand(message)) return result;
  }
  if (!writeHeld()) return result;
  run.commit();
  return result;
}

}  // namespace Editor
