#include "exchange/LogLines.h"

#include <fmt/format.h>

#include <string_view>

#include "messages/Text.h"

namespace Editor {

namespace {

// The log calls the computed checksum the received one, and finds the other by the low part of the byte count alone.
const char* meaningOfChecksum(const Reading& reading) {
  constexpr std::size_t kLowPart = 0x7F;
  if (reading.verdict != Reading::Verdict::checksumWrong)
    return "nothing was computed, for the byte count is wrong: neither number is a checksum to go by";
  if (reading.dataBytes > kLowPart)
    return "\"received\" is what was computed, \"correct\" is a data byte and no checksum";
  return "\"received\" is what was computed, \"correct\" is what the message has";
}

struct Meaning {
  std::string_view beginning;  // of the text
  const char* (*of)(const Reading& reading);
};
constexpr Meaning kMeanings[] = {
    {"Check Sum Error!", meaningOfChecksum},
    {"Wrong Device Number", [](const Reading& /*reading*/) { return "devices are counted from 0 here"; }},
    {"Wrong data length", [](const Reading& /*reading*/) { return "in hexadecimal"; }},
};

}  // namespace

std::vector<std::string> linesOf(const std::vector<std::string>& log, const Reading& reading) {
  std::vector<std::string> lines;
  for (const std::string& text : log) {
    if (text.empty()) continue;
    std::string line = escape(text.substr(0, text.find('\n')));
    for (const Meaning& meaning : kMeanings)
      if (text.compare(0, meaning.beginning.size(), meaning.beginning) == 0)
        line += fmt::format(" ({})", meaning.of(reading));
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace Editor
