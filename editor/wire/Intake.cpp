#include "wire/Intake.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "exchange/Handover.h"

namespace Editor {

Intake::Result Intake::store(const std::vector<Messages>& units) {
  EmbeddedEditor::Run run(editor_);
  Result result;
  const auto hand = [&](const std::vector<std::uint8_t>& message) {
    Record record = editor_.handle(message, BDA::DevicePort_Main, ++number_);
    std::ranges::move(record.changes, std::back_inserter(result.changes.back()));
    if (record.outcome != Outcome::refused) return true;
    const auto state = record.storeError.empty() ? Result::State::refused : Result::State::notStored;
    result = {state, result.changes.size() - 1, std::move(record.reason), {}};
    return false;
  };
  for (const Messages& messages : units) {
    result.changes.emplace_back();
    if (!std::ranges::all_of(messages, hand)) return result;
    // Each file dump has a trigger of its own: what that cannot store is then known by its unit.
    if (readMessage(messages.front()).role == Role::fileDump && !hand(writeTrigger(deviceNumberOf(editor_.tools()))))
      return result;
  }
  run.commit();
  editor_.library().takeChanges();  // or the next message would be told to have made them
  return result;
}

}  // namespace Editor
