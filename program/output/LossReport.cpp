#include "output/LossReport.h"

#include <fmt/format.h>

#include "midi/Counted.h"

namespace Editor {

void LossReport::add(const InputLoss& loss) {
  if (file_ != loss.file) {
    finish();
    file_ = loss.file;
  }
  const std::string what = loss.kind == InputLoss::Kind::brokenFile
                               ? loss.reason
                               : fmt::format("{} dropped, {}", counted(loss.dropped, "byte"), loss.reason);
  const std::string line = fmt::format("{}: offset {}: {}", displayName(loss.file), loss.offset, what);
  if (loss.kind == InputLoss::Kind::realTime) {
    realTime_ += loss.dropped;
    return console_.detail(line);
  }
  isWhole_ = isWhole_ && loss.kind == InputLoss::Kind::loose;
  told_ < Console::kMostAlike ? console_.problem(line) : void();
  ++(told_ < Console::kMostAlike ? told_ : untold_);
}

void LossReport::finish() {
  if (untold_ > 0) console_.problem(fmt::format("{}: and {} more", displayName(file_), counted(untold_, "such place")));
  if (realTime_ > 0)
    console_.problem(fmt::format("{}: {} dropped", displayName(file_), counted(realTime_, "real-time byte")));
  told_ = untold_ = realTime_ = 0;
}

}  // namespace Editor
