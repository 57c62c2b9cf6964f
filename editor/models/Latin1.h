#pragma once

#include <optional>
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

// Nothing when a character is none of U+0001 to U+00FF.
inline std::optional<std::string> utf8ToLatin1(std::string_view utf8) {
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead == 0) return std::nullopt;
    if (lead < 0x80) {
      bytes += utf8[i];
      continue;
    }
    if ((lead != 0xC2 && lead != 0xC3) || i + 1 == utf8.size()) return std::nullopt;
    const auto trail = static_cast<unsigned char>(utf8[++i]);
    if ((trail & 0xC0) != 0x80) return std::nullopt;
    bytes += char((lead & 0x03) << 6 | (trail & 0x3F));
  }
  return bytes;
}

}  // namespace Editor
