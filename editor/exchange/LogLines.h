#pragma once

#include <string>
#include <vector>

#include "messages/Messages.h"

namespace Editor {

// The assistant's log of one message for people, a line for each text. The texts are as the editor relies on them;
// where one says something in other terms than everybody else does, what it means stands behind it.
std::vector<std::string> linesOf(const std::vector<std::string>& log, const Reading& reading);

}  // namespace Editor
