#pragma once

#include <functional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "explain/Explain.h"
#include "names/ParameterNames.h"
#include "targets/Targets.h"

namespace Editor {

// Where a parameter travels in what a library's instrument sends.

// A place whose parameters are asked for: one, or all of the system.
struct ParameterPlace {
  Places<BulkAddress> places;
  std::vector<std::string> paths;  // of its parameters
};
// Throws TargetError: noTarget for what is no place, or several, refused for what is not made of parameters.
ParameterPlace parseParameterPlace(const std::string& word);
// The path that a word stands for there, itself or by its name. Throws TargetError (noTarget), and what
// ParameterNames::pathOf throws.
std::string parsePath(const ParameterPlace& place, const std::string& word, const ParameterNames& names);

// The bytes that carry the parameter in what a request of the place is answered by, in their order. Calls
// visitUnanswered(address, why) for a block that is not sent. Throws LibraryError.
std::vector<CarryingByte> bytesOf(EmbeddedEditor& editor, const ParameterPlace& place, const std::string& path,
                                  const std::function<void(BulkAddress, const std::string&)>& visitUnanswered);
// Throws TargetError (refused), which says why there are none though all was answered: another place has them, or none.
[[noreturn]] void refuseUncarried(const ParameterPlace& place, const std::string& path);

}  // namespace Editor
