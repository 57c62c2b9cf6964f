#include "BulkExecuterFileDump.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "FileDumpCodec.h"
#include "FileDumpFailures.h"
#include "GiveBack.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {

namespace {

namespace Codec = FileDumpFailures::Codec;
namespace Naming = FileDumpFailures::Naming;
namespace Set = FileDumpFailures::Set;
namespace Write = FileDumpFailures::Write;
namespace Read = FileDumpFailures::Read;

constexpr std::uint8_t kRemoveMixingVoicesMid = 0x01;
constexpr std::uint32_t kMaxField = 0x3FFF;
constexpr std::size_t kCountBytes = 2;
constexpr unsigned long kMultiCount = 128;

// What the blocks name. `bank`: the bank code, to which the block index is added.
struct FileDumpBlock {
  std::uint32_t blockType;
  ContSrv::_ContType contType;
  enum { voice, mixingVoice, number, single } kind;
  std::uint8_t bank;
  bool isWritable;
};
constexpr std::array kBlocks{
    FileDumpBlock{37, ContSrv::ContType_Voice, FileDumpBlock::voice, 0, false},
    FileDumpBlock{38, ContSrv::ContType_Voice, FileDumpBlock::voice, 13, false},
    FileDumpBlock{39, ContSrv::ContType_Voice, FileDumpBlock::voice, 8, true},
    FileDumpBlock{40, ContSrv::ContType_Voice, FileDumpBlock::voice, 11, false},
    FileDumpBlock{41, ContSrv::ContType_Voice, FileDumpBlock::voice, 12, true},
    FileDumpBlock{42, ContSrv::ContType_Voice, FileDumpBlock::voice, 14, false},
    FileDumpBlock{43, ContSrv::ContType_Voice, FileDumpBlock::voice, 15, true},
    FileDumpBlock{44, ContSrv::ContType_Voice, FileDumpBlock::mixingVoice, 0, true},
    FileDumpBlock{45, ContSrv::ContType_Multi, FileDumpBlock::number, 0, true},
    FileDumpBlock{46, ContSrv::ContType_Single, FileDumpBlock::single, 0, true},
};

const FileDumpBlock* findBlock(std::uint32_t blockType) {
  for (const FileDumpBlock& block : kBlocks)
    if (block.blockType == blockType) return &block;
  return nullptr;
}

bool isSuccess(ContSrv::_ContResult result) { return result == ContSrv::ContRes_Success; }
bool isSuccessOrNothingToDo(ContSrv::_ContResult result) {
  return result == ContSrv::ContRes_Success || result == ContSrv::ContRes_DoNothing;
}

// A data field taken apart: the packed name and the packed file.
struct Field {
  std::span<const std::uint8_t> name;
  std::span<const std::uint8_t> data;
};

// What is wrong with the field; null: nothing, and `parts` is filled.
const Failure<>* split(std::span<const std::uint8_t> field, Field& parts) {
  if (field.empty()) return &Write::kEmpty;
  const auto countAt = [field](std::size_t at) {
    return std::size_t(BulkExecuterFileDump::joinByteCount(field[at], field[at + 1]));
  };
  const std::size_t nameSize = field.size() < kCountBytes ? 0 : countAt(0);
  const std::size_t dataCountAt = kCountBytes + nameSize;
  if (dataCountAt + kCountBytes > field.size()) return &Write::kLength;
  const std::size_t dataSize = countAt(dataCountAt);
  const std::size_t dataAt = dataCountAt + kCountBytes;
  if (dataAt + dataSize > field.size()) return &Write::kData;
  parts = {field.subspan(kCountBytes, nameSize), field.subspan(dataAt, dataSize)};
  return nullptr;
}

// The length of a file as that of a buffer. More than memory can address is more than any buffer takes: making one ends
// as storage that runs out.
std::size_t lengthInMemory(std::int64_t size) {
  constexpr auto kMost = std::uint64_t{std::numeric_limits<std::size_t>::max()};
  return std::size_t(std::min(std::uint64_t(size), kMost));
}

void append(std::vector<std::uint8_t>& field, const std::vector<std::uint8_t>& packed) {
  std::array<std::uint8_t, kCountBytes> count{};
  BulkExecuterFileDump::splitByteCount(count.data(), count.data() + 1, std::uint32_t(packed.size()));
  field.insert(field.end(), count.begin(), count.end());
  field.insert(field.end(), packed.begin(), packed.end());
}

}  // namespace

