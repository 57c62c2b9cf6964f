#include "messages/MessageReader.h"

#include <algorithm>
#include <string_view>

#include "messages/Messages.h"
#include "midi/FileKind.h"
#include "midi/HexText.h"
#include "midi/MidiFile.h"

namespace Editor {

namespace {

using Bytes = ByteSource::Bytes;
using VisitMessage = MessageReader::VisitMessage;
using VisitLoss = MessageReader::VisitLoss;

constexpr std::size_t kFirstBytes = 65'536;  // that tell what a file is
constexpr std::size_t kMostBlanks = 64;      // before the first brace of JSON

// Hands on the pieces of a stream in the order of the file: what a clock sends inside of a message comes behind it.
class Pieces final : public StreamJoiner::Receiver {
 public:
  Pieces(const std::string& file, FileJudgement& judgement, std::uint64_t& number, const VisitMessage& visitMessage,
         const VisitLoss& visitLoss, bool waits)
      : file_(file),
        judgement_(judgement),
        number_(number),
        visitMessage_(visitMessage),
        visitLoss_(visitLoss),
        waits_(waits) {}

  void message(Bytes bytes, std::uint64_t offset) override {
    judgement_.see(bytes);
    waits_ = false;
    tellHeld(offset);
    visitMessage_({++number_, file_, offset, bytes});
    tellHeld(kAll);
  }

  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    loss({file_, offset, count, describe(reason), kindOf(reason), beginning_});
    beginning_.clear();
  }

  void cutShort(Bytes beginning) override {
    const Bytes first = beginning.first(std::min(beginning.size(), kBeginning));
    beginning_.assign(first.begin(), first.end());
  }

  // Noise can be one loss a byte: nothing is kept of one that is told at once.
  void loss(const InputLoss& loss) {
    if (held_.size() >= kMostHeld) tellAll();
    if (waits_ || loss.kind == InputLoss::Kind::realTime) return hold(loss);
    tellHeld(loss.offset);
    visitLoss_(loss);
    tellHeld(kAll);
  }

  // What a file without any message would have to say is not said: it is none of messages.
  void finish() {
    if (!waits_) tellHeld(kAll);
  }

 private:
  static constexpr std::uint64_t kAll = ~std::uint64_t{0};
  static constexpr std::size_t kMostHeld = 4096;  // then it is time to tell, whatever the order
  static constexpr std::size_t kBeginning = 16;   // the frame of a dump before its data, and some

  struct Held {
    std::uint64_t offset;
    std::uint64_t dropped;
    std::string reason;
    InputLoss::Kind kind;
    std::vector<std::uint8_t> beginning;
  };

  void hold(const InputLoss& loss) {
    held_.push_back({loss.offset,
                     loss.dropped,
                     std::string(loss.reason),
                     loss.kind,
                     {loss.beginning.begin(), loss.beginning.end()}});
  }

  void tellAll() {
    waits_ = false;
    tellHeld(kAll);
  }

  void tellHeld(std::uint64_t before) {
    if (held_.empty()) return;
    std::stable_sort(held_.begin(), held_.end(), [](const Held& a, const Held& b) { return a.offset < b.offset; });
    const auto end = std::find_if(held_.begin(), held_.end(), [&](const Held& one) { return one.offset >= before; });
    for (auto one = held_.begin(); one != end; ++one)
      visitLoss_({file_, one->offset, one->dropped, one->reason, one->kind, one->beginning});
    held_.erase(held_.begin(), end);
  }

