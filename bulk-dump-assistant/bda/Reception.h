#pragma once

#include <cstddef>

#include "Address.h"
#include "bda/BulkDumpObserver.h"

namespace BDA {

// What became of one message, as far as it is known.
struct Reception : BulkDumpReport {
  bool hasThrown = false;  // a service, or storage that ran out

  void setAddress(const Address& of) {
    hasAddress = true;
    address[0] = of.getHi();
    address[1] = of.getMid();
    address[2] = of.getLo();
  }
};

// Makes `reception` the one that the calling thread's messages are noted in, as long as it lives. Null: nobody wants
// to know.
class Notes {
 public:
  explicit Notes(Reception* reception) noexcept : before_(current_) { current_ = reception; }
  Notes(const Notes&) = delete;
  Notes& operator=(const Notes&) = delete;
  ~Notes() { current_ = before_; }

  // The first refusal of a message is the reason; what follows from it is not.
  static void refusal(BulkDumpRefusal refusal) noexcept;
  // Of what was just caught.
  static void thrown() noexcept;
  static void handedOver(std::size_t contents = 1) noexcept;

 private:
  static constinit thread_local Reception* current_;

  Reception* before_;
};

// False when something was thrown, which is noted.
template <typename Action>
bool attempt(Action action) noexcept {
  try {
    action();
    return true;
  } catch (...) {
    Notes::thrown();
    return false;
  }
}

}  // namespace BDA
