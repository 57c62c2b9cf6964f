#include "output/LossReport.h"

#include <fmt/format.h>

#include "midi/Counted.h"

namespace Editor {

void LossReport::add(const InputLoss& loss) {
  if (file_ != loss.file) {
    finish();
    file_ = loss.file;
  }
  const bool isRealTime = loss.kind == InputLoss::Kind::realTime;
  if (isRealTime) realTime_ += loss.dropped;
  if (isRealTime && !console_.isVerbose()) return;
  const bool isStructure = loss.kind == InputLoss::Kind::brokenFile;
  const std::string what =
      isStructure ? loss.reason : fmt::format("{} dropped, {}", counted(loss.dropped, "byte"), loss.reason);
  const std::string line = fmt::format("{}: offset {}: {}", displayName(loss.file), loss.offset, what);
  if (isRealTime) return console_.detail(line);
  isWhole_ = isWhole_ && loss.kind == InputLoss::Kind::loose;
  const std::string alike = isStructure ? "not built as it must be" : loss.reason;  // its reasons have numbers in them
  complaints_.tell(fmt::format("{}: {}", displayName(loss.file), alike), line);
}

void LossReport::finish() {
  complaints_.finish();
  if (realTime_ > 0)
    console_.problem(fmt::format("{}: {} dropped", displayName(file_), counted(realTime_, "real-time byte")));
  realTime_ = 0;
}

}  // namespace Editor
