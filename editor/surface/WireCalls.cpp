// The functions of the C surface that let something go on at a wire.

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <utility>

#include "models/ModelJson.h"
#include "surface/WireWork.h"

struct bda_wire {
  std::string error;
  std::shared_ptr<Editor::WireWork> work;  // null: it could not be begun
  bool isDone = false;
  std::optional<std::int64_t> start = {};           // the first time that its owner has told
  Editor::WireTime now{};                           // since then
  std::optional<Editor::WireTime> stuckSince = {};  // its owner takes nothing of what there is
};

namespace Editor {

namespace {

constexpr WireTime kPatience = std::chrono::milliseconds(5);  // with an owner who has not taken everything

template <typename Number>
nlohmann::ordered_json orNull(const std::optional<Number>& number) {
  return number ? nlohmann::ordered_json(*number) : nullptr;
}

nlohmann::ordered_json toJson(const WireWork::Progress& progress, std::uint64_t sent) {
  const double seconds = std::chrono::duration<double>(progress.time.value_or(WireTime{})).count();
  return {{"done", progress.done},
          {"units", orNull(progress.units)},
          {"sent", sent},
          {"bytes", orNull(progress.bytes)},
          {"seconds", orNull(progress.time ? std::optional(seconds) : std::nullopt)}};
}

// Those who call with a handle whose work has begun.
template <typename Act>
bda_result callWith(bda_wire* wire, Act act) noexcept {
  if (wire == nullptr) return BDA_MISUSED;
  return call(wire->error, [&] {
    if (wire->work == nullptr) throw CallFailure{BDA_MISUSED, "the wire could not be begun"};
    return act(*wire->work);
  });
}

// Makes a handle, and begins what `make` says.
template <typename Make>
bda_result begin(bda_wire** wire, Make make) noexcept {
  if (wire == nullptr) return BDA_MISUSED;
  *wire = new (std::nothrow) bda_wire;
  if (*wire == nullptr) return BDA_FAILED;
  return call((*wire)->error, [&] {
    (*wire)->work = make();
    return BDA_OK;
  });
}

// The same for what uses the library as long as the handle lives.
template <typename Make>
bda_result beginWith(bda_library* library, bda_wire** wire, Make make) noexcept {
  return begin(wire, [&] {
    require(library, "library");
    editorOf(library);
    requireChangeable(*library);
    std::shared_ptr<WireWork> work = make(library->editor);
    library->isReceiving = false;
    library->wire = work;
    return work;
  });
}

// No sum of a time and of what is waited for is more than there is room for.
WireTime timeOf(bda_wire& wire, std::int64_t now) {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 62;
  const std::int64_t start = wire.start.value_or(now);
  wire.start = start;
  const std::uint64_t passed = now <= start ? 0 : std::uint64_t(now) - std::uint64_t(start);
  wire.now = std::max(wire.now, WireTime(std::int64_t(std::min(passed, kMost))));
  return wire.now;
}

std::int64_t ownersTimeOf(const bda_wire& wire, std::optional<WireTime> time) {
  const std::int64_t start = wire.start.value_or(0);
  if (!time || (start > 0 && time->count() > BDA_NEVER - start)) return BDA_NEVER;
  return start + time->count();
}

void finish(bda_wire& wire, bool isWhole) {
  wire.isDone = true;
  wire.work->finish(isWhole);
}

// Lets it go on, up to its end. Where the library fails it goes no further.
template <typename Act>
void goOn(bda_wire& wire, Act act) {
  if (wire.isDone) return;
  try {
    act(wire.work->end());
  } catch (const CallFailure&) {
    throw;
  } catch (...) {
    finish(wire, false);
    throw;
  }
  if (wire.work->end().isDone()) finish(wire, true);
}

// Hands out what may go out now. When to be called again, for its owner may not take all of it.
std::optional<WireTime> sendOut(bda_wire& wire, WireEnd& end, bda_bytes_out out, void* context) {
  while (true) {
    const std::span<const std::uint8_t> bytes = end.toSend(wire.now);
    if (bytes.empty()) break;
    const std::ptrdiff_t taken = out(context, bytes.data(), bytes.size());
    if (taken < 0) {
      finish(wire, false);
      throw CallFailure{BDA_FAILED, "nobody is at the wire any more"};
    }
    const auto count = std::size_t(taken);
    if (count > bytes.size()) throw CallFailure{BDA_MISUSED, "out has taken more bytes than there were"};
    end.sent(count);
    wire.work->sent += count;
    if (count == bytes.size()) continue;
    wire.stuckSince = count > 0 ? wire.now : wire.stuckSince.value_or(wire.now);
    if (const std::optional<WireTime> patience = end.patience(); patience && wire.now - *wire.stuckSince >= *patience) {
      finish(wire, false);
      throw CallFailure{BDA_FAILED, "nobody takes what goes out any more"};
    }
    return std::max(end.due().value_or(wire.now), wire.now + kPatience);
  }
  wire.stuckSince.reset();
  return end.due();
}

}  // namespace

}  // namespace Editor

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

