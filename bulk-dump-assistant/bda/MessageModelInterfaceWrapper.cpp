#include "bda/MessageModelInterfaceWrapper.h"

#include <new>

#include "bda/platform/CMA/MessageModelInterface.h"
#include "bda/platform/EvtSrv/EventPort.h"

namespace BDA {

MessageModelInterfaceWrapper::MessageModelInterfaceWrapper(EvtSrv::EventPortManager* manager, const char* modelName,
                                                           bool silent, unsigned char channel)
    : interface_(nullptr) {
  if (!silent) open(manager, modelName, channel);
}

MessageModelInterfaceWrapper::~MessageModelInterfaceWrapper() {
  delete interface_;
  interface_ = nullptr;
}

void MessageModelInterfaceWrapper::open(EvtSrv::EventPortManager* manager, const char* modelName,
                                        unsigned char channel) {
  interface_ = new (std::nothrow) CMA::MessageModelInterface(manager, modelName, channel);
}

void MessageModelInterfaceWrapper::setId(std::uint16_t id) {
  if (interface_ != nullptr) interface_->setId(id);
}

void MessageModelInterfaceWrapper::flush() {
  if (interface_ == nullptr) return;
  if (EvtSrv::EventPort* const port = interface_->getEventPort()) port->flush(0);
}

}  // namespace BDA
