#include "messages/Text.h"

#include <fmt/format.h>

#include "midi/Counted.h"
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

std::string showValue(const ParameterValue& value) {
  if (const auto* const number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* const name = std::get_if<std::string>(&value)) return fmt::format("\"{}\"", showName(*name));
  if (std::holds_alternative<std::monostate>(value)) return "damaged";
  return counted(std::get<std::vector<std::uint8_t>>(value).size(), "byte");
}

}  // namespace Editor
