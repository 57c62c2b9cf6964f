#pragma once

#include <cstdint>

#include "bda/Export.h"

namespace EvtSrv {

// Where a model's values leave for its listeners: numbered messages to the editor's screen, parameter changes to its
// pages. The editor implements it and owns every port.
class BDA_PLATFORM_API EventPort {
 public:
  virtual ~EventPort();

  // Posts the number of an on-screen message (see CMA::MessageModelInterface). Delivered in order of posting, at the
  // latest by the next flush.
  virtual void post(std::uint16_t messageId) = 0;

  // Delivers what is still held back. Callers pass 0: everything, now.
  virtual void flush(int mode) = 0;
};

}  // namespace EvtSrv
