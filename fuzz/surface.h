#pragma once

// What calls of the C surface are made of, and what each of them promises: handles in a few slots, arguments out of the
// fuzz target's input, and answers that are looked at and given back.

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bda/editor.h"
#include "commands.h"
#include "editor/messages/BulkMessages.h"
#include "messages/Units.h"

namespace Surface {

inline bool isUtf8(std::string_view text) {
  try {
    (void)nlohmann::json(text).dump();
  } catch (const nlohmann::json::type_error&) {
    return false;
  }
  return true;
}

inline bool areJsonLines(std::string_view lines) {
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    if (end == std::string_view::npos || !nlohmann::json::accept(lines.substr(0, end))) return false;
    lines.remove_prefix(end + 1);
  }
  return true;
}

// A pointer that a function sets, whatever stood there before, and what it hands out with it. Nobody may want it.
template <typename T>
class Answer {
 public:
  explicit Answer(bool isWanted) : isWanted_(isWanted) {}
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer() {
    if (value_ != before()) bda_free(value_);
  }

  T** out() { return isWanted_ ? &value_ : nullptr; }
  T* get() const { return isWanted_ ? value_ : nullptr; }
  bool isThere() const { return get() != nullptr; }
  void check(bda_result result) const {
    if (!isWanted_) return;
    require(value_ != before(), "a pointer that was not set");
    require(value_ != nullptr || result != BDA_OK, "BDA_OK without an answer");
  }

 private:
  static T* before() {
    static T somewhere{};
    return &somewhere;
  }

  bool isWanted_;
  T* value_ = before();
};

// Messages, a whole one for each unit: what its header is, and of what blocks.
struct Unit {
  Editor::BulkAddress header;
  BDA::List list;
};
inline constexpr std::array kUnits{
    Unit{{0x0E, 0x0A, 0x05}, BDA::List::normalVoice}, Unit{{0x0E, 0x0A, 0x06}, BDA::List::normalVoice},
    Unit{{0x0E, 0x0B, 0x05}, BDA::List::normalVoice}, Unit{{0x0E, 0x28, 0x01}, BDA::List::drumVoice},
    Unit{{0x0E, 0x30, 0x00}, BDA::List::drumVoice},   Unit{{0x0E, 0x31, 0x00}, BDA::List::normalVoice},
    Unit{{0x0E, 0x40, 0x03}, BDA::List::performance}, Unit{{0x0E, 0x5F, 0x00}, BDA::List::multi},
    Unit{{0x0E, 0x60, 0x06}, BDA::List::remote},      Unit{{0x0E, 0x70, 0x04}, BDA::List::master},
};

inline Bytes joinedUnit(const Unit& unit, std::uint8_t value) {
  Bytes all;
  const auto add = [&](const Bytes& message) { all.insert(all.end(), message.begin(), message.end()); };
  add(dump(unit.header));
  for (const Editor::BulkAddress block : blocksOf(unit.list)) add(blockDump(block, value));
  add(dump(footerOf(unit.header)));
  return all;
}

// What a wire has behind its handle.
struct Wire {
  bda_wire* handle = nullptr;
  bda_library* uses = nullptr;  // answers nothing meanwhile
  std::uint64_t sent = 0;       // bytes that were taken
  Bytes onCable = {};           // those that nobody was fed with yet
  std::int64_t due = 0;
  bool wasDone = false;
  std::uint64_t units = 0;  // that it said were done
  bool wasToldAll = false;  // its results, when it was done
};

// What a stream was fed with, and what was heard of it.
struct Visited {
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;
};
struct Joiner {
  bda_joiner* handle = nullptr;
  std::uint64_t fed = 0;
  Visited heard = {};
};

using Texts = std::initializer_list<const char*>;

