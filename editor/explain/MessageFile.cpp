#include "explain/MessageFile.h"

#include <algorithm>

#include "messages/Messages.h"
#include "midi/FileKind.h"
#include "midi/HexText.h"

namespace Editor {

namespace {

constexpr std::uint8_t kFirstRealTime = 0xF8;

// The messages of a text, and what became none.
class TextMessages final : public StreamJoiner::Receiver {
 public:
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

// Which of the bytes is the first from that offset of the file on.
std::size_t indexAt(const Bytes& bytes, std::uint64_t offset) {
  const auto found = std::lower_bound(bytes.begin(), bytes.end(), offset,
                                      [](const MessageFile::Byte& byte, std::uint64_t at) { return byte.offset < at; });
  return std::size_t(found - bytes.begin());
}

// Walks through the MIDI bytes of a file, which may lie scattered in it: calls mark(byte) for `count` of them from
// an offset on; for the real-time bytes between only where such are walked.
template <typename Mark>
void walk(Bytes& bytes, const std::vector<bool>& isMidi, std::uint64_t offset, std::uint64_t count, bool isRealTime,
          Mark mark) {
  for (std::size_t i = indexAt(bytes, offset); i < bytes.size() && count > 0; ++i) {
    if (!isMidi[i] || (bytes[i].value >= kFirstRealTime) != isRealTime) continue;
    mark(bytes[i]);
    --count;
  }
}

void markMessage(Bytes& bytes, const std::vector<bool>& isMidi, std::uint64_t offset, std::uint64_t size,
                 std::uint32_t number) {
  std::uint32_t at = 0;
  walk(bytes, isMidi, offset, size, false, [&](MessageFile::Byte& byte) {
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

MessageFile::MessageFile(std::vector<std::uint8_t> file)
    : file_(std::move(file)), isText_(midiKindOf(file_) == MidiKind::text) {
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
  TextMessages text;
  StreamJoiner joiner(text);
  HexTextReader reader(
      joiner, [](std::uint64_t /*offset*/, const std::string& /*error*/) {},
      [this](std::uint64_t offset, std::uint8_t byte) { bytes_.push_back({.offset = offset, .value = byte}); });
  reader.feed(file_);
  reader.finish();
  const std::vector<bool> isMidi(bytes_.size(), true);
  for (auto& [offset, message] : text.messages) {
    messages_.push_back(std::move(message));
    markMessage(bytes_, isMidi, offset, messages_.back().size(), std::uint32_t(messages_.size()));
  }
  for (const MidiFile::Dropped& loss : text.losses) markLoss(bytes_, isMidi, loss);
}

bool MessageFile::isUsable() const {
  if (messages_.empty()) return false;
  const auto begin =
      std::find_if(bytes_.begin(), bytes_.end(), [](const Byte& byte) { return byte.value < kFirstRealTime; });
  if (midiKindOf(file_) != MidiKind::stream || begin->value == 0xF0) return true;
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
