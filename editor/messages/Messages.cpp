#include "messages/Messages.h"

#include <fmt/format.h>

#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "FileDumpCodec.h"
#include "bda/BulkDumpAssistant.h"
#include "midi/Counted.h"

namespace Editor {

namespace {

bool isForThisInstrument(std::span<const std::uint8_t> message) {
  return message.size() >= BDA::kRequestLength && isOfThisMaker(message) &&
         ((message[3] == BDA::kModelId1 && message[4] == BDA::kModelId2) || message[4] == BDA::kOtherModelId2);
}

// Too short for any message of ours, and like one as far as it goes: what an end in the midst of one leaves. The
// instrument takes no notice of it.
bool isBeginningOfOurs(std::span<const std::uint8_t> message) {
  constexpr std::size_t kModelAt = 3;
  if (message.size() >= BDA::kRequestLength || message.size() < kModelAt + 2 || !isOfThisMaker(message)) return false;
  const bool hasBoth = message.size() > kModelAt + 2;
  if (hasBoth && message[kModelAt + 1] == BDA::kOtherModelId2) return true;
  return message[kModelAt] == BDA::kModelId1 && (!hasBoth || message[kModelAt + 1] == BDA::kModelId2);
}

BulkAddress addressAt(std::span<const std::uint8_t> message, std::size_t at) {
  return {message[at], message[at + 1], message[at + 2]};
}

void judge(Reading& reading, Reading::Verdict verdict, std::string note) {
  reading.verdict = verdict;
  reading.note = std::move(note);
}

constexpr std::size_t kCount = 2;  // bytes of the length of a name, and of the bytes, in a file dump

std::size_t countAt(std::span<const std::uint8_t> field, std::size_t at) {
  return std::size_t(field[at]) << 7 | field[at + 1];
}

// Why the field of a file dump is not a content and nothing else; empty for one that is. The field is the packed name
// and the packed bytes, each behind its length in two bytes of seven bits; no bytes mean that the content is removed.
// What follows them counts for nothing: somebody's data is lost there.
std::string whyNoContent(std::span<const std::uint8_t> field) {
  if (field.size() < 2 * kCount) return counted(field.size(), "byte") + " of data, a file dump has at least 4";
  std::size_t left = field.size() - 2 * kCount;
  const std::size_t name = countAt(field, 0);
  if (name > left) return fmt::format("its name has {}, but there is room for {}", counted(name, "byte"), left);
  left -= name;
  const std::size_t content = countAt(field, kCount + name);
  if (content > left)
    return fmt::format("its content has {}, but there is room for {}", counted(content, "byte"), left);
  for (const auto& [what, size] : {std::pair("name", name), std::pair("content", content)})
    if (content > 0 && size % BDA::FileDumpCodec::kPackedGroup == 1)
      return fmt::format("its {} has {}, the last of which is a packed group without data", what,
                         counted(size, "byte"));
  if (content < left) return counted(left - content, "byte") + " behind its content, which are not used";
  return {};
}

// Groups of up to seven bytes stand behind one that has their top bits, the first one's in bit 6.
std::vector<std::uint8_t> unpack(std::span<const std::uint8_t> packed) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(packed.size());
  std::uint8_t topBits = 0;
  for (std::size_t i = 0; i < packed.size(); ++i) {
    const std::size_t inGroup = i % BDA::FileDumpCodec::kPackedGroup;
    if (inGroup == 0)
      topBits = packed[i];
    else
      bytes.push_back(std::uint8_t(packed[i] | (topBits >> (BDA::FileDumpCodec::kGroup - inGroup) & 1) << 7));
  }
  return bytes;
}

void setAddress(Reading& reading, BulkAddress address) {
  reading.address = address;
  reading.block = findBlock(address);
  reading.role = reading.block ? reading.block->role : roleOutsideOfMap(address);
}

void judgeFileDump(Reading& reading, std::span<const std::uint8_t> field) {
  if (std::string why = whyNoContent(field); !why.empty())
    return judge(reading, Reading::Verdict::fileDumpBroken, std::move(why));
  const bool hasData = field.size() > 2 * kCount + countAt(field, 0);
  if (hasData || !isWritableFileDump(*reading.address)) return;
  reading.removes = contentOfFileDump({reading.address->mid, reading.address->lo});
  reading.verdict = Reading::Verdict::removes;
}

// It says that a mixing voice of the first multi is empty.
void judgeEmptyFooter(Reading& reading) {
  reading.removes = canonical({ContSrv::ContType_Voice, mixingVoiceNumber(0, reading.address->lo & 0x0F)});
  reading.verdict = Reading::Verdict::removes;
}

void judgeAddress(Reading& reading, std::span<const std::uint8_t> data) {
  const std::optional<BlockFacts>& block = reading.block;
  if (!block) {
    const bool isDump = reading.kind == Reading::Kind::dump;
    if (isDump && reading.role == Role::emptyFooter) return judgeEmptyFooter(reading);
    if (reading.role != Role::unknown || (isDump && *reading.address == kScreenData)) return;
    judge(reading, Reading::Verdict::unknownAddress, fmt::format("no block at {}", formatAddress(*reading.address)));
  } else if (reading.kind == Reading::Kind::dump && block->dataLength && *block->dataLength != reading.dataBytes) {
    judge(reading, Reading::Verdict::blockLengthWrong,
          fmt::format("{}, this block has {}", counted(reading.dataBytes, "data byte"), *block->dataLength));
  } else if (reading.kind == Reading::Kind::dump && reading.role == Role::fileDump) {
    judgeFileDump(reading, data);
  } else if (reading.kind == Reading::Kind::dump && reading.role == Role::trigger &&
             *reading.address != kWriteTrigger) {
    reading.removesMixingVoices = true;
    reading.verdict = Reading::Verdict::removes;
  }
}

void readDump(Reading& reading, std::span<const std::uint8_t> message) {
  if (message.size() < BDA::kDumpFrame) {
    reading.kind = Reading::Kind::invalid;
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{} bytes, a dump has at least {}", message.size(), BDA::kDumpFrame));
  }
  setAddress(reading, addressAt(message, BDA::kDumpAddressAt));
  reading.dataBytes = message.size() - BDA::kDumpFrame;
  reading.isNamed = reading.role == Role::fileDump && reading.dataBytes >= kCount &&
                    (message[BDA::kDataAt] != 0 || message[BDA::kDataAt + 1] != 0);
  const std::size_t promised = BDA::byteCountOf(message.data());
  if (promised != reading.dataBytes)
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{}, its byte count says {}", counted(reading.dataBytes, "data byte"), promised));
  reading.checksum = message[message.size() - 2];
  reading.expectedChecksum = BDA::Utility::calcCheckSum(message.data(), message.size());
  if (*reading.checksum != *reading.expectedChecksum)
    return judge(reading, Reading::Verdict::checksumWrong,
                 fmt::format("checksum {:02X}, expected {:02X}", *reading.checksum, *reading.expectedChecksum));
  judgeAddress(reading, message.subspan(BDA::kDataAt, reading.dataBytes));
}

void readRequest(Reading& reading, std::span<const std::uint8_t> message) {
  if (message.size() != BDA::kRequestLength) {
    reading.kind = Reading::Kind::invalid;
    return judge(reading, Reading::Verdict::lengthWrong,
                 fmt::format("{} bytes, a request has {}", message.size(), BDA::kRequestLength));
  }
  setAddress(reading, addressAt(message, BDA::kRequestAddressAt));
  judgeAddress(reading, {});
}

}  // namespace

