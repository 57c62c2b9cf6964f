#pragma once

#include <cstdint>

namespace CMA {
class MessageModelInterface;
}
namespace EvtSrv {
class EventPortManager;
}

// The bulk dump assistant.
namespace BDA {

// The way of numbered messages to the editor's screen. Visible here because the assistant holds one by value; an
// editor never uses it itself.
class MessageModelInterfaceWrapper {
 public:
  // open(), unless `silent` is true: then no message model is created and every operation does nothing.
  MessageModelInterfaceWrapper(EvtSrv::EventPortManager* manager, const char* modelName, bool silent,
                               unsigned char channel);
  // A copy shares the message model; destroying both is an error.
  MessageModelInterfaceWrapper(const MessageModelInterfaceWrapper& other) = default;
  MessageModelInterfaceWrapper& operator=(const MessageModelInterfaceWrapper& other) = default;
  virtual ~MessageModelInterfaceWrapper();

  // Creates the message model; it stays null when it cannot be allocated.
  void open(EvtSrv::EventPortManager* manager, const char* modelName, unsigned char channel);
  // Shows message `id`.
  void setId(std::uint16_t id);
  // Delivers what was set, now.
  void flush();

 private:
  CMA::MessageModelInterface* interface_;  // owned; null when silent
};

}  // namespace BDA
