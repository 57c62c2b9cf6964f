#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace Editor {

// What a driver hands over on a thread of its own, until the port's thread takes it. No message is torn. Whoever hands
// over waits for no memory, and for whoever takes no longer than two vectors need to change places.
class Inbox {
 public:
  // What has come since the last time.
  struct Content {
    std::span<const std::uint8_t> bytes;  // valid until the next take()
    std::uint64_t dropped = 0;            // bytes that came behind them, for which there was no room
    std::string failure;                  // why nothing more comes; "": it may
  };

  // Room for so many bytes. Throws std::system_error.
  explicit Inbox(std::size_t capacity);
  Inbox(const Inbox&) = delete;
  Inbox& operator=(const Inbox&) = delete;
  ~Inbox();

  // Any thread. As soon as there is no room for one message none is taken until take(): what is dropped is in one
  // piece.
  void push(std::span<const std::uint8_t> message);
  // Any thread. So many bytes have come that somebody before had no room for.
  void drop(std::uint64_t count);
  // Any thread. The first reason stays.
  void fail(const std::string& why);

  // One thread.
  Content take();
  // There is something to read from it as long as there is something to take.
  int descriptor() const { return descriptors_[0]; }

 private:
  void wake();

  int descriptors_[2] = {-1, -1};  // to read from, to write to
  std::mutex mutex_;               // of all below but taken_
  bool isAwake_ = false;           // there is a byte in the pipe
  std::vector<std::uint8_t> waiting_;
  std::uint64_t dropped_ = 0;
  std::string failure_;
  std::vector<std::uint8_t> taken_;
};

}  // namespace Editor
