#include "EvtSrv/EventPort.h"
#include "EvtSrv/EventPortManager.h"
#include "EvtSrv/MemoryHolder.h"

namespace EvtSrv {

EventPort::~EventPort() = default;
EventPortManager::~EventPortManager() = default;
MemoryHolder::~MemoryHolder() = default;

}  // namespace EvtSrv