bda_result bda_wire_fetch(bda_library* library, const char* places, const char* options, bda_wire** wire) {
  return beginWith(library, wire,
                   [&](const std::shared_ptr<EmbeddedEditor>& editor) { return fetchOver(editor, places, options); });
}

bda_result bda_wire_send(bda_library* library, const char* places, const char* options, bda_wire** wire) {
  return begin(wire, [&] {
    require(library, "library");
    return sendFrom(editorOf(library), places, options);
  });
}

bda_result bda_wire_send_files(bda_files* files, const char* options, bda_wire** wire) {
  return begin(wire, [&] {
    require(files, "files");
    return sendFrom(*files, options);
  });
}

bda_result bda_wire_instrument(bda_library* library, const char* options, bda_wire** wire) {
  return beginWith(library, wire,
                   [&](const std::shared_ptr<EmbeddedEditor>& editor) { return instrumentOf(editor, options); });
}

void bda_wire_close(bda_wire* wire) { delete wire; }

const char* bda_wire_error(const bda_wire* wire) { return wire == nullptr ? "wire is NULL" : wire->error.c_str(); }

bda_result bda_wire_effects(bda_wire* wire, char** lines) {
  if (lines != nullptr) *lines = nullptr;
  return callWith(wire, [&](const WireWork& work) {
    handOut(copyOf(work.effects()), lines);
    return BDA_OK;
  });
}

bda_result bda_wire_progress(bda_wire* wire, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(wire, [&](const WireWork& work) {
    handOut(copyOf(jsonLine(toJson(work.progress(), work.sent)) + '\n'), json);
    return BDA_OK;
  });
}

bda_result bda_wire_feed(bda_wire* wire, int64_t now, const uint8_t* bytes, size_t size) {
  return callWith(wire, [&](const WireWork&) {
    if (size > 0) require(bytes, "bytes");
    const WireTime time = timeOf(*wire, now);
    goOn(*wire, [&](WireEnd& end) { size > 0 ? end.receive({bytes, size}, time) : end.pass(time); });
    return BDA_OK;
  });
}

bda_result bda_wire_tick(bda_wire* wire, int64_t now, bda_bytes_out out, void* context, int64_t* due) {
  if (due != nullptr) *due = BDA_NEVER;
  return callWith(wire, [&](const WireWork&) {
    if (out == nullptr) throw CallFailure{BDA_MISUSED, "out is NULL"};
    const WireTime time = timeOf(*wire, now);
    std::optional<WireTime> next;
    goOn(*wire, [&](WireEnd& end) {
      end.pass(time);
      next = sendOut(*wire, end, out, context);
    });
    if (due != nullptr && !wire->isDone) *due = ownersTimeOf(*wire, next);
    return BDA_OK;
  });
}

bda_result bda_wire_stop(bda_wire* wire) {
  return callWith(wire, [&](WireWork& work) {
    goOn(*wire, [&](WireEnd& end) {
      work.stop();
      end.pass(wire->now);
    });
    return BDA_OK;
  });
}

int bda_wire_is_done(const bda_wire* wire) { return wire == nullptr || wire->work == nullptr || wire->isDone ? 1 : 0; }

bda_result bda_wire_results(bda_wire* wire, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(wire, [&](WireWork& work) {
    handOut(copyOf(work.lines), json);
    work.lines.clear();
    return std::exchange(work.doubts, {}).end(wire->error);
  });
}
