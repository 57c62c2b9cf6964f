#include "wire/Intake.h"

#include "exchange/Handover.h"

namespace Editor {

std::optional<std::string> Intake::store(const std::vector<Messages>& units) {
  EmbeddedEditor::Run run(editor_);
  bool areHeld = false;  // file dumps, for which there has been no trigger yet
  const auto whyRefused = [&](const std::vector<std::uint8_t>& message) -> std::optional<std::string> {
    const Record record = editor_.handle(message, BDA::DevicePort_Main, ++number_);
    areHeld = record.reading.role == Role::fileDump;
    if (record.outcome == Outcome::refused) return record.reason;
    return std::nullopt;
  };
  const auto whyNotWritten = [&] {
    return areHeld ? whyRefused(writeTrigger(deviceNumberOf(editor_.tools()))) : std::nullopt;
  };
  for (const Messages& messages : units) {
    if (readMessage(messages.front()).role != Role::fileDump)
      if (std::optional<std::string> why = whyNotWritten()) return why;
    for (const std::vector<std::uint8_t>& message : messages)
      if (std::optional<std::string> why = whyRefused(message)) return why;
  }
  if (std::optional<std::string> why = whyNotWritten()) return why;
  run.commit();
  return std::nullopt;
}

}  // namespace Editor
