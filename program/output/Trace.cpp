#include "output/Trace.h"

namespace Editor {

Trace::Trace(const std::string& path) {
  if (!path.empty()) file_.emplace(path);
}

void Trace::add(const MessageOrigin& origin, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                const Record& record) {
  if (file_) file_->write(jsonOf(origin, port, message, record) + '\n');
}

void Trace::commit() {
  if (file_) file_->commit();
}

}  // namespace Editor