bool isOfThisMaker(std::span<const std::uint8_t> message) { return message.size() > 1 && message[1] == BDA::kMakerId; }

FileDumpParts partsOfFileDump(std::span<const std::uint8_t> message) {
  std::span<const std::uint8_t> field = message.subspan(BDA::kDataAt);
  const auto next = [&] {
    const std::size_t size = countAt(field, 0);
    std::vector<std::uint8_t> part = unpack(field.subspan(kCount, size));
    field = field.subspan(kCount + size);
    return part;
  };
  const std::vector<std::uint8_t> name = next();
  return {{name.begin(), name.end()}, next()};
}

Reading readMessage(std::span<const std::uint8_t> message) {
  Reading reading;
  if (isBeginningOfOurs(message)) {
    reading.kind = Reading::Kind::invalid;
    judge(reading, Reading::Verdict::lengthWrong,
          fmt::format("{} bytes, a message has at least {}", message.size(), BDA::kRequestLength));
  }
  if (!isForThisInstrument(message)) return reading;
  reading.device = unsigned(message[2] & BDA::kDeviceMask) + 1;
  reading.verdict = Reading::Verdict::good;
  switch (message[2] & BDA::kTypeMask) {
    case BDA::kTypeDump:
      reading.kind = Reading::Kind::dump;
      readDump(reading, message);
      break;
    case BDA::kTypeRequest:
      reading.kind = Reading::Kind::request;
      readRequest(reading, message);
      break;
    case BDA::kType1:
    case BDA::kType3:
    case BDA::kType4:
      reading.kind = Reading::Kind::other;
      break;
    default:
      reading.kind = Reading::Kind::invalid;
      judge(reading, Reading::Verdict::typeUnknown, fmt::format("no message has type {}", message[2] >> 4));
  }
  return reading;
}

