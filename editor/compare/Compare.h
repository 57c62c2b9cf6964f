#pragma once

#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// One thing in which two libraries differ.
struct Difference {
  enum class Kind : std::uint8_t { onlyInFirst, onlyInSecond, changed };

  std::string target;  // readable: a content, an edit buffer, "system", "additional", "setting mixing-voices"
  Kind kind;
  std::string name;                  // of a content that only one has
  std::vector<std::string> details;  // changed: "voice.common[3]: 1 | 2", "favourite: 0 | 1"
};

// Whether it counts how a library listens to messages: receive-bulk, the device number and the greatest number of
// mixing voices. No message carries that.
enum class Reception : std::uint8_t { compared, ignored };

// Contents by type and number, their favourite flags, then edit buffers, system and settings. Contents in our format
// are compared by parameter, others byte for byte; an edit buffer that was never stored is as new. The live models are
// taken as the editors have them. Throws LibraryError.
std::vector<Difference> compareLibraries(EmbeddedEditor& first, EmbeddedEditor& second, Reception reception);

}  // namespace Editor
