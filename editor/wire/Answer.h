#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "messages/Units.h"

namespace Editor {

// What an instrument sends for one request: a unit from header to footer, or a single dump.
//
// A request carries no checksum, so the instrument may have understood another one: what answers that, and what still
// comes of an earlier answer, is of no use. A unit is whole when its header came, then each of its blocks, in any order
// but no two that differ under one address, and then its footer, with nothing between that begins or ends another.
class Answer {
 public:
  enum class State : std::uint8_t {
    none,    // nothing of it has come
    begun,   // its header has, and maybe more
    whole,   // all of it
    empty,   // the instrument says that nothing is stored there
    spoilt,  // it has come to its end, and is not whole
  };

  // To a request of that address, which isAnsweredByUnit(), from the instrument with that device number (0 to 15).
  Answer(BulkAddress asked, std::uint8_t device) : asked_(asked), device_(device) {}

  // The next message from the instrument. Whether it brings the answer on, or may have before it was broken.
  bool next(const Reading& reading, std::span<const std::uint8_t> message);

  State state() const { return state_; }
  bool isEnded() const { return state_ != State::none && state_ != State::begun; }
  // Whether a dump came that is broken.
  bool isBroken() const { return isBroken_; }
  // What has not come: header, blocks and footer; of a single dump, that.
  std::vector<BulkAddress> missing() const;
  // Whole: header, blocks and footer as they came, none twice. Empty: what says so.
  std::vector<std::vector<std::uint8_t>> takeMessages() { return std::move(messages_); }

 private:
  bool single(const Reading& reading, std::span<const std::uint8_t> message);
  bool header(BulkAddress address, std::span<const std::uint8_t> message);
  bool part(BulkAddress address, std::span<const std::uint8_t> message);
  bool footer(BulkAddress address, std::span<const std::uint8_t> message);
  bool emptyUnit(const Reading& reading, std::span<const std::uint8_t> message);
  bool broken(const Reading& reading);
  void begin(State state);
  void keep(BulkAddress address, std::span<const std::uint8_t> message);

  const BulkAddress asked_;
  const std::uint8_t device_;
  State state_ = State::none;
  bool isBroken_ = false;
  std::optional<OpenUnit> open_;
  bool isEmptyBegun_ = false;  // by the header of an empty mixing voice
  bool isOther_ = false;       // what comes is of another unit, until its footer
  unsigned begins_ = 0;        // headers
  unsigned strays_ = 0;        // blocks without one
  bool contradicts_ = false;   // a block came twice, and differs; or what is empty had begun to come
  std::vector<std::vector<std::uint8_t>> messages_;
  std::vector<BulkAddress> addresses_;  // of each
};

// Whether such a request is answered by a unit, or by a single dump, that can be stored.
bool isAnsweredByUnit(BulkAddress asked);

}  // namespace Editor
