#include "midi/MidiFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <utility>

#include "midi/Counted.h"
#include "midi/FileKind.h"

namespace Editor {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Puts what the joiner finds into the file's lists and remembers at which tick each message was complete.
class Collector final : public StreamJoiner::Receiver {
 public:
  // The messages are parts of `source`, so they need no more room than it.
  Collector(MidiFile& file, Bytes source) : file_(file), free_(new std::uint8_t[source.size()]) {
    file.arena.reset(free_);
  }

  void message(Bytes bytes, std::uint64_t offset) override {
    std::copy(bytes.begin(), bytes.end(), free_);
    file_.messages.push_back({{free_, bytes.size()}, offset});
    free_ += bytes.size();
    ticks_.push_back(tick);
  }

  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    file_.dropped.push_back({offset, count, reason});
  }

  void sortByTick() {
    std::vector<std::size_t> order(ticks_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [this](auto a, auto b) { return ticks_[a] < ticks_[b]; });
    std::vector<MidiFile::Message> sorted;
    sorted.reserve(order.size());
    for (const std::size_t i : order) sorted.push_back(file_.messages[i]);
    file_.messages = std::move(sorted);
  }

  std::uint64_t tick = 0;  // of the event that is being read

 private:
  MidiFile& file_;
  std::uint8_t* free_;  // of the arena
  std::vector<std::uint64_t> ticks_;
};

constexpr std::string_view kTrack = "MTrk";
constexpr std::size_t kChunkHead = 8;   // type and length
constexpr std::size_t kHeaderBody = 6;  // format, number of tracks, division

bool allData(Bytes bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte < 0x80; });
}

bool startsWith(Bytes bytes, std::string_view type) {
  return bytes.size() >= type.size() && std::equal(type.begin(), type.end(), bytes.begin(),
                                                   [](char c, std::uint8_t b) { return c == static_cast<char>(b); });
}

std::uint32_t bigEndian(Bytes bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

std::uint32_t littleEndian(Bytes four) {
  return std::uint32_t(four[0]) | std::uint32_t(four[1]) << 8 | std::uint32_t(four[2]) << 16 |
         std::uint32_t(four[3]) << 24;
}

// Takes bytes off the front of what is left, as far as they are there.
struct Cursor {
  Bytes left;

  std::optional<Bytes> take(std::size_t count) {
    if (count > left.size()) return std::nullopt;
    const Bytes taken = left.first(count);
    left = left.subspan(count);
    return taken;
  }

  // A variable-length quantity: seven bits a byte, at most four bytes.
  std::optional<std::uint32_t> number() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
      const auto byte = take(1);
      if (!byte) return std::nullopt;
      value = value << 7 | (byte->front() & 0x7Fu);
      if (byte->front() < 0x80) return value;
    }
    return std::nullopt;
  }

  // As many bytes as the number before them says.
  std::optional<Bytes> takeCounted() {
    const auto count = number();
    return count ? take(*count) : std::nullopt;
  }
};

class StandardReader {
 public:
  // `source` is a part of `whole`.
  StandardReader(Bytes whole, Bytes source, MidiFile& file)
      : whole_(whole), source_(source), file_(file), collector_(file, source), joiner_(collector_) {}

  void read() {
    if (source_.size() < kChunkHead + kHeaderBody) {
      return error(0, "file header is cut short: " + std::to_string(source_.size()) + " of 14 bytes");
    }
    const std::uint32_t headerLength = bigEndian(source_.subspan(4, 4));
    if (headerLength < kHeaderBody || headerLength > source_.size() - kChunkHead) {
      return error(4, "impossible length of the file header: " + std::to_string(headerLength));
    }
    const std::uint32_t format = bigEndian(source_.subspan(8, 2));
    if (format > 2) error(8, "unknown format " + std::to_string(format) + ", its tracks are read one after the other");

    readChunks(kChunkHead + headerLength);

    if (const std::uint32_t promised = bigEndian(source_.subspan(10, 2)); promised != track_) {
      error(10, "number of tracks: " + std::to_string(promised) + " promised, " + std::to_string(track_) + " found");
    }
    if (format == 1) collector_.sortByTick();
  }

 private:
  void readChunks(std::size_t at) {
    while (at < source_.size()) {
      if (source_.size() - at < kChunkHead) {
        return error(at, counted(source_.size() - at, "byte") + " after the last chunk");
      }
      const Bytes head = source_.subspan(at, kChunkHead);
      const std::uint32_t promised = bigEndian(head.subspan(4));
      const std::size_t length = std::min<std::size_t>(promised, source_.size() - at - kChunkHead);
      const bool isTrack = startsWith(head, kTrack);
      if (isTrack) ++track_;
      if (length != promised) {
        error(at, (isTrack ? "track " + std::to_string(track_) : "unknown chunk") +
                      " is cut short: " + std::to_string(length) + " of " + counted(promised, "byte"));
      }
      if (isTrack) readTrack(source_.subspan(at + kChunkHead, length));
      at += kChunkHead + length;
    }
  }

  void readTrack(Bytes track) {
    collector_.tick = 0;
    running_ = 0;
    bool ended = false;
    const char* problem = nullptr;
    while (!ended && problem == nullptr) {
      problem = track.empty() ? "no end-of-track event" : readEvent(track, ended);
    }
    joiner_.finish();
    if (problem == nullptr && !track.empty()) problem = "bytes after the end-of-track event";
    if (problem != nullptr) {
      std::string text = "track " + std::to_string(track_) + ": " + problem;
      if (!track.empty())
        text +=
            ", " + counted(track.size(), "byte") + " of the track " + (track.size() == 1 ? "is" : "are") + " not read";
      file_.errors.push_back({offsetOf(track), std::move(text)});
    }
  }

