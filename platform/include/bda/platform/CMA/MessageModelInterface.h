#pragma once

#include <cstdint>

#include "bda/Export.h"

namespace EvtSrv {
class EventPort;
class EventPortManager;
}  // namespace EvtSrv

namespace CMA {

// What the editor knows the bulk dump assistant by.
namespace BDA {

// The name under which the bulk dump assistant's message model registers.
inline constexpr char ModelName[] = "BulkDumpAssistant";

}  // namespace BDA

// Numbered messages on the editor's screen; the texts are the editor's. A message stays until another id is set.
class BDA_PLATFORM_API MessageModelInterface {
 public:
  // Opens the port of `modelName` at `manager`, which outlives this object. Without a manager, or when it opens none,
  // nothing is shown.
  MessageModelInterface(EvtSrv::EventPortManager* manager, const char* modelName, unsigned char channel);
  MessageModelInterface(const MessageModelInterface&) = delete;
  MessageModelInterface& operator=(const MessageModelInterface&) = delete;
  ~MessageModelInterface();

  // Posts message `id`: it takes the place of the one before it. Nothing without a port.
  void setId(std::uint16_t id);
  // The port on which the ids leave; null when nothing is shown.
  EvtSrv::EventPort* getEventPort() const { return port_; }

 private:
  EvtSrv::EventPort* port_;  // the manager's
};

}  // namespace CMA