inline constexpr Texts kPlaces{
    "voice:user1:6", "voice:user1",   "voice:user1:7",  "0E 0A 05", "voice:user1:1..16",
    "voice:edit",    "system",        "voice:user2",    "master:5", "voice:user1:6 voice:user1:7",
    "drum:user:2",   "additional",    "voice:user2:1",  "drum:gm",  "performance:user1:4",
    "multi:edit",    "voice:user3:6", "voice:user1:6.", "",         "0E"};
inline constexpr Texts kNameFiles{"parameter voice.common[3] Volume\n", "# none\n", "", "parameter voice.common[3]\n",
                                  "value"};
inline constexpr Texts kNames{"a.syx", "Piano", "Grand", "A name that is far too long", "\xC3\xA4", "\"\\\n", "", "b"};

// Arguments, and the handles that there are.
class Caller {
 public:
  static constexpr std::size_t kSlots = 3;

  explicit Caller(Input given) : input(given) {}
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;
  ~Caller() {
    for (std::size_t i = 0; i < kSlots; ++i) {
      bda_library_close(libraries[i]);  // before the wires that use it
      bda_wire_close(wires[i].handle);
      bda_files_close(files[i]);
      bda_joiner_close(joiners[i].handle);
    }
  }

  // One slot more than there are: nothing.
  std::size_t slot() { return input.byte() % kSlots; }
  bda_library* library() { return handleOf(libraries); }
  bda_files* oneFiles() { return handleOf(files); }
  Wire* wire() {
    const std::size_t which = input.byte() % (kSlots + 1);
    return which < kSlots && wires[which].handle != nullptr ? &wires[which] : nullptr;
  }
  bool flag() { return input.byte() % 2 == 0; }
  // Nearly every caller wants an answer.
  bool wants() { return input.byte() % 8 != 7; }

  // A text: one of those that fit, bytes of the input, one that was handed out, or nothing. It lives as long as the
  // call.
  const char* text(Texts fitting) {
    const std::uint8_t which = input.byte();
    if (which == 0) return kept(rawText());
    if (which == 1) return nullptr;
    if (which == 2) return kept(lastLine);
    return kept(*(fitting.begin() + (which - 3U) % fitting.size()));
  }
  std::string rawText() {
    const Bytes raw = input.bytes(input.byte());
    return {raw.begin(), raw.end()};
  }
  // As long as it is and no longer, so that a byte read after its end is noticed.
  const char* kept(std::string_view text) {
    std::vector<char>& copy = texts_.emplace_back(text.begin(), text.end());
    copy.push_back('\0');
    copy.shrink_to_fit();
    return copy.data();
  }

  // Bytes for a function that gets a pointer and a size: messages of many kinds, and what is none. They live as long as
  // the call.
  std::span<const std::uint8_t> bytes() {
    bytes_ = someBytes();
    bytes_.shrink_to_fit();
    return bytes_;
  }

  void endCall() { texts_.clear(); }
  // No input may take long. False: there is nothing left to be spent.
  bool spend(unsigned effort) {
    left_ -= std::min(left_, effort);
    return left_ > 0;
  }

  // The time now, and from now on; or one that was or will be.
  std::int64_t time(const Wire* wire) {
    constexpr std::int64_t kSteps[] = {0, 0, 1, 3'000, 300'000, 3'000'000, 3'600'000'000, 400'000'000'000};
    constexpr std::int64_t kOthers[] = {std::numeric_limits<std::int64_t>::min(), BDA_NEVER, -1, std::int64_t{1} << 62};
    const std::uint8_t how = input.byte() % 16;
    if (how < std::size(kSteps)) return clock += kSteps[how];
    if (how < std::size(kSteps) + std::size(kOthers)) return kOthers[how - std::size(kSteps)];
    if (wire != nullptr && wire->due != BDA_NEVER) clock = std::max(clock, wire->due);
    return clock;
  }

  Input input;
  std::array<bda_library*, kSlots> libraries{};
  std::array<bda_files*, kSlots> files{};
  std::array<Joiner, kSlots> joiners{};
  std::array<Wire, kSlots> wires{};
  std::string lastLine = "{}";  // the first of the last answer
  Bytes lastBytes;              // that were handed out
  std::int64_t clock = -5'000'000;

