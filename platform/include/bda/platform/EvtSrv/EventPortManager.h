#pragma once

#include "bda/Export.h"

namespace ContSrv {
class Work;
}

// Events: how models reach the editor's screen and pages.
namespace EvtSrv {

class EventPort;

// The editor's switchboard: hands out event ports and the contents store that belongs to them. The editor implements
// and owns it; it outlives everything that was constructed with it.
class BDA_PLATFORM_API EventPortManager {
 public:
  virtual ~EventPortManager();

  // The port under which a model of that name registers; `channel` tells several of one name apart. Null when the
  // editor does not listen to such a model: what is sent there is dropped.
  virtual EventPort* openPort(const char* modelName, unsigned char channel) = 0;

  // The contents store behind this editor, null when it has none (see ContSrv::WorkManager).
  virtual ContSrv::Work* getContentsWork() = 0;
};

}  // namespace EvtSrv
