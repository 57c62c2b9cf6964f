#include "messages/Text.h"

#include <fmt/format.h>

#include "models/Latin1.h"

namespace Editor {

std::string escape(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F)
      safe += fmt::format("\\x{:02X}", byte);
    else
      safe += c;
  }
  return safe;
}

std::string showName(std::string_view latin1) {
  std::string safe;
  for (const char c : latin1) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0)) {
      safe += fmt::format("\\x{:02X}", byte);
    } else {
      safe += latin1ToUtf8({&c, 1});
    }
  }
  return safe;
}

}  // namespace Editor
