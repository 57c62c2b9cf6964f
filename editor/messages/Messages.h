#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "messages/AddressNames.h"

namespace Editor {

// What a complete System Exclusive message says of itself, judged by its bytes and the address map alone: without a
// library, for any device number.
struct Reading {
  enum class Kind : std::uint8_t {
    foreign,  // not for this instrument: never judged
    dump,
    request,
    other,    // of a type that is for the instrument, but no bulk message
    invalid,  // of a type that does not exist, or too short for its type or for any
  };
  enum class Verdict : std::uint8_t {
    good,
    removes,  // good, and has contents removed: a file dump without data, a trigger that removes all mixing voices
    foreign,
    checksumWrong,
    lengthWrong,       // does not fit the message's own byte count, or its type
    blockLengthWrong,  // fits, but the block at that address has another length
    fileDumpBroken,    // fits, but it carries no content, which is never written, or more than one
    unknownAddress,
    typeUnknown,
  };

  Kind kind = Kind::foreign;
  Verdict verdict = Verdict::foreign;
  std::optional<unsigned> device;                // 1 to 16; nothing: foreign, or too short for any type
  std::optional<BulkAddress> address;            // of dumps and requests that are long enough to have one
  std::optional<BlockFacts> block;               // what the map says of that address
  Role role = Role::unknown;                     // of that address
  std::size_t dataBytes = 0;                     // of a dump
  bool isNamed = false;                          // of a file dump: it carries a name, whatever is wrong with it
  std::optional<ContentId> removes;              // by a good file dump without data, or footer of an empty voice
  bool removesMixingVoices = false;              // a good trigger that has all of them removed first
  std::optional<std::uint8_t> checksum;          // the one that the dump carries
  std::optional<std::uint8_t> expectedChecksum;  // the one that it should carry
  std::string note;                              // why it is not good, in words
};

Reading readMessage(std::span<const std::uint8_t> message);
// What a good file dump carries.
struct FileDumpParts {
  std::string name;
  std::vector<std::uint8_t> content;
};
FileDumpParts partsOfFileDump(std::span<const std::uint8_t> message);
// Whether a whole message is of the instrument's maker, be it for another model.
bool isOfThisMaker(std::span<const std::uint8_t> message);

// The request of that address, for an instrument with that device number (0 to 15).
std::vector<std::uint8_t> requestMessage(BulkAddress address, std::uint8_t device = 0);
// The dump of that block with that data, for such an instrument.
std::vector<std::uint8_t> dumpMessage(BulkAddress address, std::span<const std::uint8_t> data, std::uint8_t device = 0);
// The trigger that has the file dumps before it written, and removes nothing.
inline std::vector<std::uint8_t> writeTrigger(std::uint8_t device = 0) {
  return dumpMessage(kWriteTrigger, {}, device);
}

const char* wordOf(Reading::Kind kind);
const char* wordOf(Reading::Verdict verdict);
// Those that are good, that remove something and foreign ones are fine, all others are broken.
bool isBroken(const Reading& reading);
// What an end in the midst of a message leaves of it: broken, of no known type, and the instrument passes over it.
inline bool isRemainder(const Reading& reading) { return reading.kind == Reading::Kind::invalid && !reading.device; }
// What is wrong with a broken one: "checksum wrong: 12 instead of 34".
std::string describeFault(const Reading& reading);

// What the message carries, in words: "element 3 oscillator", "request of system common" ...
std::string describeContent(const Reading& reading);

}  // namespace Editor
