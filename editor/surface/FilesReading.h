#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "messages/MessageReader.h"
#include "messages/Verification.h"
#include "surface/Handles.h"

namespace Editor {

// Visits each piece of all files, with the number of its file.
template <typename VisitMessage, typename VisitLoss>
void readAll(const bda_files& files, VisitMessage visitMessage, VisitLoss visitLoss) {
  std::size_t number = 0;
  MessageReader reader([&](const InputMessage& message) { visitMessage(message, number); },
                       [&](const InputLoss& loss) { visitLoss(loss, number); });
  for (const bda_files::File& file : files.list) {
    BytesInMemory bytes(file.bytes);
    reader.read(bytes, file.name);
    ++number;
  }
}

std::string placeOf(const InputMessage& message);

// What is broken at a place, and what of a file is lost where that breaks a message or the file.
void doubt(const std::vector<MessageFault>& faults, const std::string& place, Doubts& doubts);
void doubtLoss(const InputLoss& loss, Doubts& doubts);

}  // namespace Editor
