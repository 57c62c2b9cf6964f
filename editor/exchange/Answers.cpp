#include "exchange/Answers.h"

#include <fmt/format.h>

#include <algorithm>

#include "midi/MidiFile.h"

namespace Editor {

std::string whyUnsendable(const std::vector<AssistantHost::Sent>& sent) {
  for (const AssistantHost::Sent& message : sent) {
    if (isSevenBit(message.bytes)) continue;
    const auto bad =
        std::find_if(message.bytes.begin() + 1, message.bytes.end(), [](std::uint8_t byte) { return byte > 0x7F; });
    return fmt::format("its answer has {:02X} at byte {}, which is no MIDI data byte",
                       bad == message.bytes.end() ? 0 : *bad, bad - message.bytes.begin());
  }
  return {};
}

std::string whyUnanswered(const Record& record) {
  switch (record.outcome) {
    case Outcome::answered:
      return whyUnsendable(record.sent);
    case Outcome::refused:
      return record.reason;
    case Outcome::nothingToSend:
      return "there is nothing to send";
    default:
      return "requests that arrive on this port are not answered";
  }
}

}  // namespace Editor
