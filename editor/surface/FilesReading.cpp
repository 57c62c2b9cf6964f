#include "surface/FilesReading.h"

#include <fmt/format.h>

#include "messages/Text.h"

namespace Editor {

std::string placeOf(const InputMessage& message) {
  return fmt::format("{}: message {} at offset {}", escape(message.file), message.number, message.offset);
}

void doubt(const std::vector<MessageFault>& faults, const std::string& place, Doubts& doubts) {
  for (const MessageFault& fault : faults) doubts.add(fmt::format("{}: {}", place, fault.text));
}

void doubtLoss(const InputLoss& loss, Doubts& doubts) {
  if (isBroken(loss)) doubts.add(fmt::format("{}: at offset {}: {}", escape(loss.file), loss.offset, loss.reason));
}

}  // namespace Editor
