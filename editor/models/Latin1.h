#pragma once

#include <string>
#include <string_view>

namespace Editor {

// Names are bytes of ISO 8859-1; JSON and terminals take UTF-8.
inline std::string latin1ToUtf8(std::string_view latin1) {
  std::string utf8;
  for (const char c : latin1) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += char(0xC0 | (byte >> 6));
      utf8 += char(0x80 | (byte & 0x3F));
    }
  }
  return utf8;
}

}  // namespace Editor
