#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "messages/Units.h"
#include "targets/ContentKind.h"

namespace Editor {

// Messages on their way from files into files, in their order, and the whole units among them.
struct Batch {
  struct Unit {
    enum class Form : std::uint8_t {
      blocks,    // header to footer, as a UnitFollower finds it complete
      fileDump,  // one good message; the trigger behind it is none of its messages
      json,      // what `show --json` printed: no messages yet, one that is empty keeps its place
    };

    Form form = Form::blocks;
    std::string place;                      // readable: the same for all addresses of a content; of JSON may be ""
    std::optional<BulkAddress> address;     // of its header or file dump, of `system` its first block; of JSON none
    ContentKind kind = ContentKind::voice;  // not of JSON
    bool removes = false;                   // a file dump without data: it removes what stands in its place
    nlohmann::ordered_json object = {};     // of JSON, without its "target"
    std::string target = {};                // of JSON: that, as it was written
    std::string source = {};                // of JSON: the file and line that it is from, in words
    std::string from = {};                  // its place before it was addressed to another
  };
  struct Message {
    std::vector<std::uint8_t> bytes;
    std::optional<std::size_t> unit = {};  // which one it is part of; nothing: it is of none
    // Of a trigger: the units that it has written. A file dump is written by the next one for its own device.
    std::vector<std::size_t> writes = {};
  };

  std::vector<Unit> units;  // in the order in which they begin
  std::vector<Message> messages;
  struct BrokenMessage {
    std::optional<BulkAddress> address;
    bool isFileDump;
    std::uint64_t message;  // its number, from 1
    std::string why;
  };
  std::vector<UnitReport> broken;             // what is no whole unit, by the numbers of its messages, from 1
  std::vector<BrokenMessage> brokenMessages;  // but those of which a broken unit tells

  // The places of the messages of each unit, in their order.
  std::vector<std::vector<std::size_t>> messagesByUnit() const;
};

// "voice:user1:6: broken (message 3): ..."
std::string describe(const Batch::BrokenMessage& message);

// Makes a batch. A file dump is a unit whether its trigger comes or not: its content is whole.
class BatchBuilder {
 public:
  // The next message F0..F7.
  void add(std::span<const std::uint8_t> message);
  // What `show --json` printed, in the place of its dumps. Throws TargetJsonError when its "target" is none.
  void addJson(nlohmann::ordered_json object, std::string source = {});
  // The last call.
  Batch finish();

 private:
  struct Found {
    Batch::Unit unit;
    std::vector<std::uint64_t> messages;  // numbers from 1
  };

  void take(const std::vector<UnitReport>& reports);
  void leaveOutLackingBlocks();
  ContentKind kindOfBlocks(const UnitReport& report) const;

  Batch batch_;
  UnitFollower follower_;
  std::map<unsigned, UnitFollower> fileDumpFollowers_;  // by device: each follows what is for that one alone
  std::vector<Found> found_;
  std::map<std::uint64_t, std::uint64_t> writtenBy_;  // file dumps and their triggers, by their messages
  std::set<std::uint64_t> brokenBlocks_;              // messages; headers and footers that are taken all the same, too
};

// ---- What is changed in all of them, or in one ----

// Addresses a dump to another block, with the checksum that it then has.
void readdress(std::vector<std::uint8_t>& dump, BulkAddress address);
// For the device of that number, from 1. Only this instrument's messages have one, and no checksum covers it.
void setDevice(std::vector<std::uint8_t>& message, unsigned device);
// The trigger that writes a file dump, for the same device.
std::vector<std::uint8_t> triggerFor(std::span<const std::uint8_t> fileDump);

}  // namespace Editor
