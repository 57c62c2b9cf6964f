#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "convert/Batch.h"
#include "wire/Send.h"

namespace Editor {

// What of a batch of messages goes to an instrument, and what that overwrites there.
struct SendPlan {
  std::vector<Send::Unit> units;
  std::vector<std::string> places;   // readable, of each: what it overwrites, or has removed
  std::vector<std::string> effects;  // each, in words: what it does in the instrument
  std::vector<std::string> further;  // likewise: what they do beside
  std::uint64_t leftOut = 0;         // messages that are no dumps for this instrument
  std::set<unsigned> devices;        // whom the dumps are for, from 1
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;
  std::size_t longest = 0;  // of a message, in bytes

  // Units, single blocks, screens, and triggers with the file dumps that they write. What is broken in the batch is the
  // caller's business, and file dumps without a trigger.
  explicit SendPlan(const Batch& batch);

 private:
  void add(Send::Unit unit, std::string place, std::string effect);
  void addAlone(const Batch::Message& message, const Reading& reading);
  void addEmpty(const Send::Message& footer, BulkAddress address, const std::string& place);
  void keepMixingVoices();
  void group();
  void tellFurther(bool removesMixingVoices);
};

// Of its header, file dump or block.
BulkAddress addressOf(const Send::Unit& unit);

// The file dumps of a batch that no trigger writes.
std::vector<std::size_t> unwrittenIn(const Batch& batch);

}  // namespace Editor