FileDumpBuffer::~FileDumpBuffer() = default;

void FileDumpBuffer::setData(const std::uint8_t* data, std::uint32_t size) {
  data_.clear();
  if (size > 0) data_.insert(data_.end(), data, data + size);
}

void FileDumpBuffer::initData(const std::uint8_t* data, std::uint32_t size) {
  try {
    if (size > 0) data_.insert(data_.begin(), data, data + size);
  } catch (const std::bad_alloc&) {
    Set::kBufferOverflow();
    throw;
  }
}

BulkExecuterFileDump::BulkExecuterFileDump(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                                           CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState,
                                           std::uint32_t dataLength, EvtSrv::EventPortManager* /*eventPortManager*/,
                                           ContSrv::Work* work)
    : BulkExecuter(jobReceivers, jobTools, temporaryModel, sharedState, dataLength), work_(work) {}

BulkExecuterFileDump::~BulkExecuterFileDump() = default;

void BulkExecuterFileDump::clearFileDumpBuffers() { buffers_.clear(); }

// ---- Receiving ------------------------------------------------------------------------------------------------------

BDAErr BulkExecuterFileDump::setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) {
  if (length > kMaxField) {
    Set::kTooLong();
    return BDA_ERR;
  }
  if (data == nullptr && length > 0) return BDA_ERR_DATA_LENGTH;
  if (work_ == nullptr) return BDA_ERR;
  if (getAddress().getHi() == kTriggerHi) {
    BDAErr result = BDA_INFO_FILE_DUMP_CONTROL;
    if (getAddress().getMid() == kRemoveMixingVoicesMid) result |= removeMixingVoices();
    result |= writeFileDumps();
    return result;
  }

  // Preset and GM voices are sent on request but never written. One such block discards all that is held: the sender
  // does not mean this instrument's banks.
  const FileDumpBlock* const block = findBlock(getBlockType());
  if (block == nullptr || !block->isWritable) {
    clearFileDumpBuffers();
    return BDA_ERR;
  }
  const std::uint32_t contType = getContentsType();
  if (contType == ContSrv::ContType_None) {
    Set::kNoType();
    clearFileDumpBuffers();
    return BDA_ERR;
  }
  std::uint32_t contNumber = 0;
  std::int32_t found = -1;
  try {
    found = getContentsNumber(contNumber);
  } catch (...) {  // of the editor's services
    clearFileDumpBuffers();
    throw;
  }
  if (found < 0) {
    Set::kNoNumber(found);
    clearFileDumpBuffers();
    return BDA_ERR;
  }
  return hold(contType, contNumber, data, length);
}

BDAErr BulkExecuterFileDump::removeMixingVoices() {
  BDAErr result = BDA_OK;
  for (unsigned long multi = 0; multi < kMultiCount; ++multi) {
    ContSrv::_ContResult removed = ContSrv::ContRes_Failure;
    if (!attempt(
            [&] { removed = work_->removeMixingVoice(ContSrv::ContType_Multi, multi, ContSrv::ContentNumber_All); })) {
      result = BDA_ERR;
      continue;
    }
    if (isSuccess(removed)) Notes::handedOver();
    if (isSuccessOrNothingToDo(removed)) continue;
    Set::kNotRemoved(int(removed));
    result = BDA_ERR;
  }
  return result;
}