  const std::string& file_;
  FileJudgement& judgement_;
  std::uint64_t& number_;
  const VisitMessage& visitMessage_;
  const VisitLoss& visitLoss_;
  bool waits_;  // until there is a message, nothing is told: there may never be one
  std::vector<Held> held_;
  std::vector<std::uint8_t> beginning_;  // of the message that is reported next
};

void hand(const MidiFile& midi, const std::string& file, Pieces& pieces) {
  struct Loss {
    std::uint64_t offset;
    std::uint64_t dropped;
    std::string reason;
    InputLoss::Kind kind;
  };
  std::vector<Loss> losses;
  for (const MidiFile::Error& error : midi.errors)
    losses.push_back({error.offset, 0, error.text, InputLoss::Kind::brokenFile});
  for (const MidiFile::Dropped& dropped : midi.dropped)
    losses.push_back({dropped.offset, dropped.count, describe(dropped.reason), kindOf(dropped.reason)});
  std::stable_sort(losses.begin(), losses.end(), [](const Loss& a, const Loss& b) { return a.offset < b.offset; });
  auto loss = losses.begin();
  const auto tellUpTo = [&](std::uint64_t offset) {
    for (; loss != losses.end() && loss->offset < offset; ++loss)
      pieces.loss({file, loss->offset, loss->dropped, loss->reason, loss->kind});
  };
  for (const MidiFile::Message& message : midi.messages) {
    tellUpTo(message.offset);
    pieces.message(message.bytes, message.offset);
  }
  tellUpTo(~std::uint64_t{0});
}

// A container of something else is not worth to be read.
bool isOtherRiff(Bytes first) {
  constexpr std::string_view kMidi = "RMID";
  constexpr std::size_t kAt = 8;
  return midiKindOf(first) == MidiKind::riff &&
         (first.size() < kAt + kMidi.size() || !std::equal(kMidi.begin(), kMidi.end(), first.begin() + kAt));
}

// Feeds a joiner, or who reads text into one.
template <typename Reader>
void readInto(Reader& reader, ByteSource& source, FileJudgement& judgement, const std::function<bool()>& isEnough) {
  for (Bytes more = source.next(); !more.empty() && !isEnough(); more = source.next()) {
    judgement.look(more);
    reader.feed(more);
  }
  reader.finish();
}

void readPieces(ByteSource& source, const std::string& file, FileJudgement& judgement, Pieces& pieces,
                const std::function<bool()>& isEnough) {
  constexpr std::size_t kRiffHead = 12;
  // Of what comes through a pipe four bytes have to do.
  const MidiKind kind = midiKindOf(source.first(source.isPlain() ? kFirstBytes : kMidiKindBytes));
  if (kind == MidiKind::riff && isOtherRiff(source.first(kRiffHead))) {
    judgement.look(source.next());
  } else if (kind == MidiKind::standard || kind == MidiKind::riff) {
    const std::vector<std::uint8_t> whole = readWhole(source);
    judgement.look(whole);
    hand(readMidiFile(whole), file, pieces);
  } else {
    StreamJoiner joiner(pieces, kLongestMessage);
    HexTextReader text(joiner, [&](std::uint64_t offset, const std::string& why) {
      pieces.loss({file, offset, 0, why, InputLoss::Kind::brokenFile});
    });
    if (kind == MidiKind::text)
      readInto(text, source, judgement, isEnough);
    else
      readInto(joiner, source, judgement, isEnough);
  }
  pieces.finish();
}

// The last character may be cut.
bool isUtf8(Bytes text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::uint8_t lead = text[i++];
    const bool isLead = lead >= 0xC2 && lead <= 0xF4;
    if (lead >= 0x80 && !isLead) return false;
    for (int more = isLead ? 1 + int(lead >= 0xE0) + int(lead >= 0xF0) : 0; more > 0 && i < text.size(); --more)
      if ((text[i++] & 0xC0) != 0x80) return false;
  }
  return true;
}

}  // namespace

std::string whyNoMessages(bool hasForeign, const std::string& kind) {
  return std::string("no System Exclusive message in it") + (hasForeign ? " for this instrument" : "") +
         ": it seems to be " + kind;
}

void FileJudgement::look(Bytes bytes) {
  first_.insert(first_.end(), bytes.begin(),
                bytes.begin() + std::ptrdiff_t(std::min(bytes.size(), kFirst - first_.size())));
  if (isBegun_) return;
  const MidiKind kind = midiKindOf(first_);
  isCut_ = kind == MidiKind::standard;
  if (kind != MidiKind::stream) isBegun_ = isMidi_ = true;
  const auto begin = std::find_if(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte < kFirstRealTime; });
  if (isBegun_ || begin == bytes.end()) return;
  isBegun_ = true;
  isCut_ = isMidi_ = *begin == 0xF0;
}

void FileJudgement::see(Bytes message) {
  hasMessage_ = true;
  isMidi_ = isMidi_ || isOfThisMaker(message);
}

std::string FileJudgement::kind() const { return describeFile(first_); }

FileJudgement MessageReader::read(ByteSource& source, const std::string& file) {
  FileJudgement judgement;
  Pieces pieces(file, judgement, number_, visitMessage_, visitLoss_, !source.isPlain());
  readPieces(source, file, judgement, pieces, [] { return false; });
  return judgement;
}

FileJudgement judgeFile(ByteSource& source) {
  const std::string unnamed;
  const VisitMessage ignoreMessage = [](const InputMessage&) {};
  const VisitLoss ignoreLoss = [](const InputLoss&) {};
  std::uint64_t number = 0;
  FileJudgement judgement;
  Pieces pieces(unnamed, judgement, number, ignoreMessage, ignoreLoss, false);
  readPieces(source, unnamed, judgement, pieces, [&] { return judgement.isUsable(); });
  return judgement;
}

// What comes from a cable may begin like that, but it is no UTF-8 where a message begins: behind F0 there is none of
// the bytes that UTF-8 has there.
bool isJson(ByteSource& source) {
  const auto isBegun = [](Bytes bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
    const std::size_t begin = text.find_first_not_of(kHexBlanks);
    return begin != std::string_view::npos && text[begin] == '{';
  };
  return isBegun(source.first(kMostBlanks)) && isUtf8(source.first(kFirstBytes));
}

std::vector<std::uint8_t> readWhole(ByteSource& source) {
  std::vector<std::uint8_t> all;
  for (Bytes more = source.next(); !more.empty(); more = source.next()) {
    if (all.size() + more.size() > kLargestMidiFile) throw ReadError(kTooLargeForMemory);
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

}  // namespace Editor
