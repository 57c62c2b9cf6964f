#pragma once

#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// Why the messages of an answer may not leave as they are: one is not 7-bit. Empty: they may.
std::string whyUnsendable(const std::vector<AssistantHost::Sent>& sent);

// Why the record of a request is no whole answer that can leave; empty: it is one.
std::string whyUnanswered(const Record& record);

}  // namespace Editor
