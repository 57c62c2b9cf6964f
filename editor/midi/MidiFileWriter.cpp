#include "midi/MidiFileWriter.h"

#include <array>
#include <string_view>

namespace Editor {

namespace {

constexpr std::uint32_t kTicksPerQuarter = 3125;
constexpr std::array<std::uint8_t, 7> kTempo{0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20};  // 500,000 us a quarter
constexpr std::array<std::uint8_t, 3> kEndOfTrack{0xFF, 0x2F, 0x00};

void append(std::vector<std::uint8_t>& to, std::span<const std::uint8_t> bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

void appendBigEndian(std::vector<std::uint8_t>& to, std::uint32_t value, int bytes) {
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) to.push_back(std::uint8_t(value >> shift));
}

void appendType(std::vector<std::uint8_t>& to, std::string_view type) { to.insert(to.end(), type.begin(), type.end()); }

}  // namespace

MidiFileWriter::MidiFileWriter(std::chrono::milliseconds pause)
    : pause_(std::uint32_t((std::chrono::microseconds(pause) + kTick - std::chrono::microseconds(1)) / kTick)) {
  append(track_, kTempo);
}

void MidiFileWriter::add(std::span<const std::uint8_t> message) {
  wait(next_);
  track_.push_back(message.front());
  number(std::uint32_t(message.size() - 1));
  append(track_, message.subspan(1));
  end_ = now_ + kTicksPerByte * message.size();
  next_ = end_ + pause_;
}

std::vector<std::uint8_t> MidiFileWriter::finish() {
  wait(end_);  // or a player would stop before the last message has left
  append(track_, kEndOfTrack);
  std::vector<std::uint8_t> file;
  file.reserve(track_.size() + 22);
  appendType(file, "MThd");
  appendBigEndian(file, 6, 4);
  appendBigEndian(file, 0, 2);  // the format
  appendBigEndian(file, 1, 2);  // of tracks
  appendBigEndian(file, kTicksPerQuarter, 2);
  appendType(file, "MTrk");
  appendBigEndian(file, std::uint32_t(track_.size()), 4);
  append(file, track_);
  return file;
}

void MidiFileWriter::wait(std::uint64_t until) {
  number(std::uint32_t(until - now_));
  now_ = until;
}

// Seven bits a byte, the highest first.
void MidiFileWriter::number(std::uint32_t value) {
  for (int shift = 21; shift > 0; shift -= 7)
    if (value >> shift != 0) track_.push_back(std::uint8_t(0x80 | (value >> shift & 0x7F)));
  track_.push_back(std::uint8_t(value & 0x7F));
}

}  // namespace Editor
