#pragma once

#include <cstddef>
#include <cstdint>

#include "bda/Export.h"

namespace EvtSrv {

// The argument or the answer of a job event: a run of bytes that the sender of the event owns.
class BDA_PLATFORM_API MemoryHolder {
 public:
  virtual ~MemoryHolder();

  // The bytes; null when there are none.
  virtual const std::uint8_t* data() const = 0;
  // How many they are.
  virtual std::size_t size() const = 0;
};

}  // namespace EvtSrv
