#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "midi/StreamJoiner.h"

namespace Editor {

// MIDI bytes as text: two hex digits each, in either case, with any or no blanks and line ends between; # begins a
// comment, which ends with its line. Written with one message a line, it is read however it is broken into lines.

inline constexpr std::string_view kHexBlanks = " \t\r\n";
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";  // some programs begin every text with it

// "F0 7D .. F7", with the end of its line.
std::string hexLine(std::span<const std::uint8_t> message);

// Reads such text, arriving in chunks of any size, into a joiner. A line that is anything else is passed over from
// there on and told; it ends a message that is open.
//
// Offsets are those of the text: that of a byte is that of the first of its digits.
class HexTextReader {
 public:
  using TellError = std::function<void(std::uint64_t offset, std::string text)>;
  using VisitByte = std::function<void(std::uint64_t offset, std::uint8_t byte)>;

  // The joiner must outlive the reader. Who wants to know where each byte stands has it visited, before the joiner sees
  // it.
  HexTextReader(StreamJoiner& joiner, TellError tellError, VisitByte visitByte = {})
      : joiner_(joiner), tellError_(std::move(tellError)), visitByte_(std::move(visitByte)) {}
  HexTextReader(const HexTextReader&) = delete;
  HexTextReader& operator=(const HexTextReader&) = delete;

  void feed(std::span<const std::uint8_t> chunk);
  // The text ends here, and so does the stream.
  void finish();

 private:
  void take(char c);
  void takeDigit(unsigned digit);
  void pass();  // on to the joiner what has been read
  void fail();

  StreamJoiner& joiner_;
  TellError tellError_;
  VisitByte visitByte_;
  std::uint64_t offset_ = 0;  // of the next character
  std::uint64_t line_ = 1;
  bool isPassedOver_ = false;      // the rest of the line
  std::optional<unsigned> high_;   // the first digit of a byte
  std::vector<std::uint8_t> run_;  // bytes of one line to be passed on; nothing begins but with the first of them
  std::uint64_t runOffset_ = 0;
};

}  // namespace Editor
