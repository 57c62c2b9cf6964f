#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "wire/Inbox.h"

namespace Editor {

// A connection of our own to the JACK server, to know what RtMidi does not tell: whether it is there, whether it has
// ended, and how often it has moved what was sent. It uses the library that RtMidi has brought along, quietly.
class JackServer {
 public:
  // Null: there is no server. When it ends, and an inbox is given, that is told there; it outlives the connection.
  static std::unique_ptr<JackServer> connect(Inbox* inbox = nullptr);
  JackServer(const JackServer&) = delete;
  JackServer& operator=(const JackServer&) = delete;
  ~JackServer();

  // Counts up: once it has by 2, all that was sent before has gone.
  std::uint64_t cycles() const { return cycles_; }
  // How many bytes it moves from a port in a cycle, at least.
  std::size_t bytesInACycle() const;
  // Whether the port of that full name is one of a device.
  bool isDevice(const std::string& port) const;

 private:
  JackServer() = default;
  static int cycled(std::uint32_t frames, void* server);
  static void ended(void* server);

  void* client_ = nullptr;
  Inbox* inbox_ = nullptr;
  std::atomic<std::uint64_t> cycles_ = 0;
};

}  // namespace Editor
