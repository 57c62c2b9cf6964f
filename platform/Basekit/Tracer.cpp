#include "bda/platform/Basekit/Tracer.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

namespace Basekit {
namespace {

thread_local TracerSink* threadSink = nullptr;

void write(const char* text, std::size_t length) noexcept {
  if (threadSink != nullptr)
    threadSink->write(text, length);
  else
    std::fwrite(text, 1, length, stderr);
}

}  // namespace

TracerSink::~TracerSink() = default;

void Tracer::dumpError(const char* format, ...) noexcept {
  char shortText[512];
  std::va_list arguments;
  std::va_list again;
  va_start(arguments, format);
  va_copy(again, arguments);
  const int length = std::vsnprintf(shortText, sizeof shortText, format, arguments);
  va_end(arguments);
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof shortText) {
    write(shortText, static_cast<std::size_t>(length));
  } else if (length > 0) {
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    const std::unique_ptr<char[]> longText(new (std::nothrow) char[size]);
    if (longText != nullptr) {
      std::vsnprintf(longText.get(), size, format, again);
      write(longText.get(), size - 1);
    } else {
      write(shortText, sizeof shortText - 1);
    }
  }
  va_end(again);
}

TracerSink* Tracer::setThreadSink(TracerSink* sink) noexcept {
  TracerSink* const before = threadSink;
  threadSink = sink;
  return before;
}

}  // namespace Basekit
