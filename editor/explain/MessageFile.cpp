#include "explain/MessageFile.h"

#include <algorithm>
#include <utility>

#include "messages/MessageReader.h"
#include "messages/Messages.h"
#include "midi/FileKind.h"
#include "midi/HexText.h"

namespace Editor {

namespace {

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

}  // namespace

MessageFile::MessageFile(std::vector<std::uint8_t> file)
    : file_(std::move(file)), isText_(midiKindOf(file_) == MidiKind::text) {
  isText_ ? readText() : readMidi();
  std::sort(runs_.begin(), runs_.end(), [](const Run& a, const Run& b) { return a.first < b.first; });
}

void MessageFile::readMidi() {
  MidiFile midi = readMidiFile(file_);
  std::vector<bool> isMidi(file_.size());
  for (const std::span<const std::uint8_t> part : midi.parts)
    std::fill_n(isMidi.begin() + (part.data() - file_.data()), part.size(), true);
  for (const MidiFile::Message& message : midi.messages) addMessage(message.bytes, message.offset, isMidi);
  for (const MidiFile::Dropped& loss : midi.dropped) addLoss(loss, isMidi);
  errors_ = std::move(midi.errors);
}

void MessageFile::readText() {
  TextMessages text;
  StreamJoiner joiner(text, kLongestMessage);
  HexTextReader reader(
      joiner,
      [this](std::uint64_t offset, std::string error) {
        errors_.push_back({offset, std::move(error)});
      },
      [this](std::uint64_t offset, std::uint8_t byte) {
        textBytes_.push_back(byte);
        textOffsets_.push_back(std::uint32_t(offset));
      });
  reader.feed(file_);
  reader.finish();
  const std::vector<bool> isMidi(textBytes_.size(), true);
  for (const auto& [offset, message] : text.messages) addMessage(message, offset, isMidi);
  for (const MidiFile::Dropped& loss : text.losses) addLoss(loss, isMidi);
}

void MessageFile::addMessage(std::span<const std::uint8_t> bytes, std::uint64_t offset,
                             const std::vector<bool>& isMidi) {
  messages_.push_back({messageBytes_.size(), bytes.size()});
  messageBytes_.insert(messageBytes_.end(), bytes.begin(), bytes.end());
  std::uint32_t at = 0;
  walk(isMidi, offset, bytes.size(), false, [&](std::uint32_t first, std::uint32_t count) {
    runs_.push_back({first, count, std::uint32_t(messages_.size()), at, nullptr});
    at += count;
  });
}

void MessageFile::addLoss(const MidiFile::Dropped& loss, const std::vector<bool>& isMidi) {
  const bool isRealTime = loss.reason == StreamJoiner::Reason::RealTime;
  walk(isMidi, loss.offset, loss.count, isRealTime, [&](std::uint32_t first, std::uint32_t count) {
    runs_.push_back({first, count, kNone, 0, Editor::describe(loss.reason)});
  });
}

// Goes through the MIDI bytes of a file, which may lie scattered in it: calls add(first, count) for those that follow
// each other, of `count` from an offset on; of the real-time bytes between only where such are meant.
template <typename Add>
void MessageFile::walk(const std::vector<bool>& isMidi, std::uint64_t offset, std::uint64_t count, bool isRealTime,
                       Add add) {
  std::uint32_t length = 0;  // of what follows each other up to here
  std::uint32_t i = indexAt(offset);
  const auto end = [&] {
    if (length != 0) add(i - length, length);
    length = 0;
  };
  for (; i < values().size() && count > 0; ++i) {
    if (!isMidi[i] || (values()[i] >= kFirstRealTime) != isRealTime) {
      end();
      continue;
    }
    ++length;
    --count;
  }
  end();
}

// Which of the bytes is the first from that offset of the file on.
std::uint32_t MessageFile::indexAt(std::uint64_t offset) const {
  if (!isText_) return std::uint32_t(offset);
  return std::uint32_t(std::lower_bound(textOffsets_.begin(), textOffsets_.end(), offset) - textOffsets_.begin());
}

// `run`: the one that holds it, or the next.
MessageFile::Byte MessageFile::byteIn(const Run* run, std::uint32_t index) const {
  Byte byte{.offset = offsetOf(index), .value = values()[index]};
  if (run == nullptr || index < run->first) return byte;
  byte.message = run->message;
  byte.at = run->message == kNone ? 0 : run->at + (index - run->first);
  byte.dropped = run->dropped;
  return byte;
}

bool MessageFile::isUsable() const {
  if (messages_.empty()) return false;
  const auto begin =
      std::find_if(values().begin(), values().end(), [](std::uint8_t byte) { return byte < kFirstRealTime; });
  if (midiKindOf(file_) != MidiKind::stream || *begin == 0xF0) return true;
  for (std::uint32_t number = 1; number <= messages_.size(); ++number)
    if (isOfThisMaker(message(number))) return true;
  return false;
}

std::string MessageFile::whyUnusable() const { return whyNoMessages(!messages_.empty(), describeFile(file_)); }

std::optional<MessageFile::Byte> MessageFile::find(std::uint64_t offset) const {
  if (offset >= size()) return std::nullopt;
  std::uint32_t index = indexAt(offset);
  if (isText_) {  // the second of two digits is of the byte before
    const bool isFirst = index < textOffsets_.size() && textOffsets_[index] == offset;
    if (!isFirst && (index == 0 || textOffsets_[--index] + 1 != offset)) return std::nullopt;
  }
  const auto run =
      std::partition_point(runs_.begin(), runs_.end(), [&](const Run& one) { return one.first + one.count <= index; });
  return byteIn(run == runs_.end() ? nullptr : &*run, index);
}

}  // namespace Editor
