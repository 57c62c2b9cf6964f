#pragma once

#include <memory>
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

  std::string lines;  // results that nobody has asked for yet
  Doubts doubts;      // what is wrong with them
};

// Those that begin it. `options` is what the caller gives, as bda/editor.h says. They throw CallFailure, TargetError,
// TargetJsonError and LibraryError.
std::shared_ptr<WireWork> fetchOver(std::shared_ptr<EmbeddedEditor> editor, const char* places, const char* options);
std::shared_ptr<WireWork> sendFrom(EmbeddedEditor& editor, const char* places, const char* options);
std::shared_ptr<WireWork> sendFrom(const bda_files& files, const char* options);
std::shared_ptr<WireWork> instrumentOf(std::shared_ptr<EmbeddedEditor> editor, const char* options);

}  // namespace Editor
