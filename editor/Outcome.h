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

// Whether anything went wrong: storage that runs out in the module leaves no line in the log, only its id on the
// screen.
bool hasFailed(const AssistantHost::Effects& effects);

// What a message's effects mean: the assistant's result alone does not tell how a dump fared. `libraryChanged`: the
// message is a footer or a trigger that stored or removed something.
Outcome outcomeOf(const AssistantHost::Effects& effects, const Reading& reading, bool libraryChanged);

// "BulkMsg_BulkDump" ...
const char* nameOf(BDA::BulkMsgType result);

}  // namespace Editor
