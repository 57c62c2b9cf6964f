#pragma once

#include <cstddef>

#include "bda/Export.h"

// Debug output of the editor.
namespace Basekit {

// Receives what is traced on one thread. The editor owns its sinks.
class BDA_PLATFORM_API TracerSink {
 public:
  virtual ~TracerSink();

  // One text exactly as it was traced, line end included, not terminated. Called on the tracing thread; `text` is
  // valid during the call only.
  virtual void write(const char* text, std::size_t length) noexcept = 0;
};

// Debug text output. A line means that something was refused or failed; success is silent.
class BDA_PLATFORM_API Tracer {
 public:
  // Writes printf-style text of any length to the sink of the calling thread, or to standard error when the thread has
  // none. The caller's arguments must fit the format's conversions; `%d` and `%x` read 32 bits. Never throws.
  static void dumpError(const char* format, ...) noexcept;

  // Makes `sink` the calling thread's sink (null: standard error) and returns the one before it. The sink must outlive
  // its registration.
  static TracerSink* setThreadSink(TracerSink* sink) noexcept;
};

}  // namespace Basekit
