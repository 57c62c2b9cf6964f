#include "messages/InputMessage.h"

namespace Editor {

InputLoss::Kind kindOf(StreamJoiner::Reason reason) {
  switch (reason) {
    case StreamJoiner::Reason::RealTime:
      return InputLoss::Kind::realTime;
    case StreamJoiner::Reason::Stray:
      return InputLoss::Kind::loose;
    default:
      return InputLoss::Kind::cutShort;
  }
}

}  // namespace Editor
