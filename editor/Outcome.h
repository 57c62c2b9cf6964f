#pragma once

#include <cstdint>

#include "AssistantHost.h"
#include "messages/Messages.h"

namespace Editor {

// What became of a message, in the words of the trace.
enum class Outcome : std::uint8_t {
  notOurs,
  ignored,
  refused,
  nothingToSend,
  answered,
  stored,
  accepted,
  completed,
};
const char* wordOf(Outcome outcome);

// The id that stands on the screen after the message; 0: it has shown none.
std::uint16_t lastShown(const AssistantHost::Effects& effects);

// Whether the assistant refused it.
bool hasFailed(const AssistantHost::Effects& effects);
// Why, for its user.
const char* wordsOf(BDA::BulkDumpRefusal refusal);

// What a message's effects mean: the assistant's result alone does not tell how a dump fared. `libraryChanged`: the
// message is a footer or a trigger that stored or removed something.
Outcome outcomeOf(const AssistantHost::Effects& effects, const Reading& reading, bool libraryChanged);

// "BulkMsg_BulkDump" ...
const char* nameOf(BDA::BulkMsgType result);

}  // namespace Editor
