#pragma once

#include <utility>

namespace BDA {

// What is owed to the editor at the end, whatever happens until then. now() does it, and lets through what it throws;
// if it never comes to that, because something was thrown, it is done in silence: what was thrown first is told.
//
//   jobTools.suspendOutputMidi();
//   GiveBack output([&] { jobTools.resumeOutputMidi(); });
//   ...
//   output.now();
template <typename Action>
class GiveBack {
 public:
  explicit GiveBack(Action action) : action_(std::move(action)) {}
  GiveBack(const GiveBack&) = delete;
  GiveBack& operator=(const GiveBack&) = delete;
  ~GiveBack() {
    if (isDone_) return;
    try {
      action_();
    } catch (...) {  // NOLINT(bugprone-empty-catch): see above
    }
  }

  // Once.
  auto now() {
    isDone_ = true;
    return action_();
  }

 private:
  Action action_;
  bool isDone_ = false;
};

}  // namespace BDA