  // Takes one event off the track, or says what is wrong with it and leaves it there.
  const char* readEvent(Bytes& track, bool& ended) {
    Cursor in{track};
    const auto delta = in.number();
    if (!delta || in.left.empty()) return "broken delta time";
    collector_.tick += *delta;

    const Bytes event = in.left;
    std::uint8_t status = event.front();
    if (status >= 0x80) {
      in.take(1);
    } else if (running_ != 0) {
      status = running_;
    } else {
      return "a data byte where an event must begin";
    }
    running_ = status < 0xF0 ? status : 0;

    if (status < 0xF0) {
      const auto data = in.take(status >= 0xC0 && status < 0xE0 ? 1 : 2);
      if (!data || !allData(*data)) return "broken channel event";
      joiner_.finish();
    } else if (status == 0xF0 || status == 0xF7) {
      const auto data = in.takeCounted();
      if (!data) return "System Exclusive event of a wrong length";
      if (status == 0xF0) join(event.first(1));
      join(*data);
    } else if (status == 0xFF) {
      const auto type = in.take(1);
      if (!type || !in.takeCounted()) return "meta event of a wrong length";
      ended = type->front() == 0x2F;
    } else {
      return "a status byte that begins no event";
    }
    track = in.left;
    return nullptr;
  }

  void join(Bytes part) {
    joiner_.skipTo(offsetOf(part));
    joiner_.feed(part);
    file_.parts.push_back(part);
  }

  std::size_t offsetOf(Bytes part) const { return static_cast<std::size_t>(part.data() - whole_.data()); }

  // `at` in the source.
  void error(std::size_t at, std::string text) {
    file_.errors.push_back({offsetOf(source_.subspan(at)), std::move(text)});
  }

  Bytes whole_;
  Bytes source_;
  MidiFile& file_;
  Collector collector_;
  StreamJoiner joiner_;
  std::uint32_t track_ = 0;   // counted from 1
  std::uint8_t running_ = 0;  // status of the last channel event as long as the next may leave it out, else 0
};

// What a RIFF container holds; nothing, with an error, when it is none of MIDI.
std::optional<Bytes> standardFileIn(Bytes riff, MidiFile& file) {
  constexpr std::size_t kHead = 12;  // "RIFF", length, "RMID"
  const auto error = [&](std::size_t at, std::string text) { file.errors.push_back({at, std::move(text)}); };
  if (riff.size() < kHead || !startsWith(riff.subspan(8), "RMID")) {
    error(0, "a RIFF file without MIDI");
    return std::nullopt;
  }
  for (std::size_t at = kHead; riff.size() - at >= kChunkHead;) {
    const Bytes head = riff.subspan(at, kChunkHead);
    const std::uint32_t promised = littleEndian(head.subspan(4));
    const std::size_t length = std::min<std::size_t>(promised, riff.size() - at - kChunkHead);
    if (startsWith(head, "data")) {
      if (length != promised)
        error(at, "the data is cut short: " + std::to_string(length) + " of " + counted(promised, "byte"));
      const Bytes inner = riff.subspan(at + kChunkHead, length);
      if (midiKindOf(inner) == MidiKind::standard) return inner;
      error(at + kChunkHead, "the data is no Standard MIDI File");
      return std::nullopt;
    }
    at += std::min(kChunkHead + length + length % 2, riff.size() - at);
  }
  error(kHead, "no data in it");
  return std::nullopt;
}

}  // namespace

MidiFile readMidiFile(std::span<const std::uint8_t> file) {
  MidiFile result;
  const MidiKind kind = midiKindOf(file);
  result.standard = kind == MidiKind::standard || kind == MidiKind::riff;
  if (kind == MidiKind::riff) {
    if (const std::optional<Bytes> inner = standardFileIn(file, result)) StandardReader(file, *inner, result).read();
  } else if (kind == MidiKind::standard) {
    StandardReader(file, file, result).read();
  } else {
    Collector collector(result, file);
    StreamJoiner joiner(collector, kLongestMessage);
    joiner.feed(file);
    joiner.finish();
    result.parts.push_back(file);
  }
  return result;
}

std::optional<std::vector<std::uint8_t>> loadBytes(const std::string& path, std::string& error) {
  const auto reason = [] { return std::generic_category().message(errno); };
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> owned;
  std::FILE* file = stdin;
  if (path != "-") {
    owned.reset(std::fopen(path.c_str(), "rb"));
    file = owned.get();
  }
  if (file == nullptr) {
    error = reason();
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes;
  std::size_t size = 0;
  do {
    bytes.resize(std::clamp<std::size_t>(2 * size, 65'536, kLargestMidiFile + 1));
    size += std::fread(bytes.data() + size, 1, bytes.size() - size, file);
  } while (size == bytes.size() && size <= kLargestMidiFile);
  if (std::ferror(file) != 0) {
    error = reason();
    return std::nullopt;
  }
  if (size > kLargestMidiFile) {
    error = kTooLargeForMemory;
    return std::nullopt;
  }
  bytes.resize(size);
  return bytes;
}

bool isSevenBit(std::span<const std::uint8_t> message) {
  return message.size() >= 2 && message.front() == 0xF0 && message.back() == 0xF7 &&
         allData(message.subspan(1, message.size() - 2));
}

}  // namespace Editor
