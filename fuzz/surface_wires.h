#pragma once

// Calls with a wire. One that is done stays so, and what it says of itself is what was seen of it.

#include <algorithm>
#include <utility>

#include "surface_library.h"

namespace Surface {

inline constexpr Texts kSending{"{}",
                                R"({"pace": "none"})",
                                R"({"pace": "none", "verify": true, "timeout": 0.5, "retries": 1})",
                                R"({"pace": "usb", "changed": true})",
                                R"({"pace": 100000, "to-edit-buffer": true})",
                                R"({"whole-messages": true, "pause": 20, "unit-pause": 300})",
                                R"({"pace": 0})"};
inline constexpr Texts kFetching{"{}",
                                 R"({"pace": "none"})",
                                 R"({"pace": "none", "atomic": true, "timeout": 0.5, "retries": 1})",
                                 R"({"pace": "none", "remove-empty": true, "retries": 0})",
                                 R"({"timeout": 1e9, "retries": 1000})",
                                 R"({"timeout": 0})"};
inline constexpr Texts kServing{"{}",
                                R"({"pace": "none"})",
                                R"({"pace": "none", "faults": "drop=1%", "seed": 3})",
                                R"({"pace": "none", "faults": "deaf=0.5:1,flip=1%", "echo": true})",
                                R"({"port": 4})",
                                R"({"port": 5, "faults": "full=1,delay=0.05:300"})",
                                R"({"port": 6, "seed": 9223372036854775807})"};

// The end of each call with a wire.
inline bda_result judged(Wire* wire, bda_result result) {
  bda_wire* const handle = wire == nullptr ? nullptr : wire->handle;
  judge(result, bda_wire_error(handle));
  if (wire == nullptr) return result;
  const int isDone = bda_wire_is_done(handle);
  require(isDone == 1 || isDone == 0, "a wire that is half done");
  require(isDone == 1 || !wire->wasDone, "a wire that was done and is not");
  wire->wasDone = isDone == 1;
  return result;
}
inline bda_wire* handleOf(const Wire* wire) { return wire == nullptr ? nullptr : wire->handle; }

// Begins one: begin(&handle). `isKept`: it uses the library as long as it lives.
template <typename Begin>
bda_result beginning(Caller& caller, bda_library* library, bool isKept, Begin begin) {
  Wire& wire = caller.wires[caller.slot()];
  bda_wire_close(std::exchange(wire, {}).handle);
  const bool isFree = !isUsed(caller, library);
  const bda_result result = begin(&wire.handle);
  require(wire.handle != nullptr, "a wire without a handle");
  require((bda_wire_is_done(wire.handle) == 0) == (result == BDA_OK), "a wire that failed is not done, or another is");
  require(isFree || result == BDA_MISUSED, "a second wire of a library that one uses");
  if (isKept && result == BDA_OK) wire.uses = library;
  return judged(&wire, result);
}

inline bda_result wireFetch(Caller& caller) {
  bda_library* const library = caller.library();
  const char* const places = caller.text(kPlaces);
  const char* const options = caller.text(kFetching);
  return beginning(caller, library, true,
                   [&](bda_wire** wire) { return bda_wire_fetch(library, places, options, wire); });
}

inline bda_result wireSend(Caller& caller) {
  bda_library* const library = caller.library();
  const char* const places = caller.text(kPlaces);
  const char* const options = caller.text(kSending);
  return beginning(caller, library, false,
                   [&](bda_wire** wire) { return bda_wire_send(library, places, options, wire); });
}

inline bda_result wireSendFiles(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const char* const options = caller.text(kSending);
  return beginning(caller, nullptr, false, [&](bda_wire** wire) { return bda_wire_send_files(files, options, wire); });
}

inline bda_result wireInstrument(Caller& caller) {
  bda_library* const library = caller.library();
  const char* const options = caller.text(kServing);
  return beginning(caller, library, true, [&](bda_wire** wire) { return bda_wire_instrument(library, options, wire); });
}

inline bda_result wireClose(Caller& caller) {
  bda_wire_close(std::exchange(caller.wires[caller.slot()], {}).handle);
  return BDA_OK;
}

inline bda_result wireEffects(Caller& caller) {
  Wire* const wire = caller.wire();
  Answer<char> answer(caller.wants());
  const bda_result result = bda_wire_effects(handleOf(wire), answer.out());
  text(answer, result, bda_wire_error(handleOf(wire)));
  return judged(wire, result);
}

inline bda_result wireProgress(Caller& caller) {
  Wire* const wire = caller.wire();
  Answer<char> answer(caller.wants());
  const bda_result result = bda_wire_progress(handleOf(wire), answer.out());
  json(caller, answer, result, bda_wire_error(handleOf(wire)));
  if (answer.isThere()) {
    const nlohmann::json progress = nlohmann::json::parse(answer.get());
    require(progress["sent"] == wire->sent, "bytes that have gone out and were not taken");
    require(progress["units"].is_null() || progress["done"] <= progress["units"], "more units than there are");
    require(progress["done"] >= wire->units, "units that are no longer done");
    wire->units = progress["done"];
  }
  return judged(wire, result);
}

inline void feed(Wire* wire, std::int64_t now, std::span<const std::uint8_t> bytes) {
  const bool wasDone = wire != nullptr && wire->wasDone;
  const bda_result result = bda_wire_feed(handleOf(wire), now, bytes.data(), bytes.size());
  judged(wire, result);
  require(result == BDA_OK || handleOf(wire) == nullptr || bda_wire_is_done(wire->handle) == 1,
          "a wire that failed and is not done");
  require(!wasDone || result == BDA_OK || result == BDA_MISUSED, "a wire that hears what comes behind its end");
}

inline bda_result wireFeed(Caller& caller) {
  Wire* const wire = caller.wire();
  const std::int64_t now = caller.time(wire);
  const std::uint8_t from = caller.input.byte();
  if (from >= 128) {  // what another one has sent
    const Bytes bytes = std::exchange(caller.wires[from % Caller::kSlots].onCable, {});
    feed(wire, now, bytes);
    return BDA_OK;
  }
  feed(wire, now, caller.bytes());
  return BDA_OK;
}

// A port at the end of a wire: takes so many bytes in all, and then none; or is gone, or lies.
struct Port {
  Wire* wire;
  std::size_t room;
  enum { open, gone, lying } state = open;
};

inline std::ptrdiff_t take(void* context, const std::uint8_t* bytes, std::size_t size) {
  Port& port = *static_cast<Port*>(context);
  require(size > 0, "nothing goes out");
  require(!port.wire->wasDone, "a wire that sends behind its end");
  if (port.state == Port::gone) return -1;
  if (port.state == Port::lying) return std::ptrdiff_t(size) + 1;
  constexpr std::size_t kLongestCable = 1'000'000;
  const std::size_t taken = std::min(size, port.room);
  port.room -= taken;
  port.wire->sent += taken;
  if (port.wire->onCable.size() < kLongestCable)
    port.wire->onCable.insert(port.wire->onCable.end(), bytes, bytes + taken);
  return std::ptrdiff_t(taken);
}

inline bda_result tick(Wire* wire, std::int64_t now, Port port, bool isDueWanted) {
  std::int64_t due = 0;
  const bda_result result = bda_wire_tick(handleOf(wire), now, take, &port, isDueWanted ? &due : nullptr);
  judged(wire, result);
  if (wire == nullptr) return result;
  require(result != BDA_FAILED || wire->wasDone, "a wire that failed and is not done");
  require(result != BDA_MISUSED || port.state == Port::lying || wire->wasDone, "a port that has taken too much");
  if (isDueWanted) {
    require(!wire->wasDone || due == BDA_NEVER, "a wire that is done and wants to be called");
    wire->due = due;
  }
  return result;
}

inline bda_result wireTick(Caller& caller) {
  constexpr std::size_t kAll = SIZE_MAX;
  Wire* const wire = caller.wire();
  const std::int64_t now = caller.time(wire);
  const std::uint8_t how = caller.input.byte() % 16;
  if (how == 0) {
    const bda_result result = bda_wire_tick(handleOf(wire), now, nullptr, nullptr, nullptr);
    require(result == BDA_MISUSED, "a tick that nobody takes bytes of");
    return judged(wire, result);
  }
  Port port{wire, how == 3 ? caller.input.byte() : how == 4 ? 0 : kAll};
  if (how == 1) port.state = Port::gone;
  if (how == 2) port.state = Port::lying;
  return tick(wire, now, port, caller.wants());
}

inline bda_result wireStop(Caller& caller) {
  Wire* const wire = caller.wire();
  return judged(wire, bda_wire_stop(handleOf(wire)));
}

inline bda_result wireResults(Caller& caller) {
  Wire* const wire = caller.wire();
  Answer<char> answer(caller.wants());
  const bda_result result = bda_wire_results(handleOf(wire), answer.out());
  json(caller, answer, result, bda_wire_error(handleOf(wire)));
  if (wire == nullptr) return judged(wire, result);
  require(result == BDA_OK || result == BDA_MISUSED || answer.isThere() || answer.out() == nullptr,
          "a refusal without the results");
  require(!wire->wasToldAll || result != BDA_REFUSED, "what is wrong is told twice");
  require(!wire->wasToldAll || !answer.isThere() || *answer.get() == '\0', "results behind the end");
  wire->wasToldAll = wire->wasDone;
  return judged(wire, result);
}

// Two wires with a cable between them, for some time.
inline bda_result wiresPlay(Caller& caller) {
  Wire* const here = caller.wire();
  Wire* const there = caller.wire();
  const unsigned most = caller.input.byte();
  if (here == nullptr || there == nullptr) return BDA_MISUSED;
  for (unsigned i = 0; i < most && !(here->wasDone && there->wasDone) && caller.spend(1); ++i) {
    for (const auto& [from, to] : {std::pair(here, there), std::pair(there, here)}) {
      if (tick(from, caller.clock, {from, SIZE_MAX}, true) != BDA_OK) return BDA_FAILED;
      const Bytes bytes = std::exchange(from->onCable, {});
      if (!bytes.empty()) feed(to, caller.clock, bytes);
    }
    const std::int64_t due = std::min(here->due, there->due);
    if (due != BDA_NEVER) caller.clock = std::max(caller.clock, due);
  }
  return here->wasDone ? BDA_OK : BDA_REFUSED;
}

}  // namespace Surface
