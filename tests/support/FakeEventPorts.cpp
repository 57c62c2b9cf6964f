#include "support/FakeEventPorts.h"

#include "support/FakeCalls.h"

namespace Testing {

void FakeEventPort::post(std::uint16_t messageId) {
  calls_.use("setId", 1, 0, [&] { return call("setId", messageId); });
  if (calls_.records) posted.push_back(messageId);
}

void FakeEventPort::flush(int mode) {
  calls_.use("flush", 1, 0, [&] { return mode == 0 ? call("flush", name_) : call("flush", name_, mode); });
}

EvtSrv::EventPort* FakeEventPortManager::openPort(const char* modelName, unsigned char channel) {
  return calls_.use("openPort", 1, 0, [&] { return call("openPort", modelName, channel); }) != 0 ? &messages : nullptr;
}

}  // namespace Testing