 private:
  template <typename Handle>
  Handle* handleOf(const std::array<Handle*, kSlots>& slots) {
    const std::size_t which = input.byte() % (kSlots + 1);
    return which < kSlots ? slots[which] : nullptr;
  }

  Bytes someBytes() {
    switch (input.byte() % 8) {
      case 0:
        return {};
      case 1:
        return input.bytes(input.word() % 2048);
      case 2: {
        const Commands::Block& block = Commands::blocks()[input.word() % Commands::blocks().size()];
        return Commands::dumpOf(block, Bytes(block.dataLength == 0 ? 16 : block.dataLength, input.byte() % 128));
      }
      case 3:
        return lastBytes;
      case 4: {
        const Commands::Block& block = Commands::blocks()[input.word() % Commands::blocks().size()];
        return request({block.hi, block.mid, block.lo}, input.byte() % 16);
      }
      case 5: {
        constexpr std::string_view kHex = "# two\nF0 7D 20 7F 14 0E 0A 05 F7\nF0 43 F7\n";
        return {kHex.begin(), kHex.end()};
      }
      case 6: {  // a unit that is broken somewhere
        Bytes unit = joinedUnit(kUnits[input.byte() % kUnits.size()], 3);
        const std::size_t where = input.word() % unit.size();
        if (const std::uint8_t other = input.byte(); other < 200)
          unit[where] ^= other;
        else
          unit.resize(where);
        return unit;
      }
      default: {
        const Unit& unit = kUnits[input.byte() % kUnits.size()];
        return joinedUnit(unit, input.byte() % 128);
      }
    }
  }

  unsigned left_ = 2'000;
  std::deque<std::vector<char>> texts_;
  Bytes bytes_;
};

inline void judge(bda_result result, const char* error) {
  require(result >= BDA_OK && result <= BDA_MISUSED, "a result that does not exist");
  require((*error == '\0') == (result == BDA_OK), "BDA_OK with an error, or another result without one");
  require(isUtf8(error), "an error that is no UTF-8");
}

// An answer that is JSON, or other text.
inline bda_result text(const Answer<char>& answer, bda_result result, const char* error) {
  judge(result, error);
  answer.check(result);
  if (answer.isThere()) require(isUtf8(answer.get()), "an answer that is no UTF-8");
  return result;
}
inline bda_result json(Caller& caller, const Answer<char>& answer, bda_result result, const char* error) {
  text(answer, result, error);
  if (!answer.isThere()) return result;
  require(areJsonLines(answer.get()), "a line that is no JSON");
  const std::string_view lines = answer.get();
  if (!lines.empty()) caller.lastLine = lines.substr(0, lines.find('\n'));
  return result;
}

// ---- Those who are called back

inline bool isMessage(const std::uint8_t* message, std::size_t size) {
  return size >= 2 && message[0] == 0xF0 && message[size - 1] == 0xF7;
}

inline void hearSent(void* context, unsigned port, const std::uint8_t* message, std::size_t size) {
  require(port == 1 || port == 4 || port == 5 || port == 6, "a port that does not exist");
  require(isMessage(message, size), "what is sent is no message");
  static_cast<Bytes*>(context)->assign(message, message + size);
}

inline void visit(void* context, std::uint64_t number, std::uint64_t /*offset*/, const std::uint8_t* message,
                  std::size_t size) {
  auto* const visited = static_cast<Visited*>(context);
  require(number == ++visited->messages, "a message that is not the next");
  require(isMessage(message, size), "what is visited is no message");
  visited->bytes += size;
}
inline void visitLoss(void* context, std::uint64_t /*offset*/, std::uint64_t count, const char* reason) {
  require(count > 0 && *reason != '\0', "nothing is lost");
  static_cast<Visited*>(context)->bytes += count;
}

}  // namespace Surface