std::vector<std::uint8_t> requestMessage(BulkAddress address, std::uint8_t device) {
  return {BDA::kStartOfExclusive,
          BDA::kMakerId,
          std::uint8_t(BDA::kTypeRequest | device),
          BDA::kModelId1,
          BDA::kModelId2,
          address.hi,
          address.mid,
          address.lo,
          BDA::kEndOfExclusive};
}

std::vector<std::uint8_t> dumpMessage(BulkAddress address, std::span<const std::uint8_t> data, std::uint8_t device) {
  std::vector<std::uint8_t> message{BDA::kStartOfExclusive,
                                    BDA::kMakerId,
                                    std::uint8_t(BDA::kTypeDump | device),
                                    BDA::kModelId1,
                                    BDA::kModelId2,
                                    std::uint8_t(data.size() >> 7),
                                    std::uint8_t(data.size() & 0x7F),
                                    address.hi,
                                    address.mid,
                                    address.lo};
  for (const std::uint8_t byte : data) message.push_back(byte);
  message.push_back(BDA::Utility::calcCheckSum(message.data(), message.size() + 2));
  message.push_back(BDA::kEndOfExclusive);
  return message;
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
    case Reading::Verdict::removes:
      return "removes";
    case Reading::Verdict::checksumWrong:
      return "checksum wrong";
    case Reading::Verdict::lengthWrong:
      return "wrong length";
    case Reading::Verdict::blockLengthWrong:
      return "wrong length for its block";
    case Reading::Verdict::fileDumpBroken:
      return "broken file dump";
    case Reading::Verdict::unknownAddress:
      return "unknown address";
    case Reading::Verdict::typeUnknown:
      return "unknown type";
  }
  return "?";
}

bool isBroken(const Reading& reading) {
  switch (reading.verdict) {
    case Reading::Verdict::good:
    case Reading::Verdict::removes:
    case Reading::Verdict::foreign:
      return false;
    default:
      return true;
  }
}

std::string describeFault(const Reading& reading) {
  // What such a message carries is said to be an unknown address already.
  if (reading.verdict == Reading::Verdict::unknownAddress) return reading.note;
  return fmt::format("{}: {}", wordOf(reading.verdict), reading.note);
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
