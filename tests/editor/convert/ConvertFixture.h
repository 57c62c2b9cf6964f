#pragma once

// Batches of messages, for tests.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acceptance/Library.h"
#include "convert/Batch.h"
#include "editor/messages/BulkMessages.h"

// A whole unit: header, all blocks of the list filled with `value`, footer.
inline std::vector<Bytes> unit(Editor::BulkAddress header, BDA::List list, std::uint8_t value,
                               std::uint8_t device = 0) {
  std::vector<Bytes> messages{dump(header, {}, device)};
  for (const Editor::BulkAddress block : blocksOf(list))
    messages.push_back(dump(block, Bytes(*Editor::findBlock(block)->dataLength, value), device));
  messages.push_back(dump({BDA::kFooterHi, header.mid, header.lo}, {}, device));
  return messages;
}

inline Editor::Batch batchOf(const std::vector<std::vector<Bytes>>& groups) {
  Editor::BatchBuilder builder;
  for (const std::vector<Bytes>& group : groups)
    for (const Bytes& message : group) builder.add(message);
  return builder.finish();
}

inline Bytes joined(const std::vector<std::vector<Bytes>>& groups) {
  Bytes all;
  for (const std::vector<Bytes>& group : groups)
    for (const Bytes& message : group) all.insert(all.end(), message.begin(), message.end());
  return all;
}

inline Bytes bytesOf(const Editor::Batch& batch) {
  Bytes all;
  for (const Editor::Batch::Message& message : batch.messages)
    all.insert(all.end(), message.bytes.begin(), message.bytes.end());
  return all;
}

inline std::vector<std::string> placesOf(const Editor::Batch& batch) {
  std::vector<std::string> places;
  for (const Editor::Batch::Unit& one : batch.units) places.push_back(one.place);
  return places;
}
