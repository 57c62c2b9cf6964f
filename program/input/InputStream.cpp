#include "input/InputStream.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include "ExitCode.h"
#include "messages/Messages.h"
#include "messages/Text.h"
#include "midi/FileKind.h"
#include "midi/HexText.h"
#include "midi/MidiFile.h"
#include "output/Progress.h"

namespace Editor {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kChunk = 65'536;
constexpr std::size_t kMostBlanks = 64;  // before the first brace of JSON

int leaveOpen(std::FILE* /*standardInput*/) { return 0; }

// Does not wait for somebody to write to a pipe: until then there is nothing to read from it, for which Ctrl-C ends the
// wait.
std::FILE* openToRead(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return nullptr;
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  return ::fdopen(descriptor, "rb");
}

std::string reasonOf(int error) { return std::generic_category().message(error); }

// Why a file cannot be read any further.
struct ReadError {
  std::string why;
};

// The bytes of a file, some at a time. Throws ReadError, and where Ctrl-C is caught Failure.
class Source {
 public:
  Source(std::FILE& stream, bool isPlain) : descriptor_(::fileno(&stream)), isPlain_(isPlain) {}

  bool isPlain() const { return isPlain_; }
  // As many as there are, at least one; none: the end. Valid until the next call.
  Bytes next() {
    if (returned_ > 0) return {buffer_.data(), std::exchange(returned_, 0)};
    return {buffer_.data(), fill(0)};
  }
  // The first bytes, which next() gives again: at least so many, fewer when there are no more.
  Bytes first(std::size_t least) {
    while (returned_ < least) {
      const std::size_t more = fill(returned_);
      if (more == 0) break;
      returned_ += more;
    }
    return {buffer_.data(), returned_};
  }

 private:
  std::size_t fill(std::size_t at) {
    while (true) {
      isPlain_ ? Interruptible::check() : Interruptible::wait(descriptor_);
      const ssize_t count = ::read(descriptor_, buffer_.data() + at, buffer_.size() - at);
      if (count >= 0) return std::size_t(count);
      if (errno != EINTR) throw ReadError{reasonOf(errno)};
    }
  }

  const int descriptor_;
  const bool isPlain_;
  std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(kChunk);
  std::size_t returned_ = 0;
};

// Whether a file is one of messages at all.
class Judgement {
 public:
  // Of the bytes of the file, in their order: all of them, or as many as one likes.
  void look(Bytes bytes) {
    first_.insert(first_.end(), bytes.begin(),
                  bytes.begin() + std::ptrdiff_t(std::min(bytes.size(), kFirst - first_.size())));
    if (isBegun_) return;
    const MidiKind kind = midiKindOf(first_);
    isCut_ = kind == MidiKind::standard;
    if (kind != MidiKind::stream) isBegun_ = isMidi_ = true;
    const auto begin =
        std::find_if(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte < kFirstRealTime; });
    if (isBegun_ || begin == bytes.end()) return;
    isBegun_ = true;
    isCut_ = isMidi_ = *begin == 0xF0;
  }
  void see(Bytes message) {
    hasMessage_ = true;
    isMidi_ = isMidi_ || isOfThisMaker(message);
  }
  bool isUsable() const { return hasMessage_ && isMidi_; }
  // Of one that is not: whether it is the remains of one that was.
  bool isCut() const { return isCut_; }

  std::string words(const std::string& file) const { return whyNoMessages(file, hasMessage_, describeFile(first_)); }

 private:
  static constexpr std::size_t kFirst = 512;

  std::vector<std::uint8_t> first_;
  bool isBegun_ = false;  // something else than real-time bytes has come
  bool isCut_ = false;    // it begins as messages do
  bool isMidi_ = false;   // it begins as such files do, or has a message of this maker
  bool hasMessage_ = false;
};

// Hands on the pieces of a stream in the order of the file: what a clock sends inside of a message comes behind it.
class Pieces final : public StreamJoiner::Receiver {
 public:
  Pieces(const std::string& file, Judgement& judgement, std::uint64_t& number,
         const InputStream::VisitMessage& visitMessage, const InputStream::VisitLoss& visitLoss, bool waits)
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
  Judgement& judgement_;
  std::uint64_t& number_;
  const InputStream::VisitMessage& visitMessage_;
  const InputStream::VisitLoss& visitLoss_;
  bool waits_;  // until there is a message, nothing is told: there may never be one
  std::vector<Held> held_;
  std::vector<std::uint8_t> beginning_;  // of the message that is reported next
};

