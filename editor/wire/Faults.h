#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "wire/Pacer.h"

namespace Editor {

// Something that goes wrong on a wire, or at an instrument, with some of the messages.
struct Fault {
  // In the order in which they happen: what becomes of a message, when it comes, whether, where and how often, and what
  // comes besides.
  enum class Kind : std::uint8_t {
    deaf,         // what arrives is not answered
    full,         // what would be stored is not
    wrongDevice,  // a message has another device number
    flip,         // one bit
    clock,        // real-time bytes inside
    cut,          // a message ends early
    delay,        // before a message
    stall,        // in the midst of one
    slow,         // one goes out at another pace
    drop,
    reorder,  // one comes behind the next
    repeat,
    chatter,  // something else comes before a message
  };

  Kind kind{};
  bool isIncoming = false;  // of the messages that the instrument receives; else of those that it sends
  double rate = 0;          // 0 to 1
  std::uint64_t amount =
      0;  // delay and stall: milliseconds; slow: bytes a second; deaf and full: how many go well first
};

// "flip=0.01,delay=5%:300,in-drop=1%". Throws std::invalid_argument, which says what is wrong.
std::vector<Fault> parseFaults(std::string_view text);
// The names, each as it is written.
std::vector<std::string> faultNames();

// Has faults happen, each by its rate. The same seed does the same to the same messages, whatever their order in the
// list.
class Faults {
 public:
  explicit Faults(std::vector<Fault> faults = {}, std::uint64_t seed = 0);

  // What goes out for an answer of the instrument.
  std::vector<Pacer::Message> send(std::vector<Pacer::Message> answer);
  // What arrives of a message: bytes in which there may be none any more.
  std::vector<std::uint8_t> receive(std::span<const std::uint8_t> message);
  // Of each message that has arrived, once: whether it is not answered.
  bool isDeaf() { return happensBehind(Fault::Kind::deaf, heard_++); }
  // Of each that may bring something to store, once: whether there is no room for it; and that it was stored.
  bool isFull() { return happensBehind(Fault::Kind::full, stores_); }
  void hasStored() { ++stores_; }

 private:
  bool happens(double rate);
  std::uint64_t below(std::uint64_t count);
  bool happensBehind(Fault::Kind kind, std::uint64_t count);
  void send(const Fault& fault, std::vector<Pacer::Message>& messages, std::size_t at);
  void spoil(Fault::Kind kind, std::vector<std::uint8_t>& message);
  std::vector<std::uint8_t> somethingElse();

  std::vector<Fault> faults_;  // in the order in which they happen
  std::mt19937_64 random_;
  std::uint64_t heard_ = 0;
  std::uint64_t stores_ = 0;
};

}  // namespace Editor
