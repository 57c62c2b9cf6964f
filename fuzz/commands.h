#pragma once

// What arrives at an assistant, made of a fuzz target's input: one grammar for every editor that stands behind it, so
// that a finding in one can be tried in the others.
//
// An input that begins with F0 is messages one after another. Any other is a list of commands, which reach deeper:
// dumps and requests of addresses that exist, with the right checksum, whole units, and settings and services that
// change between them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "ExecuterNumbers.h"
#include "bda/BulkDumpAssistant.h"
#include "input.h"
#include "require.h"

namespace Commands {

using Bytes = std::vector<std::uint8_t>;

struct Block {
  std::uint8_t hi;
  std::uint8_t mid;
  std::uint8_t lo;
  std::uint16_t dataLength;
};

inline const std::vector<Block>& blocks() {
  static const std::vector<Block> all = [] {
    std::vector<Block> made;
    BDA::forEachBlock([&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
      made.push_back({row.hi, mid, lo, BDA::kExecuterDataLength[BDA::executerOf(row, mid)]});
    });
    return made;
  }();
  return all;
}

inline Bytes dumpOf(const Block& block, const Bytes& data) {
  Bytes message(data.size() + BDA::kDumpFrame);
  const Bytes head{
      0xF0,     0x7D,      0x00,    0x7F, 0x14, std::uint8_t(data.size() >> 7), std::uint8_t(data.size() & 0x7F),
      block.hi, block.mid, block.lo};
  std::copy(head.begin(), head.end(), message.begin());
  std::copy(data.begin(), data.end(), message.begin() + std::ptrdiff_t(BDA::kDataAt));
  message[message.size() - 2] = BDA::Utility::calcCheckSum(message.data(), static_cast<unsigned long>(message.size()));
  message.back() = 0xF7;
  return message;
}

// From each F0 to the next F7; the rest of the input where there is none.
template <typename Editor>
void playMessages(Editor& editor, Input input) {
  Bytes message;
  while (!input.empty()) {
    message.push_back(input.byte());
    if (message.back() != 0xF7 && !input.empty()) continue;
    editor.handle(message, BDA::DevicePort_Main);
    message.clear();
  }
}

enum Command : std::uint8_t {
  kRaw,
  kDump,
  kDumpOfOtherLength,
  kDumpOfAnyAddress,
  kRequest,
  kSetting,
  kPort,
  kUnit,
  kCommandCount
};

// A header, blocks from one place of the map on, and the footer.
template <typename Editor>
void playUnit(Editor& editor, Input& input, BDA::DevicePortNum port) {
  const Block& header = blocks()[input.word() % blocks().size()];
  const std::size_t first = input.word();
  const unsigned count = input.byte() % 32U;
  editor.handle(dumpOf({0x0E, header.mid, header.lo, 0}, {}), port);
  for (unsigned i = 0; i < count; ++i) {
    const Block& block = blocks()[(first + i) % 300];
    Bytes data = input.bytes(block.dataLength);
    data.resize(block.dataLength);
    editor.handle(dumpOf(block, data), port);
  }
  editor.handle(dumpOf({0x0F, header.mid, header.lo, 0}, {}), port);
}

template <typename Editor>
void playCommands(Editor& editor, Input input) {
  std::uint32_t number = BDA::DevicePort_Main;
  while (!input.empty()) {
    const auto port = BDA::DevicePortNum(number);
    switch (Command(input.byte() % kCommandCount)) {
      case kRaw:
        editor.handle(input.bytes(input.byte()), port);
        break;
      case kDump: {
        const Block& block = blocks()[input.word() % blocks().size()];
        Bytes data = input.bytes(block.dataLength == 0 ? input.byte() : block.dataLength);
        if (block.dataLength != 0) data.resize(block.dataLength);
        editor.handle(dumpOf(block, data), port);
        break;
      }
      case kDumpOfOtherLength: {
        const Block& block = blocks()[input.word() % blocks().size()];
        editor.handle(dumpOf(block, input.bytes(input.byte())), port);
        break;
      }
      case kDumpOfAnyAddress: {
        const Bytes address = input.bytes(3);
        if (address.size() == 3)
          editor.handle(dumpOf({address[0], address[1], address[2], 0}, input.bytes(input.byte())), port);
        break;
      }
      case kRequest: {
        const Block& block = blocks()[input.word() % blocks().size()];
        editor.handle({0xF0, 0x7D, 0x20, 0x7F, 0x14, block.hi, block.mid, block.lo, 0xF7}, port);
        break;
      }
      case kSetting: {
        const std::uint8_t which = input.byte();
        if (which % 3 == 2)
          editor.misbehave(input);
        else
          editor.set(std::uint16_t(50 + which % 3), input.byte());
        break;
      }
      case kPort:
        number = input.byte() % 8;
        break;
      case kUnit:
        playUnit(editor, input, port);
        break;
      case kCommandCount:
        break;
    }
  }
}

// An editor has
//   bool handle(const Bytes& message, BDA::DevicePortNum port)   whether the message did what it is for
//   void set(std::uint16_t parameter, std::uint8_t value)        of the system's utility settings
//   void misbehave(Input& input)                                 its services, in a way that it takes from the input
//   void heal()                                                  its services are well again
// Afterwards a clean system dump works.
template <typename Editor>
void play(Editor& editor, const std::uint8_t* data, std::size_t size) {
  if (size > 0 && data[0] == BDA::kStartOfExclusive)
    playMessages(editor, Input(data, size));
  else
    playCommands(editor, Input(data, size));
  editor.heal();
  editor.set(50, 1);
  editor.set(51, 0);
  require(editor.handle(dumpOf({0x00, 0x06, 0x00, 5}, Bytes(5)), BDA::DevicePort_Main),
          "a clean system dump is refused");
}

}  // namespace Commands
