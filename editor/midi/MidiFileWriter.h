#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace Editor {

// Writes System Exclusive messages as a Standard MIDI File of format 0, at such times that whoever plays it sends at
// the speed of a MIDI cable: a message begins when the one before it has ended at 3,125 bytes a second, and a pause has
// passed.
//
// A tick is half the time of a byte, at the tempo that players without a tempo event take too.
class MidiFileWriter {
 public:
  explicit MidiFileWriter(std::chrono::milliseconds pause);

  // One message F0..F7; at most 64 MB, and so the pause is at most ten minutes: what a delta time can say.
  void add(std::span<const std::uint8_t> message);
  // The whole file; the last call.
  std::vector<std::uint8_t> finish();

  // From the first byte of the first message to the last byte of the last one.
  std::chrono::microseconds duration() const { return kTick * end_; }

 private:
  static constexpr std::chrono::microseconds kTick{160};
  static constexpr std::uint32_t kTicksPerByte = 2;

  void wait(std::uint64_t until);  // the delta time of an event at that tick
  void number(std::uint32_t value);

  std::uint32_t pause_;  // in ticks
  std::vector<std::uint8_t> track_;
  std::uint64_t now_ = 0;   // the tick of the last event
  std::uint64_t next_ = 0;  // that of the next message
  std::uint64_t end_ = 0;   // at which the last message has been sent
};

}  // namespace Editor
