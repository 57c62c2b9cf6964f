#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"
#include "support/Calls.h"

namespace Testing {

// Recorded: "setId(11)" and "flush(messages)", with the port's name for what it flushes.
class FakeEventPort : public EvtSrv::EventPort {
 public:
  FakeEventPort(Calls& calls, std::string name) : calls_(calls), name_(std::move(name)) {}
  void post(std::uint16_t messageId) override;
  void flush(int mode) override;

  std::vector<int> posted;

 private:
  Calls& calls_;
  std::string name_;
};

class FakeEventPortManager : public EvtSrv::EventPortManager {
 public:
  explicit FakeEventPortManager(Calls& calls) : messages(calls, "messages"), calls_(calls) {}
  EvtSrv::EventPort* openPort(const char* modelName, unsigned char channel) override;
  ContSrv::Work* getContentsWork() override { return work; }

  FakeEventPort messages;
  ContSrv::Work* work = nullptr;

 private:
  Calls& calls_;
};

}  // namespace Testing