// A dump that comes again replaces the one that is held. When storage runs out all are discarded, and the sender is
// told so: half a set is worth nothing.
BDAErr BulkExecuterFileDump::hold(std::uint32_t contType, std::uint32_t contNumber, const std::uint8_t* data,
                                  std::uint32_t size) {
  try {
    const auto held = std::find_if(buffers_.begin(), buffers_.end(), [&](const auto& buffer) {
      return buffer->getContNumber() == contNumber && buffer->getContType() == contType;
    });
    if (held != buffers_.end()) {
      (*held)->setData(data, size);
    } else {
      auto buffer = std::make_unique<FileDumpBuffer>(contType, contNumber);
      buffer->initData(data, size);
      buffers_.push_back(std::move(buffer));
    }
  } catch (...) {
    Set::kNoMemory();
    clearFileDumpBuffers();
    return BDA_INFO_FILE_DUMP | BDA_ERR_NO_MEMORY;
  }
  return BDA_INFO_FILE_DUMP;
}

// ---- Writing --------------------------------------------------------------------------------------------------------

BDAErr BulkExecuterFileDump::writeFileDumps() {
  // Whatever happens, nothing stays held: a later pass must not write old dumps over what was stored meanwhile.
  const auto held = std::exchange(buffers_, {});
  if (work_ == nullptr) return BDA_ERR;
  std::int64_t mixingVoiceCount = 0;
  std::int64_t mixingVoiceMaximum = 0;
  if (const auto counted = work_->getMixingVoiceSumSync(mixingVoiceCount, mixingVoiceMaximum); !isSuccess(counted)) {
    Write::kNoSum(int(counted));
    return BDA_ERR;
  }
  BDAErr result = BDA_OK;
  std::vector<std::uint32_t> removeList;
  std::uint32_t previousType = ContSrv::ContType_None;
  for (const auto& buffer : held) {
    const std::uint32_t contType = buffer->getContType();
    if (contType != previousType && buffer != held.front()) result |= flushType(previousType, removeList);
    try {
      result |= writeFileDump(*buffer, mixingVoiceCount, mixingVoiceMaximum, removeList);
    } catch (...) {  // before or after its file was open; the pass goes on and ends as any other
      Notes::thrown();
      result |= BDA_ERR;
    }
    previousType = contType;
  }
  // With nothing held the store is still told of a pass, over type 0, and synchronised.
  result |= flushType(previousType, removeList);
  work_->sync();  // by contract its result is not looked at; the store has to remember a failure
  return result;
}

// What the store throws here is a failure like any other: what was written is still to be synchronised.
BDAErr BulkExecuterFileDump::flushType(std::uint32_t contType, std::vector<std::uint32_t>& removeList) {
  BDAErr result = BDA_OK;
  bool isWhole = attempt([&] {
    if (const auto requested = work_->requestOverWriteConfig(contType); !isSuccess(requested)) {
      Write::kNoOverWrite(int(requested));
      result = BDA_ERR;
    }
  });
  if (!removeList.empty()) {
    isWhole &= attempt([&] {
      const auto removed = work_->removeContents(contType, removeList, false);
      if (isSuccess(removed)) Notes::handedOver(removeList.size());
      if (!isSuccessOrNothingToDo(removed)) {
        Write::kNotRemoved(int(contType), int(removed));
        result = BDA_ERR;
      }
    });
    removeList.clear();
  }
  return isWhole ? result : BDA_ERR;
}

