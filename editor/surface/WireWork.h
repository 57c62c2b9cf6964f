#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "surface/Handles.h"
#include "wire/WireEnd.h"

namespace Editor {

// What goes on behind the handle of a wire, and what its owner is to be told of that.
class WireWork {
 public:
  WireWork() = default;
  WireWork(const WireWork&) = delete;
  WireWork& operator=(const WireWork&) = delete;
  virtual ~WireWork() = default;

  virtual WireEnd& end() = 0;
  virtual void stop() = 0;
  // It is done, or goes no further (`isWhole` is false): tells what is known only now. Throws LibraryError.
  virtual void finish(bool isWhole) = 0;
  // What it does at the other end, in words, a line for each.
  virtual std::string effects() const { return {}; }

  // How far it has come. What nobody knows before it is done is nothing.
  struct Progress {
    std::uint64_t done = 0;                   // units or messages whose results are told
    std::optional<std::uint64_t> units = {};  // all of them
    std::optional<std::uint64_t> bytes = {};  // that go out if nothing is left out, and is asked for, as is `time`
    std::optional<WireTime> time = {};        // that this takes
  };
  virtual Progress progress() const = 0;

  std::uint64_t sent = 0;  // bytes
  std::string lines;       // results that nobody has asked for yet
  Doubts doubts;           // what is wrong with them
};

// Those that begin it. `text` is the options that the caller gives, as bda/editor.h says. They throw CallFailure,
// TargetError, TargetJsonError and LibraryError.
std::shared_ptr<WireWork> fetchOver(std::shared_ptr<EmbeddedEditor> editor, const char* places, const char* text);
std::shared_ptr<WireWork> sendFrom(EmbeddedEditor& editor, const char* places, const char* text);
std::shared_ptr<WireWork> sendFrom(const bda_files& files, const char* text);
std::shared_ptr<WireWork> instrumentOf(std::shared_ptr<EmbeddedEditor> editor, const char* text);

}  // namespace Editor
