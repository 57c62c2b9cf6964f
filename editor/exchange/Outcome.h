#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "exchange/Handover.h"
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

// The readable names of what a message stored or removed, in the order in which it did so: contents, and the edit
// buffer of a footer. Nothing that a run has still to commit.
struct Touched {
  std::vector<std::string> contents;
  std::vector<std::string> removed;  // those of `contents` that are not there in the end
  std::map<std::string, std::string>
      replaced;                      // those of `contents` whose place was not empty, and what that was called
  std::vector<std::string> damaged;  // the places of which what stood there was damaged, also favourite flags
};
Touched touchedBy(const Reading& reading, const Handed& handed);

// What became of it: the assistant's word, joined with what it did to the store.
Outcome outcomeOf(const Reading& reading, const Handed& handed, const Touched& touched);

// "BulkMsg_BulkDump" ...
const char* nameOf(BDA::BulkMsgType result);

}  // namespace Editor