BDAErr BulkExecuterFileDump::writeFileDump(FileDumpBuffer& buffer, std::int64_t& mixingVoiceCount,
                                           std::int64_t mixingVoiceMaximum, std::vector<std::uint32_t>& removeList) {
  Field field;
  if (const Failure<>* const malformed = split(buffer.getData(), field)) {
    (*malformed)();
    return BDA_ERR;
  }
  if (field.data.empty()) return removeFileDump(buffer, mixingVoiceCount, removeList);

  const std::uint32_t contType = buffer.getContType();
  const std::uint32_t contNumber = buffer.getContNumber();
  std::string path;
  if (const auto found = work_->getDataFilePath(contType, contNumber, path); !isSuccess(found)) {
    Write::kNoPath(int(found));
    return BDA_ERR;
  }
  if (isMixingVoiceContent(contType, contNumber)) {
    std::string name;
    // The count stays raised when it exceeds the maximum: every later new mixing voice of the pass fails too.
    if (work_->getContentName(contType, contNumber, name) == ContSrv::ContRes_EmptyContent &&
        ++mixingVoiceCount > mixingVoiceMaximum) {
      Write::kTooManyMixingVoices(int(mixingVoiceCount));
      return BDA_ERR_MIXING_VOICE_FULL;
    }
  }
  ContSrv::DataFile* const file = work_->openDataFile(path, ContSrv::OpenMode_Write);
  if (file == nullptr) {
    Write::kNoFile();
    return BDA_ERR;
  }
  GiveBack opened([&] { return work_->closeDataFile(file, 0); });
  ContSrv::Data* const data = file->openData();
  if (data == nullptr) {
    Write::kNoData();
    if (!isSuccess(opened.now())) Write::kUnopenedNotClosed();
    return BDA_ERR;
  }

  // The file is open before anything is unpacked, by contract: data that cannot be unpacked leave the store with a file
  // on which no write has succeeded, a name with a content that keeps its old one.
  BDAErr result = field.name.empty() ? BDA_OK : writeName(contType, contNumber, field.name);
  result |= writeData(*data, field.data);
  if (const auto closed = file->closeDataWithoutSync(data); !isSuccess(closed)) {
    Write::kDataNotClosed(int(closed));
    result = BDA_ERR;
  }
  if (const auto closed = opened.now(); !isSuccess(closed)) {
    Write::kFileNotClosed(int(closed));
    result = BDA_ERR;
  }
  if (!isFailure(result)) Notes::handedOver();
  return result;
}

// Whatever is thrown on the way, by storage that runs out or by the store, counts as undecoded here and below: the file
// is open and is to be closed.
BDAErr BulkExecuterFileDump::writeName(std::uint32_t contType, std::uint32_t contNumber,
                                       std::span<const std::uint8_t> packed) {
  try {
    std::vector<std::uint8_t> name;
    if (decode(std::vector<std::uint8_t>(packed.begin(), packed.end()), name)) {
      const auto named = work_->setContentName(contType, contNumber, std::string(name.begin(), name.end()), false);
      if (isSuccessOrNothingToDo(named)) return BDA_OK;
      Write::kNoName(int(named));
      return BDA_ERR;
    }
  } catch (...) {
    Notes::thrown();
  }
  Write::kNameUndecoded();
  return BDA_ERR;
}

BDAErr BulkExecuterFileDump::writeData(ContSrv::Data& data, std::span<const std::uint8_t> packed) {
  try {
    std::vector<std::uint8_t> bytes;
    if (decode(std::vector<std::uint8_t>(packed.begin(), packed.end()), bytes)) {
      const std::int64_t written = data.write(bytes.data(), std::int64_t(bytes.size()));
      if (written == std::int64_t(bytes.size())) return BDA_OK;
      Write::kNotWritten(int(written));
      return BDA_ERR;
    }
  } catch (...) {
    Notes::thrown();
  }
  Write::kDataUndecoded();
  return BDA_ERR;
}

BDAErr BulkExecuterFileDump::removeFileDump(const FileDumpBuffer& buffer, std::int64_t& mixingVoiceCount,
                                            std::vector<std::uint32_t>& removeList) {
  if (!isMixingVoiceContent(buffer.getContType(), buffer.getContNumber())) {
    removeList.push_back(buffer.getContNumber());
    return BDA_OK;
  }
  const ContSrv::_ContResult removed = work_->removeContent(buffer.getContType(), buffer.getContNumber());
  if (isSuccess(removed)) Notes::handedOver();
  if (isSuccess(removed) && mixingVoiceCount > 0) --mixingVoiceCount;
  if (isSuccessOrNothingToDo(removed)) return BDA_OK;
  Write::kContentNotRemoved(int(removed));
  return BDA_ERR;
}

