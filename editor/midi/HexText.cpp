#include "midi/HexText.h"

#include <utility>

#include "midi/Hex.h"

namespace Editor {

namespace {

constexpr std::uint8_t kFirstStatus = 0x80;
constexpr std::uint8_t kEnd = 0xF7;
constexpr std::size_t kLongestRun = 4096;

}  // namespace

std::string hexLine(std::span<const std::uint8_t> message) { return formatHex(message) + '\n'; }

void HexTextReader::feed(std::span<const std::uint8_t> chunk) {
  for (const std::uint8_t byte : chunk) {
    take(char(byte));
    ++offset_;
  }
}

void HexTextReader::finish() {
  if (high_) fail();
  pass();
  joiner_.finish();
}

void HexTextReader::take(char c) {
  const bool isBlank = kHexBlanks.find(c) != std::string_view::npos;
  const bool isOfMark = offset_ < kUtf8Mark.size() && c == kUtf8Mark[offset_];
  if (!isPassedOver_) {
    if (const std::optional<unsigned> digit = hexDigit(c))
      takeDigit(*digit);
    else if (high_ || (c != '#' && !isBlank && !isOfMark))
      fail();
    else
      isPassedOver_ = c == '#';
  }
  if (c != '\n') return;
  pass();
  isPassedOver_ = false;
  ++line_;
}

void HexTextReader::takeDigit(unsigned digit) {
  if (!high_) {
    high_ = digit;
    return;
  }
  const auto byte = std::uint8_t(*std::exchange(high_, std::nullopt) * 16 + digit);
  const std::uint64_t offset = offset_ - 1;
  if (byte >= kFirstStatus && byte != kEnd) pass();
  if (run_.empty()) runOffset_ = offset;
  if (visitByte_) visitByte_(offset, byte);
  run_.push_back(byte);
  if (byte >= kEnd || run_.size() == kLongestRun) pass();
}

void HexTextReader::pass() {
  if (run_.empty()) return;
  joiner_.skipTo(runOffset_);
  joiner_.feed(run_);
  run_.clear();
}

void HexTextReader::fail() {
  pass();
  joiner_.finish();
  high_.reset();
  isPassedOver_ = true;
  tellError_(offset_, "line " + std::to_string(line_) + ": expected two hex digits a byte, the rest of it is not read");
}

}  // namespace Editor
