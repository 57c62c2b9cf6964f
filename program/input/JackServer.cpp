#include "input/JackServer.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>

namespace Editor {

namespace {

// A function of the library, if that is here.
template <typename Function>
Function* find(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_DEFAULT, name));
}

constexpr int kNoStart = 0x01;           // no server is started
constexpr unsigned long kDevice = 0x04;  // of a port
constexpr const char* kMidi = "8 bit raw midi";

}  // namespace

std::unique_ptr<JackServer> JackServer::connect(Inbox* inbox) {
  using Teller = void (*)(const char*);
  auto* const open = find<void*(const char*, int, int*, ...)>("jack_client_open");
  auto* const onCycle = find<int(void*, int (*)(std::uint32_t, void*), void*)>("jack_set_process_callback");
  auto* const onEnd = find<void(void*, void (*)(void*), void*)>("jack_on_shutdown");
  auto* const activate = find<int(void*)>("jack_activate");
  if (open == nullptr || onCycle == nullptr || onEnd == nullptr || activate == nullptr) return nullptr;
  for (const char* const set : {"jack_set_error_function", "jack_set_info_function"})
    if (auto* const setTeller = find<void(Teller)>(set)) setTeller([](const char*) {});
  std::unique_ptr<JackServer> server(new JackServer);
  server->inbox_ = inbox;
  int status = 0;
  server->client_ = open(("bda-watch-" + std::to_string(::getpid())).c_str(), kNoStart, &status);
  if (server->client_ == nullptr) return nullptr;
  onCycle(server->client_, cycled, server.get());
  onEnd(server->client_, ended, server.get());
  return activate(server->client_) == 0 ? std::move(server) : nullptr;
}

JackServer::~JackServer() {
  if (auto* const close = find<int(void*)>("jack_client_close"); client_ != nullptr && close != nullptr) close(client_);
}

int JackServer::cycled(std::uint32_t /*frames*/, void* server) {
  ++static_cast<JackServer*>(server)->cycles_;
  return 0;
}

void JackServer::ended(void* server) {
  if (Inbox* const inbox = static_cast<JackServer*>(server)->inbox_) inbox->fail("the JACK server has ended");
}

std::size_t JackServer::bytesInACycle() const {
  constexpr std::size_t kOfTheBuffer = 128;  // what describes it
  auto* const size = find<std::size_t(void*, const char*)>("jack_port_type_get_buffer_size");
  return size == nullptr ? kOfTheBuffer : std::max(size(client_, kMidi), 2 * kOfTheBuffer) - kOfTheBuffer;
}

bool JackServer::isDevice(const std::string& port) const {
  auto* const byName = find<void*(void*, const char*)>("jack_port_by_name");
  auto* const flags = find<int(const void*)>("jack_port_flags");
  void* const found = byName == nullptr || flags == nullptr ? nullptr : byName(client_, port.c_str());
  return found != nullptr && (unsigned(flags(found)) & kDevice) != 0;
}

}  // namespace Editor
