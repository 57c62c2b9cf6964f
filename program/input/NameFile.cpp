#include "input/NameFile.h"

#include <fmt/format.h>

#include "ExitCode.h"
#include "messages/Text.h"
#include "midi/MidiFile.h"

namespace Editor {

NameLists loadNames(const std::string& file) {
  std::string error;
  NameLists names;
  if (const auto bytes = loadBytes(file, error))
    error = parseNames({reinterpret_cast<const char*>(bytes->data()), bytes->size()}, names);
  if (!error.empty()) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error));
  return names;
}

}  // namespace Editor
