#include "output/LossReport.h"

#include <fmt/format.h>

#include "midi/Counted.h"

namespace Editor {

namespace {

std::string lineOf(const InputLoss& loss) {
  const std::string what = loss.kind == InputLoss::Kind::brokenFile
                               ? std::string(loss.reason)
                               : fmt::format("{} dropped, {}", counted(loss.dropped, "byte"), loss.reason);
  return fmt::format("{}: offset {}: {}", displayName(loss.file), loss.offset, what);
}

}  // namespace

void LossReport::add(const InputLoss& loss) {
  if (file_ != loss.file) {
    finish();
    file_ = loss.file;
  }
  if (loss.kind == InputLoss::Kind::realTime) {
    realTime_ += loss.dropped;
    if (console_.isVerbose()) console_.detail(lineOf(loss));
    return;
  }
  isWhole_ = isWhole_ && !isBroken(loss);
  const bool isStructure = loss.kind == InputLoss::Kind::brokenFile;  // its reasons have numbers in them
  complaints_.tell(isStructure ? "not built as it must be" : loss.reason, [&] { return lineOf(loss); });
}

void LossReport::finish() {
  complaints_.finish(displayName(file_) + ": ");
  if (realTime_ > 0)
    console_.problem(fmt::format("{}: {} dropped", displayName(file_), counted(realTime_, "real-time byte")));
  realTime_ = 0;
}

}  // namespace Editor
