#include "explain/Explain.h"

#include <algorithm>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "FileDumpCodec.h"

namespace Editor {

namespace {

using Data = std::span<const std::uint8_t>;

constexpr std::size_t kMakerAt = 1;
constexpr std::size_t kDeviceAt = 2;
constexpr std::size_t kModelAt = 3;
constexpr std::size_t kModelBytes = 2;
constexpr std::size_t kAddressBytes = 3;
constexpr std::size_t kLongMaker = 3;  // bytes of a maker's number that begins with 0

bool isIn(std::size_t at, std::size_t first, std::size_t count) { return at >= first && at < first + count; }

// Of another maker's message nothing but its maker is known.
Part partOfForeign(Data message, std::size_t at) {
  const bool isLong = message.size() > kMakerAt && message[kMakerAt] == 0;
  return isIn(at, kMakerAt, isLong ? kLongMaker : 1) ? Part::maker : Part::data;
}

Part partOfOurs(Data message, std::size_t at) {
  if (at == kMakerAt) return Part::maker;
  if (at == kDeviceAt) return Part::device;
  if (isIn(at, kModelAt, kModelBytes)) return Part::model;
  switch (message[kDeviceAt] & BDA::kTypeMask) {
    case BDA::kTypeDump:
      if (isIn(at, BDA::kByteCountAt, 2)) return Part::byteCount;
      if (isIn(at, BDA::kDumpAddressAt, kAddressBytes)) return Part::address;
      return message.size() >= BDA::kDumpFrame && at == message.size() - 2 ? Part::checksum : Part::data;
    case BDA::kTypeRequest:
      return isIn(at, BDA::kRequestAddressAt, kAddressBytes) ? Part::address : Part::data;
    default:
      return Part::data;
  }
}

Part partOf(const Reading& reading, Data message, std::size_t at) {
  if (at == 0 || at + 1 == message.size()) return Part::frame;
  return reading.kind == Reading::Kind::foreign ? partOfForeign(message, at) : partOfOurs(message, at);
}

// Which bytes of what was packed into `size` bytes byte `at` carries.
PackedBytes unpack(std::size_t at, std::size_t size) {
  using BDA::FileDumpCodec::kGroup;
  using BDA::FileDumpCodec::kPackedGroup;
  const std::size_t first = at / kPackedGroup * kGroup;
  const std::size_t place = at % kPackedGroup;
  if (place > 0) return {{first + place - 1}};
  PackedBytes high{{}, true};
  for (std::size_t i = 1; i < std::min(kPackedGroup, size - at); ++i) high.numbers.push_back(first + i - 1);
  return high;
}

// The field of a file dump: name and content, each packed and behind its length. Lengths that do not fit end it.
void explainFileDump(ByteMeaning& meaning, Data field) {
  constexpr std::size_t kCount = 2;
  std::size_t at = 0;
  for (std::optional<PackedBytes>* const bytes : {&meaning.nameBytes, &meaning.contentBytes}) {
    if (field.size() - at < kCount) return;
    const std::size_t size = std::size_t(field[at]) << 7 | field[at + 1];
    at += kCount;
    if (size > field.size() - at) return;
    if (isIn(*meaning.dataByte, at, size)) *bytes = unpack(*meaning.dataByte - at, size);
    at += size;
  }
}

}  // namespace

const char* wordOf(Part part) {
  switch (part) {
    case Part::outside:
      return "outside";
    case Part::frame:
      return "frame";
    case Part::maker:
      return "maker";
    case Part::device:
      return "device";
    case Part::model:
      return "model";
    case Part::byteCount:
      return "byteCount";
    case Part::address:
      return "address";
    case Part::data:
      return "data";
    case Part::checksum:
      return "checksum";
  }
  return "?";
}

ByteMeaning FileExplainer::explain(const MessageFile::Byte& byte) {
  ByteMeaning meaning;
  if (byte.message == MessageFile::kNone) {
    if (byte.dropped != nullptr) meaning.reason = byte.dropped;
    return meaning;
  }
  if (byte.message != message_) enter(byte.message);
  meaning.message = byte.message;
  meaning.kind = reading_.kind;
  meaning.device = reading_.device;
  meaning.address = reading_.address;
  meaning.name = name_;
  meaning.part = partOf(reading_, file_.message(byte.message), byte.at);
  if (meaning.part == Part::data && reading_.kind == Reading::Kind::dump) {
    meaning.dataByte = byte.at - BDA::kDataAt;
    explainData(meaning);
  }
  return meaning;
}

void FileExplainer::enter(std::uint32_t message) {
  message_ = message;
  const Data bytes = file_.message(message);
  reading_ = readMessage(bytes);
  name_.clear();
  map_ = nullptr;
  if (reading_.address) name_ = nameOf(*reading_.address).value_or(describeAddress(*reading_.address));
  if (reading_.kind != Reading::Kind::dump) return;
  data_ = bytes.subspan(BDA::kDataAt, reading_.dataBytes);
  const BlockMap* const map = mapOf(*reading_.address);
  if (map == nullptr || map->size() != data_.size()) return;
  map_ = map;
  received_ = receiver_.receive(*reading_.address, data_);
  fields_ = fieldsOf(received_);
}

void FileExplainer::explainData(ByteMeaning& meaning) {
  if (map_ != nullptr) {
    for (const BlockMap::Carried& carried : map_->at(*meaning.dataByte))
      meaning.parameters.push_back({carried.path, carried.bits, carried.how, valueIn(fields_, carried)});
    meaning.unused = map_->unusedBits(*meaning.dataByte);
  }
  if (reading_.role == Role::fileDump) {
    meaning.content = contentOfFileDump({reading_.address->mid, reading_.address->lo});
    explainFileDump(meaning, data_);
  }
}

const BlockMap* FileExplainer::mapOf(BulkAddress block) {
  const std::uint32_t key = std::uint32_t{block.hi} << 16 | std::uint32_t{block.mid} << 8 | block.lo;
  const auto [found, isNew] = maps_.try_emplace(key);
  if (isNew) found->second = BlockMap::of(block);
  return found->second ? &*found->second : nullptr;
}

std::map<std::string, std::vector<CarryingByte>> bytesByPath(const std::vector<std::vector<std::uint8_t>>& messages) {
  std::map<std::string, std::vector<CarryingByte>> found;
  for (std::size_t number = 0; number < messages.size(); ++number) {
    const Reading reading = readMessage(messages[number]);
    if (reading.kind != Reading::Kind::dump) continue;
    const std::optional<BlockMap> map = BlockMap::of(*reading.address);
    if (!map || map->size() != reading.dataBytes) continue;
    for (std::size_t byte = 0; byte < map->size(); ++byte)
      for (const BlockMap::Carried& carried : map->at(byte))
        found[carried.path].push_back(
            {*reading.address, number + 1, byte, carried.bits, carried.how, messages[number][BDA::kDataAt + byte]});
  }
  return found;
}

bool carries(BulkAddress block, const std::string& path) {
  const std::optional<BlockMap> map = BlockMap::of(block);
  for (std::size_t byte = 0; map && byte < map->size(); ++byte)
    for (const BlockMap::Carried& carried : map->at(byte))
      if (carried.path == path) return true;
  return false;
}

std::vector<std::string> pathsOf(const std::vector<BulkAddress>& places) {
  std::vector<std::string> paths;
  const auto add = [&](const ModelSet& models) {
    for (const ModelField& field : fieldsOf(models)) {
      if (field.name != nullptr) paths.push_back(field.path);
      for (std::size_t i = 0; field.group != nullptr && i < field.group->values().size(); ++i)
        paths.push_back(parameterPath(field, i));
    }
  };
  for (const BulkAddress place : places) {
    const bool isHeader = BDA::listOf(place.hi) == std::size_t(BDA::List::header);
    const unsigned type = isHeader ? headerTypeOf({place.mid, place.lo}) : 0;
    if (isHeader) add(emptySetFor(type));
    if (type == BDA::kPartVoiceHeader) add(emptySetFor(type, true));
    if (!isHeader) add(modelsAround(place));
  }
  return paths;
}

}  // namespace Editor
