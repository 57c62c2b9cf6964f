// Arbitrary sequences of messages into the assistant over the embedded editor: nothing is read or written outside of a
// message, every answer is framed as a message is, and afterwards a clean system dump still works.
//
// An input that begins with F0 is a raw stream. Any other is a list of commands, which reach deeper: dumps and requests
// of addresses that exist, with the right checksum, and settings that change between them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "AddressRows.h"
#include "AssistantHost.h"
#include "BulkMessage.h"
#include "EditorNumbers.h"
#include "ExecuterNumbers.h"
#include "Outcome.h"
#include "contents/ContentsWork.h"
#include "contents/Library.h"
#include "contents/ModelStore.h"
#include "input.h"
#include "midi/MidiFile.h"
#include "require.h"
#include "scratch.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Block {
  std::uint8_t hi;
  std::uint8_t mid;
  std::uint8_t lo;
  std::uint16_t dataLength;
};

const std::vector<Block>& blocks() {
  static const std::vector<Block> all = [] {
    std::vector<Block> made;
    BDA::forEachBlock([&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
      made.push_back({row.hi, mid, lo, BDA::kExecuterDataLength[BDA::executerOf(row, mid)]});
    });
    return made;
  }();
  return all;
}

class Instrument {
 public:
  explicit Instrument(Editor::Library& library) : store_(library), work_(library), host_(store_, &work_) {}

  void handle(const Bytes& message, std::uint32_t port) {
    // As long as the message and no longer, so that a byte read after its end is noticed.
    const Editor::AssistantHost::Effects effects =
        host_.handle(std::span(message.data(), message.size()), BDA::DevicePortNum(port));
    require(effects.result <= BDA::BulkMsg_RequestSkipped, "a result that does not exist");
    require(effects.report.kind == effects.result, "an observer that was told of something else");
    // What is logged, or shown as an error, is a refusal, but for a message of another device that was not asked for.
    const bool isUnasked = effects.shown.empty() && (effects.result == BDA::BulkMsg_DeviceNumberOff ||
                                                     effects.result == BDA::BulkMsg_WrongDeviceNumber);
    const bool isError = !effects.shown.empty() && effects.shown.back() >= BDA::kCheckSumErrorMessage;
    require(Editor::hasFailed(effects) == ((!effects.log.empty() && !isUnasked) || isError),
            "a refusal that log and screen do not know, or one that they alone know");
    for (const Editor::AssistantHost::Sent& sent : effects.sent) {
      const bool isEcho = sent.bytes == message;
      require(isEcho || (sent.bytes.size() >= 5 && sent.bytes.front() == 0xF0 && sent.bytes.back() == 0xF7),
              "an answer is no message");
    }
  }

  void set(std::uint16_t parameter, std::uint8_t value) {
    host_.tools().getSystemModel()->getUtility()->set(&value, parameter, 1);
  }
  void setLoading(bool loading) { work_.setLoadSaveFlag(loading ? 1 : 0); }

  void proveHealthy() {
    set(50, 1);
    set(51, 0);
    setLoading(false);
    const Bytes dump{0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x05, 0x00, 0x06, 0x00, 0, 0, 0, 0, 0, 0x75, 0xF7};
    const Editor::AssistantHost::Effects effects = host_.handle(dump, BDA::DevicePort_Main);
    require(effects.result == BDA::BulkMsg_BulkDump && effects.log.empty(), "a clean system dump is refused");
  }

 private:
  Editor::ModelStore store_;
  Editor::ContentsWork work_;
  Editor::AssistantHost host_;
};

Bytes dumpOf(const Block& block, const Bytes& data) {
  Bytes message(data.size() + BDA::kDumpFrame);
  const Bytes head{
      0xF0,     0x7D,      0x00,    0x7F, 0x14, std::uint8_t(data.size() >> 7), std::uint8_t(data.size() & 0x7F),
      block.hi, block.mid, block.lo};
  std::copy(head.begin(), head.end(), message.begin());
  std::copy(data.begin(), data.end(), message.begin() + std::ptrdiff_t(BDA::kDataAt));
  message[message.size() - 2] = BDA::Utility::calcCheckSum(message.data(), message.size());
  message.back() = 0xF7;
  return message;
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

void run(Instrument& instrument, Input input) {
  std::uint32_t port = BDA::DevicePort_Main;
  while (!input.empty()) {
    switch (Command(input.byte() % kCommandCount)) {
      case kRaw:
        instrument.handle(input.bytes(input.byte()), port);
        break;
      case kDump: {
        const Block& block = blocks()[input.word() % blocks().size()];
        Bytes data = input.bytes(block.dataLength == 0 ? input.byte() : block.dataLength);
        if (block.dataLength != 0) data.resize(block.dataLength);
        instrument.handle(dumpOf(block, data), port);
        break;
      }
      case kDumpOfOtherLength:
        instrument.handle(dumpOf(blocks()[input.word() % blocks().size()], input.bytes(input.byte())), port);
        break;
      case kDumpOfAnyAddress: {
        const Bytes address = input.bytes(3);
        if (address.size() == 3)
          instrument.handle(dumpOf({address[0], address[1], address[2], 0}, input.bytes(input.byte())), port);
        break;
      }
      case kRequest: {
        const Block& block = blocks()[input.word() % blocks().size()];
        instrument.handle({0xF0, 0x7D, 0x20, 0x7F, 0x14, block.hi, block.mid, block.lo, 0xF7}, port);
        break;
      }
      case kSetting: {
        const std::uint8_t which = input.byte();
        if (which % 3 == 2)
          instrument.setLoading(input.byte() % 2 != 0);
        else
          instrument.set(std::uint16_t(50 + which % 3), input.byte());
        break;
      }
      case kPort:
        port = input.byte() % 8;
        break;
      case kUnit: {  // a header, blocks from one place of the map on, and the footer
        const Block& header = blocks()[input.word() % blocks().size()];
        const std::size_t first = input.word();
        const unsigned count = input.byte() % 32U;
        instrument.handle(dumpOf({0x0E, header.mid, header.lo, 0}, {}), port);
        for (unsigned i = 0; i < count; ++i) {
          const Block& block = blocks()[(first + i) % 300];
          Bytes data = input.bytes(block.dataLength);
          data.resize(block.dataLength);
          instrument.handle(dumpOf(block, data), port);
        }
        instrument.handle(dumpOf({0x0F, header.mid, header.lo, 0}, {}), port);
        break;
      }
      case kCommandCount:
        break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Unchanged between inputs: each runs in a transaction that is taken back.
  static const Scratch scratch("receive_fuzz");
  static Editor::Library library(scratch.library());
  const Editor::Library::Transaction unchanged(library);
  Instrument instrument(library);
  if (size > 0 && data[0] == BDA::kStartOfExclusive) {
    for (const Editor::MidiFile::Message& message : Editor::readMidiFile(std::span(data, size)).messages)
      instrument.handle(Bytes(message.bytes.begin(), message.bytes.end()), BDA::DevicePort_Main);
  } else {
    run(instrument, Input(data, size));
  }
  instrument.proveHealthy();
  return 0;
}
