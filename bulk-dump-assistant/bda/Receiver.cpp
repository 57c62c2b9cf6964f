#include "Receiver.h"

#include "BulkMessage.h"
#include "BulkTable.h"
#include "Failure.h"
#include "SystemSettings.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\Receiver.cpp";
constexpr const char* kDump = "BDA::BulkDumpReceiver::receiveBulkDump";
constexpr const char* kRequest = "BDA::BulkRequestReceiver::receiveBulkRequest";
constexpr Failure<int> kInvalidLength{
    {kFile, 94, kDump}, Refusal::malformedMessage, "error : invalid length ! [ length = %d ]\n"};
constexpr Failure<> kNoBridgeForDump{{kFile, 101, kDump}, Refusal::noBridge, "error : bda bridge is NULL !\n"};
constexpr Failure<unsigned, unsigned, unsigned> kNoBlock{
    {kFile, 116, kDump}, Refusal::noBlock, "error : not found block [ %02x, %02x, %02x ]\n"};
constexpr Failure<unsigned> kBlockFailed{
    {kFile, 128, kDump}, Refusal::blockFailed, "error : setBulkDumpMessage() ! [ BDAErr = 0x%02x ] \n"};
constexpr Failure<> kNoBridgeForRequest{{kFile, 216, kRequest}, Refusal::noBridge, "error : bda bridge is NULL ! \n"};
constexpr Failure<unsigned, unsigned, unsigned> kNoAddress{
    {kFile, 225, kRequest}, Refusal::noBlock, "error : not found address ! [ %02x %02x %02x ]\n"};
constexpr Failure<unsigned> kDumpFailed{
    {kFile, 251, kRequest}, Refusal::blockFailed, "error : getBulkDumpMessage() ! [ BDAErr = 0x%02x ]\n"};

constexpr BDAErr kUnitCompleted =
    BDA_INFO_FOOTER | BDA_INFO_FILE_DUMP | BDA_INFO_SYSTEM | BDA_INFO_EDITOR | BDA_INFO_FILE_DUMP_CONTROL;

constexpr std::uint8_t kNoticeType = 0x60;
constexpr std::size_t kNoticeDeviceAt = 2;

// Remote settings answer on a port of their own.
DevicePortNum answerPort(DevicePortNum port, std::uint8_t hi, const Address& address) {
  const bool isRemote = address.getHi() == hi && (address.getMid() == 0x60 || address.getMid() == 0x6F);
  return isRemote ? DevicePort_Remote : port;
}

}  // namespace

BulkReceiverBase::~BulkReceiverBase() = default;

void BulkReceiverBase::send(const std::vector<std::uint8_t>& message, DevicePortNum port) const {
  if (bridge_ != nullptr) bridge_->sendSysEx(message.data(), std::uint32_t(message.size()), port);
}

BulkDumpReceiver::BulkDumpReceiver(BulkTable* table, CMA::JobTools* jobTools, BulkDumpBridge* bridge,
                                   MessageModelInterfaceWrapper* messageModel)
    : BulkReceiverBase(table, jobTools, bridge),
      notice_{kStartOfExclusive, kMakerId, kNoticeType, 0x02, kEndOfExclusive},
      messageModel_(messageModel),
      noticeType_(kNoticeType) {}

BDAErr BulkDumpReceiver::receiveBulkDump(const std::uint8_t* message, std::uint32_t length, DevicePortNum port) {
  if (length < kDumpFrame) {
    kInvalidLength(int(length));
    return BDA_ERR_DATA_LENGTH;
  }
  if (bridge_ == nullptr) {
    kNoBridgeForDump();
    return BDA_ERR;
  }
  const std::uint8_t* const bytes = message + kDumpAddressAt;
  const Address address(bytes[0], bytes[1], bytes[2]);
  BulkBlock* const block = table_->findBulkBlock(address);
  if (block == nullptr) {
    kNoBlock(address.getHi(), address.getMid(), address.getLo());
    return BDA_ERR_NOT_FOUND;
  }
  const BDAErr result = block->setBulkDumpMessage(message + kDataAt, length - std::uint32_t{kDumpFrame});
  if (isFailure(result))
    kBlockFailed(result);
  else if ((result & kUnitCompleted) != 0)
    sendNotice(answerPort(port, kFooterHi, address));
  return result;
}

void BulkDumpReceiver::sendNotice(DevicePortNum port) {
  if (port != DevicePort_Echo && port != DevicePort_Remote) return;
  unsigned char device = 0;
  if (readDeviceNumber(*jobTools_, &device) == CMA::DeviceNumber_Off) return;
  notice_[kNoticeDeviceAt] = noticeType_ | device;
  send(notice_, port);
}

BulkRequestReceiver::BulkRequestReceiver(BulkTable* table, CMA::JobTools* jobTools, BulkDumpBridge* bridge,
                                         ContSrv::Work* work)
    : BulkReceiverBase(table, jobTools, bridge), work_(work) {}

BDAErr BulkRequestReceiver::receiveBulkRequest(const std::uint8_t* message, std::uint32_t length, DevicePortNum port) {
  if (length != kRequestLength) return BDA_ERR_DATA_LENGTH;
  if (bridge_ == nullptr) {
    kNoBridgeForRequest();
    return BDA_ERR;
  }
  const std::uint8_t* const bytes = message + kRequestAddressAt;
  const Address address(bytes[0], bytes[1], bytes[2]);
  BulkBlockHolder blockHolder;
  if (isFailure(table_->getBulkBlockHolderForBulkReq(address, blockHolder))) {
    kNoAddress(address.getHi(), address.getMid(), address.getLo());
    return BDA_ERR_NOT_FOUND;
  }
  if (blockHolder.empty()) return BDA_INFO_SWALLOWED;

  const DevicePortNum sendPort = answerPort(port, kHeaderHi, address);
  std::vector<std::vector<std::uint8_t>> sysExs;
  BDAErr result = BDA_OK;
  for (BulkBlock* block : blockHolder) {
    result |= block->getBulkDumpMessage(sysExs);
    if (isFailure(result)) {
      kDumpFailed(result);
      break;
    }
    for (const std::vector<std::uint8_t>& sysEx : sysExs) {
      if (bridge_ == nullptr) Notes::refusal(Refusal::noBridge);  // the editor may take it away from inside a send
      send(sysEx, sendPort);
    }
  }
  return result;
}

}  // namespace BDA