// ---- Answering ------------------------------------------------------------------------------------------------------

BDAErr BulkExecuterFileDump::getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) {
  BDAErr result = BDA_INFO_FILE_DUMP;
  message.clear();
  message.reserve(kDumpFrame);
  result |= writeBulkDumpHead(message);
  if (isFailure(result)) return result;
  const Address& address = getAddress();
  message.insert(message.end(), {0, 0, address.getHi(), address.getMid(), address.getLo()});
  if (address.getHi() != kTriggerHi) {
    std::vector<std::uint8_t> field;
    result |= readFileDump(field);
    if (isFailure(result)) {
      Read::kCannotRead();
      return result;
    }
    message.insert(message.end(), field.begin(), field.end());
    splitByteCount(&message[kByteCountAt], &message[kByteCountAt + 1], std::uint32_t(field.size()));
  }
  writeBulkDumpEnd(message);
  return result;
}

BDAErr BulkExecuterFileDump::readFileDump(std::vector<std::uint8_t>& field) {
  field.clear();
  if (work_ == nullptr) return BDA_ERR;
  const std::uint32_t contType = getContentsType();
  if (contType == ContSrv::ContType_None) {
    Read::kNoType(int(contType));
    return BDA_ERR;
  }
  std::uint32_t contNumber = 0;
  if (const std::int32_t found = getContentsNumber(contNumber); found < 0) {
    Read::kNoNumber(found);
    return BDA_ERR;
  }
  std::string path;
  if (const auto found = work_->getDataFilePath(contType, contNumber, path); !isSuccess(found)) {
    Read::kNoPath(int(found));
    return BDA_ERR;
  }
  std::string name;  // the single content has none
  if (contType != ContSrv::ContType_Single) {
    const auto named = work_->getContentName(contType, contNumber, name);
    if (!isSuccess(named) && named != ContSrv::ContRes_EmptyContent) {
      Read::kNoName(int(named));
      return BDA_ERR;
    }
  }
  ContSrv::DataFile* const file = work_->openDataFile(path, ContSrv::OpenMode_Read);
  if (file == nullptr) {
    field.assign(2 * kCountBytes, 0);
    return BDA_OK;
  }
  GiveBack opened([&] { return work_->closeDataFile(file, 0); });
  ContSrv::Data* const data = file->openData();
  if (data == nullptr) {
    Read::kNoData();
    if (const auto closed = opened.now(); !isSuccess(closed)) Read::kFileNotClosed(int(closed));
    return BDA_ERR;
  }

  BDAErr result = BDA_OK;
  try {
    result = readField(*data, name, field);
  } catch (...) {  // by the store, or because storage ran out: the file may be of any size
    Notes::thrown();
    Read::kNotRead();
    result = BDA_ERR;
  }
  if (const auto closed = file->closeData(data); !isSuccess(closed)) {
    Read::kDataNotClosed(int(closed));
    result = BDA_ERR;
  }
  if (const auto closed = opened.now(); !isSuccess(closed)) {
    Read::kFileNotClosed(int(closed));
    result = BDA_ERR;
  }
  return result;
}

