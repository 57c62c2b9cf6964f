#include "cli/Messages.h"

#include <fmt/format.h>

#include "AddressRows.h"
#include "bda/BulkDumpAssistant.h"

namespace Editor {

namespace {

constexpr std::size_t kShortest = 9;
constexpr std::size_t kRequestLength = 9;
constexpr std::size_t kDumpFrame = 12;  // all bytes of a dump but its data
constexpr std::uint8_t kMakerId = 0x7D;

enum : std::uint8_t { kDumpType = 0x00, kType1 = 0x10, kRequestType = 0x20, kType3 = 0x30, kType4 = 0x40 };

// A screen is sent in several messages: the first at the address of the screen, the others at this one, outside the
// map.
constexpr BulkAddress kScreenData{0x51, 0x00, 0x01};

bool isForThisInstrument(std::span<const std::uint8_t> message) {
  return message.size() >= kShortest && message[1] == kMakerId &&
         ((message[3] == 0x7F && message[4] == 0x14) || message[4] == 0x15);
}

void judge(Reading& reading, Reading::Verdict verdict, std::string note) {
  reading.verdict = verdict;
  reading.note = std::move(note);
}

void judgeAddress(Reading& reading) {
  const std::optional<BlockFacts> block = findBlock(*reading.address);
  if (!block) {
    const bool isScreenData = reading.kind == Reading::Kind::dump && *reading.address == kScreenData;
    if (marksEmptyVoice(*reading.address) || isScreenData) return;
    judge(reading, Reading::Verdict::unknownAddress, fmt::format("no block at {}", formatAddress(*reading.address)));
  } else if (reading.kind == Reading::Kind::dump && block->dataLength && *block->dataLength != reading.dataBytes) {
    judge(reading, Reading::Verdict::blockLengthWrong,
          fmt::format("{} data bytes, this block has {}", reading.dataBytes, *block->dataLength));
  }
}

void readDump(Reading& reading, std::span<const std::uint8_t> message) {
  if (message.size() < kDumpFrame) {
    reading.kind = Reading::Kind::invalid;
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{} bytes, a dump has at least {}", message.size(), kDumpFrame));
  }
  reading.address = BulkAddress{message[7], message[8], message[9]};
  reading.dataBytes = message.size() - kDumpFrame;
  const std::size_t counted = std::size_t(message[5]) * 128 + message[6];
  if (counted != reading.dataBytes)
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{} data bytes, its byte count says {}", reading.dataBytes, counted));
  reading.checksum = message[message.size() - 2];
  reading.expectedChecksum = BDA::Utility::calcCheckSum(message.data(), message.size());
  if (*reading.checksum != *reading.expectedChecksum)
    return judge(reading, Reading::Verdict::checksumWrong,
                 fmt::format("checksum {:02X}, expected {:02X}", *reading.checksum, *reading.expectedChecksum));
  judgeAddress(reading);
}

void readRequest(Reading& reading, std::span<const std::uint8_t> message) {
  if (message.size() != kRequestLength) {
    reading.kind = Reading::Kind::invalid;
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{} bytes, a request has {}", message.size(), kRequestLength));
  }
  reading.address = BulkAddress{message[5], message[6], message[7]};
  judgeAddress(reading);
}

}  // namespace

Reading readMessage(std::span<const std::uint8_t> message) {
  Reading reading;
  if (!isForThisInstrument(message)) return reading;
  reading.device = (message[2] & 0x0Fu) + 1;
  reading.verdict = Reading::Verdict::good;
  switch (message[2] & 0xF0) {
    case kDumpType:
      reading.kind = Reading::Kind::dump;
      readDump(reading, message);
      break;
    case kRequestType:
      reading.kind = Reading::Kind::request;
      readRequest(reading, message);
      break;
    case kType1:
    case kType3:
    case kType4:
      reading.kind = Reading::Kind::other;
      break;
    default:
      reading.kind = Reading::Kind::invalid;
      judge(reading, Reading::Verdict::typeUnknown, fmt::format("no message has type {}", message[2] >> 4));
  }
  return reading;
}

const char* wordOf(Reading::Kind kind) {
  switch (kind) {
    case Reading::Kind::foreign:
      return "foreign";
    case Reading::Kind::dump:
      return "dump";
    case Reading::Kind::request:
      return "request";
    case Reading::Kind::other:
      return "other";
    case Reading::Kind::invalid:
      return "invalid";
  }
  return "?";
}

const char* wordOf(Reading::Verdict verdict) {
  switch (verdict) {
    case Reading::Verdict::good:
      return "good";
    case Reading::Verdict::foreign:
      return "not for this instrument";
    case Reading::Verdict::checksumWrong:
      return "checksum wrong";
    case Reading::Verdict::lengthWrong:
      return "wrong length";
    case Reading::Verdict::blockLengthWrong:
      return "wrong length for its block";
    case Reading::Verdict::unknownAddress:
      return "unknown address";
    case Reading::Verdict::typeUnknown:
      return "unknown type";
  }
  return "?";
}

bool isBroken(const Reading& reading) {
  return reading.verdict != Reading::Verdict::good && reading.verdict != Reading::Verdict::foreign;
}

bool marksEmptyVoice(BulkAddress address) {
  return (address.hi == BDA::kHeaderHi || address.hi == BDA::kFooterHi) && address.mid == 0x31 &&
         (address.lo & 0xC0) == 0x40;
}

std::string describeContent(const Reading& reading) {
  switch (reading.kind) {
    case Reading::Kind::foreign:
      return "another instrument's message";
    case Reading::Kind::dump:
      return *reading.address == kScreenData ? "screen capture data" : describeAddress(*reading.address);
    case Reading::Kind::request:
      return "request of " + describeAddress(*reading.address);
    case Reading::Kind::other:
      return "no bulk message";
    case Reading::Kind::invalid:
      break;
  }
  return "no valid message";
}

}  // namespace Editor
