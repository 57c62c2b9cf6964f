#include "explain/MessageFile.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "messages/Messages.h"
#include "midi/FileKind.h"

namespace Editor {

namespace {

constexpr std::uint8_t kFirstRealTime = 0xF8;
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string_view textOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

unsigned digit(char c) { return unsigned(c <= '9' ? c - '0' : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10); }

// Whether a file that is no MIDI file is a text of hex digits, by how it begins: with two of them, or with a comment.
bool beginsAsHexText(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.starts_with('#') || (text.size() >= 2 && isDigit(text[0]) && isDigit(text[1]));
}

struct HexText {
  std::vector<std::uint8_t> bytes;
  std::vector<std::uint64_t> offsets;   // of their first digits
  std::vector<std::size_t> runs = {0};  // where each begins: what is no digit, blank or comment ends one
};

// A line with anything else in it is passed over from there on, and what was open ends there.
HexText readHexText(std::string_view text) {
  HexText hex;
  for (std::size_t at = text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0; at < text.size();) {
    const bool isByte = at + 1 < text.size() && isDigit(text[at]) && isDigit(text[at + 1]);
    if (isByte) {
      hex.bytes.push_back(std::uint8_t(digit(text[at]) * 16 + digit(text[at + 1])));
      hex.offsets.push_back(at);
      at += 2;
    } else if (kBlanks.find(text[at]) != std::string_view::npos) {
      ++at;
    } else {
      if (text[at] != '#') hex.runs.push_back(hex.bytes.size());
      at = std::min(text.find('\n', at), text.size());
    }
  }
  return hex;
}

// The messages of a text, by the numbers of their bytes.
class TextMessages final : public StreamJoiner::Receiver {
 public:
  explicit TextMessages(const HexText& hex) {
    StreamJoiner joiner(*this);
    const std::span<const std::uint8_t> all(hex.bytes);
    for (std::size_t i = 0; i < hex.runs.size(); ++i) {
      const std::size_t end = i + 1 < hex.runs.size() ? hex.runs[i + 1] : all.size();
      joiner.feed(all.subspan(hex.runs[i], end - hex.runs[i]));
      joiner.finish();
    }
  }

  std::vector<std::pair<std::uint64_t, std::vector<std::uint8_t>>> messages;
  std::vector<MidiFile::Dropped> losses;

 private:
  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
    messages.emplace_back(offset, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
  }
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    losses.push_back({offset, count, reason});
  }
};

using Bytes = std::vector<MessageFile::Byte>;

// Walks through the MIDI bytes of a file, which may lie scattered in it: calls mark(byte) for `count` of them from
// number `first` on; for the real-time bytes between only where such are walked.
template <typename Mark>
void walk(Bytes& bytes, const std::vector<bool>& isMidi, std::uint64_t first, std::uint64_t count, bool isRealTime,
          Mark mark) {
  for (std::uint64_t i = first; i < bytes.size() && count > 0; ++i) {
    if (!isMidi[i] || (bytes[i].value >= kFirstRealTime) != isRealTime) continue;
    mark(bytes[i]);
    --count;
  }
}

void markMessage(Bytes& bytes, const std::vector<bool>& isMidi, std::uint64_t first, std::uint64_t size,
                 std::uint32_t number) {
  std::uint32_t at = 0;
  walk(bytes, isMidi, first, size, false, [&](MessageFile::Byte& byte) {
    byte.message = number;
    byte.at = at++;
  });
}

void markLoss(Bytes& bytes, const std::vector<bool>& isMidi, const MidiFile::Dropped& loss) {
  const bool isRealTime = loss.reason == StreamJoiner::Reason::RealTime;
  walk(bytes, isMidi, loss.offset, loss.count, isRealTime,
       [&](MessageFile::Byte& byte) { byte.dropped = describe(loss.reason); });
}

}  // namespace

MessageFile::MessageFile(std::vector<std::uint8_t> file) : file_(std::move(file)) {
  const MidiKind kind = midiKindOf(file_);
  isText_ = kind != MidiKind::standard && kind != MidiKind::riff && beginsAsHexText(textOf(file_));
  isText_ ? readText() : readMidi();
}

void MessageFile::readMidi() {
  bytes_.reserve(file_.size());
  for (const std::uint8_t value : file_) bytes_.push_back({.offset = bytes_.size(), .value = value});
  const MidiFile midi = readMidiFile(file_);
  std::vector<bool> isMidi(file_.size());
  for (const std::span<const std::uint8_t> part : midi.parts)
    std::fill_n(isMidi.begin() + (part.data() - file_.data()), part.size(), true);
  for (const MidiFile::Message& message : midi.messages) {
    messages_.emplace_back(message.bytes.begin(), message.bytes.end());
    markMessage(bytes_, isMidi, message.offset, message.bytes.size(), std::uint32_t(messages_.size()));
  }
  for (const MidiFile::Dropped& loss : midi.dropped) markLoss(bytes_, isMidi, loss);
}

void MessageFile::readText() {
  const HexText hex = readHexText(textOf(file_));
  bytes_.reserve(hex.bytes.size());
  for (std::size_t i = 0; i < hex.bytes.size(); ++i)
    bytes_.push_back({.offset = hex.offsets[i], .value = hex.bytes[i]});
  const std::vector<bool> isMidi(bytes_.size(), true);
  TextMessages text(hex);
  for (auto& [first, message] : text.messages) {
    messages_.push_back(std::move(message));
    markMessage(bytes_, isMidi, first, messages_.back().size(), std::uint32_t(messages_.size()));
  }
  for (const MidiFile::Dropped& loss : text.losses) markLoss(bytes_, isMidi, loss);
}

bool MessageFile::isUsable() const {
  if (messages_.empty()) return false;
  const auto begin =
      std::find_if(bytes_.begin(), bytes_.end(), [](const Byte& byte) { return byte.value < kFirstRealTime; });
  if (midiKindOf(file_) != MidiKind::stream || isText_ || begin->value == 0xF0) return true;
  return std::any_of(messages_.begin(), messages_.end(), [](const std::vector<std::uint8_t>& message) {
    return readMessage(message).kind != Reading::Kind::foreign;
  });
}

std::string MessageFile::describe() const { return describeFile(file_); }

const MessageFile::Byte* MessageFile::find(std::uint64_t offset) const {
  if (offset >= size()) return nullptr;
  const auto behind = std::upper_bound(bytes_.begin(), bytes_.end(), offset,
                                       [](std::uint64_t wanted, const Byte& byte) { return wanted < byte.offset; });
  if (behind == bytes_.begin()) return nullptr;
  const Byte& byte = *(behind - 1);
  const std::uint64_t digits = isText_ ? 2 : 1;
  return offset < byte.offset + digits ? &byte : nullptr;
}

}  // namespace Editor
