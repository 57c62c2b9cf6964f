#include "BulkExecuter.h"

#include <algorithm>
#include <array>

#include "BulkMessage.h"
#include "CommonLayouts.h"
#include "SystemSettings.h"
#include "bda/BulkDumpAssistant.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuter.cpp";
constexpr Failure<> kCannotCreate{{kFile, Line::ofThisSource(), "BDA::BulkExecuter::getBulkDumpMessageImplement"},
                                  Refusal::dumpNotCreated,
                                  "Bulk create Error !!!\n"};

}  // namespace

BulkExecuter::BulkExecuter(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                           CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState,
                           std::uint32_t dataLength)
    : jobReceivers_(jobReceivers),
      jobTools_(jobTools),
      blockType_(0),
      blockIndex_(0),
      address_(0, 0, 0),
      dataLength_(dataLength),
      sharedState_(sharedState),
      temporaryModel_(temporaryModel) {}

BulkExecuter::~BulkExecuter() = default;

void BulkExecuter::setBlockInfo(const Address& address, std::uint32_t blockType, std::uint32_t blockIndex) {
  address_.setAddress(address);
  blockType_ = blockType;
  blockIndex_ = blockIndex;
}

BDAErr BulkExecuter::getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages) {
  messages.clear();
  messages.emplace_back();
  return getBulkDumpMessageImplement(messages.front());
}

BDAErr BulkExecuter::getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) {
  message.clear();
  message.reserve(dataLength_ + kDumpFrame);

  // All parameter blocks fit the stack; only the long lists of names do not.
  std::array<std::uint8_t, kMaxLength> shortData;
  std::vector<std::uint8_t> longData;
  std::uint8_t* data = shortData.data();
  if (dataLength_ > shortData.size()) {
    longData.resize(dataLength_);
    data = longData.data();
  } else {
    std::fill_n(data, dataLength_, std::uint8_t{0});
  }

  BDAErr result = execBulkBlock(data, dataLength_, 0);
  if (isFailure(result)) {
    kCannotCreate();
    return result;
  }
  result |= writeBulkDumpHead(message);
  if (isFailure(result)) return result;
  writeBulkDumpBody(message, address_, data, dataLength_);
  return BDA_OK;  // what the conversion told beside success is of no use to a request
}

BDAErr BulkExecuter::setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) {
  return execBulkBlock(const_cast<std::uint8_t*>(data), length, 1);
}

BDAErr BulkExecuter::execBulkBlock(std::uint8_t* /*data*/, std::uint32_t /*length*/, std::uint8_t /*isReceive*/) {
  return BDA_ERR;
}

BDAErr BulkExecuter::convertInsEffectBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive) {
  convert<kInsEffect>({{&group}}, data, isReceive);
  return BDA_OK;
}

BDAErr BulkExecuter::convertSixParamBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive) {
  convert<kSixParam>({{&group}}, data, isReceive);
  return BDA_OK;
}

BDAErr BulkExecuter::convertEqBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive) {
  convert<kEq>({{&group}}, data, isReceive);
  return BDA_OK;
}

BDAErr BulkExecuter::writeBulkDumpHead(std::vector<std::uint8_t>& message) {
  message.push_back(kStartOfExclusive);
  message.push_back(kMakerId);
  unsigned char device = 0;
  if (readDeviceNumber(*jobTools_, &device) == CMA::DeviceNumber_Off) return BDA_ERR;
  message.push_back(device);
  message.push_back(kModelId1);
  message.push_back(kModelId2);
  return BDA_OK;
}

void BulkExecuter::writeBulkDumpBody(std::vector<std::uint8_t>& message, const Address& address,
                                     const std::uint8_t* data, std::uint32_t length) {
  message.push_back(std::uint8_t(length >> 7));
  message.push_back(length & 0x7F);
  message.push_back(address.getHi());
  message.push_back(address.getMid());
  message.push_back(address.getLo());
  if (length > 0) message.insert(message.end(), data, data + length);
  writeBulkDumpEnd(message);
}

void BulkExecuter::writeBulkDumpEnd(std::vector<std::uint8_t>& message) {
  constexpr std::size_t kStillToCome = 2;  // checksum and F7
  const std::size_t length = message.size() + kStillToCome;
  message.push_back(Utility::calcCheckSum(message.data(), static_cast<unsigned long>(length)));
  message.push_back(kEndOfExclusive);
}

BDAErr BulkExecuter::checkLength(const BlockFailures& failures, const std::uint8_t* data, std::uint32_t length,
                                 std::size_t touchedLength) const {
  if (length != getDataLength()) {
    failures.wrongLength(getDataLength(), length);
    return BDA_ERR_DATA_LENGTH;
  }
  return length < touchedLength || (data == nullptr && length > 0) ? BDA_ERR_DATA_LENGTH : BDA_OK;
}

}  // namespace BDA
