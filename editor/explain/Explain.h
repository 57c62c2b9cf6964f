#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "explain/BlockMap.h"
#include "explain/BlockReceiver.h"
#include "explain/MessageFile.h"
#include "messages/Messages.h"

namespace Editor {

// Which part of its message a byte is.
enum class Part : std::uint8_t {
  outside,  // of any message
  frame,    // F0, F7
  maker,
  device,  // the message's type and the device number
  model,
  byteCount,
  address,
  data,
  checksum,
};
const char* wordOf(Part part);

// A parameter that some bit of a byte can change.
struct CarriedParameter {
  std::string path;
  std::uint8_t bits;
  std::string how;
  ParameterValue value;  // what an instrument gets from the message
};

// Bytes of a file dump's name or content, counted from 0, that a byte carries: one, or the high bits of several.
struct PackedBytes {
  std::vector<std::size_t> numbers;
  bool areHighBits = false;
};

// What one byte of a message file is.
struct ByteMeaning {
  Part part = Part::outside;
  std::string reason;  // outside: why, where it is a MIDI byte

  // Of the message that it stands in.
  std::uint32_t message = MessageFile::kNone;
  Reading::Kind kind = Reading::Kind::foreign;
  std::optional<unsigned> device;
  std::optional<BulkAddress> address;
  std::string name;  // of the address: readable, or in words where it has none

  std::optional<std::size_t> dataByte;  // of a dump: counted from 0
  std::vector<CarriedParameter> parameters;
  std::optional<std::uint8_t> unused;  // of a block of parameters: the bits that carry nothing

  std::optional<ContentId> content;  // that the file dump in which it stands is of
  std::optional<PackedBytes> contentBytes;
  std::optional<PackedBytes> nameBytes;
};

// Explains the bytes of a file, which outlives it: fastest in their order.
class FileExplainer {
 public:
  explicit FileExplainer(const MessageFile& file) : file_(file) {}

  ByteMeaning explain(const MessageFile::Byte& byte);

 private:
  void enter(std::uint32_t message);
  void explainData(ByteMeaning& meaning);
  const BlockMap* mapOf(BulkAddress block);

  const MessageFile& file_;
  BlockReceiver receiver_;
  std::map<std::uint32_t, std::optional<BlockMap>> maps_;

  // The message that was explained last.
  std::uint32_t message_ = MessageFile::kNone;
  Reading reading_;
  std::string name_;
  std::span<const std::uint8_t> data_;  // of a dump
  const BlockMap* map_ = nullptr;       // of a block of parameters as long as it must be
  ModelSet received_;
  std::vector<ModelField> fields_;  // of what was received
};

// A data byte that carries a parameter.
struct CarryingByte {
  BulkAddress address;    // of its block
  std::uint64_t message;  // counted from 1
  std::size_t dataByte;
  std::uint8_t bits;
  std::string how;
  std::uint8_t value;  // of the whole byte
};

// Those of all parameters that some messages carry, by their paths.
std::map<std::string, std::vector<CarryingByte>> bytesByPath(const std::vector<std::vector<std::uint8_t>>& messages);

// Whether some byte of the block carries that parameter or name.
bool carries(BulkAddress block, const std::string& path);

// The paths of all parameters and names that the units of these places have, whether a block carries them or not; none
// for places that are not made of parameters.
std::vector<std::string> pathsOf(const std::vector<BulkAddress>& places);

}  // namespace Editor