// The packed name and the packed file, which is read into a buffer of its size. Also what fails fills `field`.
BDAErr BulkExecuterFileDump::readField(ContSrv::Data& data, const std::string& name, std::vector<std::uint8_t>& field) {
  BDAErr result = BDA_OK;
  std::vector<std::uint8_t> encodedName;
  std::vector<std::uint8_t> encodedData;
  if (!encode(std::vector<std::uint8_t>(name.begin(), name.end()), encodedName)) {
    Read::kNameUnencoded();
    result = BDA_ERR;
  }
  if (const std::int64_t size = data.getSize(); size != 0) {
    std::vector<std::uint8_t> bytes;
    if (size > 0) bytes.resize(lengthInMemory(size));
    if (size < 0 || data.read(bytes.data(), size) < size) {
      Read::kNotRead();
      result = BDA_ERR;
    } else if (!encode(bytes, encodedData)) {
      result = BDA_ERR;
    }
  }
  const std::size_t total = encodedName.size() + encodedData.size() + 2 * kCountBytes;
  if (total > kMaxField) {
    Read::kTooLong(unsigned(total));
    result = BDA_ERR;
  }
  field.reserve(total);
  append(field, encodedName);
  append(field, encodedData);
  return result;
}

// ---- Names of contents ----------------------------------------------------------------------------------------------

std::uint32_t BulkExecuterFileDump::getContentsType() const {
  if (const FileDumpBlock* const block = findBlock(getBlockType())) return block->contType;
  Naming::kTypeError();
  return ContSrv::ContType_None;
}

std::int32_t BulkExecuterFileDump::getContentsNumber(std::uint32_t& number) const {
  const FileDumpBlock* const block = findBlock(getBlockType());
  if (block == nullptr) {
    Naming::kNumberError();
    return -1;
  }
  const std::uint8_t lo = getAddress().getLo();
  switch (block->kind) {
    case FileDumpBlock::voice:
      number = getJobTools().getVoiceContentNumber(std::uint8_t(block->bank + getBlockIndex()), lo);
      break;
    case FileDumpBlock::mixingVoice:
      number = work_->getMixingVoiceNumber(ContSrv::ContType_Multi, lo, getAddress().getMid() & 0x0FU);
      break;
    case FileDumpBlock::number:
      number = lo;
      break;
    case FileDumpBlock::single:
      number = 0;
      break;
  }
  return 0;
}

bool BulkExecuterFileDump::isMixingVoiceContent(std::uint32_t contType, std::uint32_t contNumber) {
  const auto isWithin = [contNumber](std::uint32_t first, std::uint32_t last) {
    return contNumber >= first && contNumber <= last;
  };
  return contType == ContSrv::ContType_Voice && (isWithin(0x3F3C00, 0x3F3C0F) || isWithin(0x3F8000, 0x3FFFFF));
}

// ---- The codec ------------------------------------------------------------------------------------------------------

bool BulkExecuterFileDump::encode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination) {
  if (source.empty()) return true;
  destination.resize(FileDumpCodec::packedSize(source.size()));
  if (FileDumpCodec::encode(source, destination.data())) return true;
  Codec::kEncodeError();
  return false;
}

bool BulkExecuterFileDump::decode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination) {
  const bool isWhole = source.size() % FileDumpCodec::kPackedGroup != 1;
  const std::span<const std::uint8_t> groups(source.data(), isWhole ? source.size() : source.size() - 1);
  destination.resize(FileDumpCodec::unpackedSize(groups.size()));
  if (!groups.empty() && !FileDumpCodec::decode(groups, destination.data())) {
    Codec::kDecodeError();
    return false;
  }
  if (!isWhole) Codec::kLengthError();
  return isWhole;
}

bool BulkExecuterFileDump::encodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* out) {
  return FileDumpCodec::encodeGroup(source, count, out);
}

bool BulkExecuterFileDump::decodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* out) {
  return FileDumpCodec::decodeGroup(source, count, out);
}

bool BulkExecuterFileDump::splitByteCount(std::uint8_t* hi, std::uint8_t* lo, std::uint32_t value) {
  if (hi == nullptr || lo == nullptr) return false;
  *hi = std::uint8_t(value >> 7);
  *lo = value & 0x7F;
  return true;
}

}  // namespace BDA
