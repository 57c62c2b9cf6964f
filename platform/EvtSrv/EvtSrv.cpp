#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"
#include "bda/platform/EvtSrv/MemoryHolder.h"

namespace EvtSrv {

EventPort::~EventPort() = default;
EventPortManager::~EventPortManager() = default;
MemoryHolder::~MemoryHolder() = default;

}  // namespace EvtSrv