// All of a file that is read whole.
std::vector<std::uint8_t> readAll(Source& source, Judgement& judgement) {
  std::vector<std::uint8_t> all;
  for (Bytes more = source.next(); !more.empty(); more = source.next()) {
    judgement.look(more);
    if (all.size() + more.size() > kLargestMidiFile) throw ReadError{kTooLargeForMemory};
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

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
void readInto(Reader& reader, Source& source, Judgement& judgement, const std::function<bool()>& isEnough) {
  for (Bytes more = source.next(); !more.empty() && !isEnough(); more = source.next()) {
    judgement.look(more);
    reader.feed(more);
  }
  reader.finish();
}

void readPieces(Source& source, const std::string& file, Judgement& judgement, Pieces& pieces,
                const std::function<bool()>& isEnough) {
  constexpr std::size_t kRiffHead = 12;
  // Of what comes through a pipe four bytes have to do.
  const MidiKind kind = midiKindOf(source.first(source.isPlain() ? kChunk : kMidiKindBytes));
  if (kind == MidiKind::riff && isOtherRiff(source.first(kRiffHead))) {
    judgement.look(source.next());
  } else if (kind == MidiKind::standard || kind == MidiKind::riff) {
    hand(readMidiFile(readAll(source, judgement)), file, pieces);
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

// An object, as it begins: what `show --json` prints. What comes from a cable may begin like that, but it is no UTF-8
// where a message begins: behind F0 there is none of the bytes that UTF-8 has there.
bool isJson(Source& source) {
  const auto isBegun = [](Bytes text) {
    if (std::ranges::equal(text.first(std::min(text.size(), kUtf8Mark.size())), kUtf8Mark, {},
                           [](std::uint8_t byte) { return char(byte); }))
      text = text.subspan(kUtf8Mark.size());
    const auto begin = std::ranges::find_if(
        text, [](std::uint8_t byte) { return kHexBlanks.find(char(byte)) == std::string_view::npos; });
    return begin != text.end() && *begin == '{';
  };
  return isBegun(source.first(kMostBlanks)) && isUtf8(source.first(kChunk));
}

}  // namespace

InputLoss::Kind kindOf(StreamJoiner::Reason reason) {
  switch (reason) {
    case StreamJoiner::Reason::RealTime:
      return InputLoss::Kind::realTime;
    case StreamJoiner::Reason::Stray:
      return InputLoss::Kind::loose;
    default:
      return InputLoss::Kind::cutShort;
  }
}

InputStream::InputStream(const std::vector<std::string>& paths, Takes takes) : takes_(takes) {
  if (std::count(paths.begin(), paths.end(), "-") > 1)
    throw Failure(kWrongUsage, "standard input can be read only once");
  for (const std::string& path : paths) {
    const bool isStandardInput = path == "-";
    File file{path, {isStandardInput ? stdin : openToRead(path), isStandardInput ? leaveOpen : std::fclose}};
    struct stat status {};
    const bool isOpen = file.stream != nullptr && ::fstat(::fileno(file.stream.get()), &status) == 0;
    if (!isOpen || S_ISDIR(status.st_mode))
      throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(path), reasonOf(isOpen ? EISDIR : errno)));
    file.isPlain = !isStandardInput && S_ISREG(status.st_mode);
    if (file.isPlain) file.size = std::uint64_t(status.st_size);
    files_.push_back(std::move(file));
  }
  for (const File& file : files_)
    if (const std::string problem = file.isPlain ? judge(file) : ""; !problem.empty())
      throw Failure(kUnusableInput, problem);
}

// Why a file that can be read twice cannot be read; empty: it can. Throws NotMessages when it is none of messages.
std::string InputStream::judge(const File& file) const {
  try {
    Source source(*file.stream, true);
    const bool isTakenAsJson = takes_ == Takes::jsonToo && isJson(source);
    Judgement judgement;
    std::uint64_t number = 0;
    const VisitMessage ignoreMessage = [](const InputMessage&) {};
    const VisitLoss ignoreLoss = [](const InputLoss&) {};
    Pieces pieces(file.name, judgement, number, ignoreMessage, ignoreLoss, false);
    if (!isTakenAsJson) readPieces(source, file.name, judgement, pieces, [&] { return judgement.isUsable(); });
    if (!isTakenAsJson && !judgement.isUsable()) throw NotMessages(judgement.words(file.name), judgement.isCut());
    if (::lseek(::fileno(file.stream.get()), 0, SEEK_SET) != 0) throw ReadError{reasonOf(errno)};
    return {};
  } catch (const ReadError& error) {
    return fmt::format("{}: {}", displayName(file.name), error.why);
  }
}

std::vector<std::string> InputStream::read(const VisitMessage& visitMessage, const VisitLoss& visitLoss,
                                           const VisitJson& visitJson) {
  const Interruptible interruptible;
  std::vector<std::string> problems;
  std::uint64_t number = 0;
  for (const File& file : files_) {
    Judgement judgement;
    try {
      Source source(*file.stream, file.isPlain);
      if (takes_ == Takes::jsonToo && isJson(source)) {
        const std::vector<std::uint8_t> text = readAll(source, judgement);
        visitJson(file.name, {reinterpret_cast<const char*>(text.data()), text.size()});
        continue;
      }
      Pieces pieces(file.name, judgement, number, visitMessage, visitLoss, !file.isPlain);
      readPieces(source, file.name, judgement, pieces, [] { return false; });
      if (!file.isPlain && !judgement.isUsable()) problems.push_back(judgement.words(file.name));
    } catch (const ReadError& error) {
      problems.push_back(fmt::format("{}: {}", displayName(file.name), error.why));
    }
  }
  return problems;
}

bool InputStream::isLive() const {
  return std::any_of(files_.begin(), files_.end(), [](const File& file) { return !file.isPlain; });
}

std::uint64_t InputStream::size() const {
  std::uint64_t size = 0;
  for (const File& file : files_) size += file.size;
  return isLive() ? 0 : size;
}

std::string whyNoMessages(const std::string& file, bool hasForeign, const std::string& kind) {
  return fmt::format("{}: no System Exclusive message in it{}: it seems to be {}", displayName(file),
                     hasForeign ? " for this instrument" : "", kind);
}

std::string displayName(const std::string& file) { return file == "-" ? "standard input" : escape(file); }

std::string placeOf(const InputMessage& message) {
  return fmt::format("{}: message {} at offset {}", displayName(message.file), message.number, message.offset);
}

}  // namespace Editor
