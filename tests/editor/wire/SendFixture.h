#pragma once

// What is sent to an instrument at the other end of a wire, and what became of it.

#include <string>
#include <utility>
#include <vector>

#include "editor/wire/WireFixture.h"
#include "wire/ReadBack.h"
#include "wire/Send.h"

namespace Editor {

class SendFixture : public testing::Test {
 protected:
  using State = SentUnit::State;
  static constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
  static constexpr BulkAddress kOther{0x0E, 0x0A, 0x06};
  static constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};

  SendFixture() {
    units = {{kVoice, unitOf(kVoice, BDA::List::normalVoice, 1)},
             {kOther, unitOf(kOther, BDA::List::normalVoice, 2)},
             {kMaster, unitOf(kMaster, BDA::List::master, 3)}};
  }

  // To an instrument with those options.
  std::vector<SentUnit> send(const Instrument::Options& instrumentOptions, const Send::Options& options = {}) {
    Instrument instrument(target, instrumentOptions, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    return sendTo(instrument, options);
  }
  std::vector<SentUnit> sendTo(WireEnd& instrument, const Send::Options& options, Pauses pauses = {}) {
    std::vector<SentUnit> all;
    Send end(units, options, Pacer(kCablePace, pauses, Pacer::Takes::bytes),
             [&](SentUnit unit) { all.push_back(std::move(unit)); });
    LoopPort port(instrument);
    run(end, port, [] { return false; });
    elapsed = port.now();
    return all;
  }
  static std::vector<State> statesOf(const std::vector<SentUnit>& all) {
    std::vector<State> states;
    for (const SentUnit& unit : all) states.push_back(unit.state);
    return states;
  }
  // Whether the instrument really has it.
  bool isThere(const Send::Unit& unit) {
    return ReadBack().compare(unit.messages, answerOf(target, unit.asked.value())).empty();
  }
  WireTime timeOfAll() const { return durationOf(units, Pacer(kCablePace, {}, Pacer::Takes::bytes)); }

  std::vector<Send::Unit> units;
  EmbeddedEditor target;
  NobodyIsTold nobody;
  WireTime elapsed{};
};

}  // namespace Editor
