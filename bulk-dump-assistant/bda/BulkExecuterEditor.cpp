#include "BulkExecuterEditor.h"

#include <algorithm>
#include <string>
#include <utility>

#include "BulkMessage.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/ContSrv/ContSrv.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterEditor.cpp";

constexpr const char* kWave = "BDA::BulkExecuterEditorWaveName::execBulkBlock";
constexpr Failure<unsigned, unsigned> kWaveLength{
    {kFile, Line::ofThisSource(), kWave},
    Refusal::wrongDataLength,
    "Wrong data length. (Editor Wave Name): Correct = [%02x], Data = [%02x]\n"};
constexpr Failure<> kWaveIsRequestOnly{
    {kFile, Line::ofThisSource(), kWave}, Refusal::requestOnly, "Editor wave bulk is request only !!!\n"};
constexpr Failure<> kNoWaveName{
    {kFile, Line::ofThisSource(), kWave}, Refusal::nameNotFound, "Wave Name getting error !!!\n"};
constexpr Failure<> kWaveNameTooLong{
    {kFile, Line::ofThisSource(), kWave}, Refusal::nameTooLong, "WaveName is too long !!!\n"};

constexpr const char* kArp = "BDA::BulkExecuterEditorArpName::execBulkBlock";
constexpr Failure<unsigned, unsigned> kArpLength{
    {kFile, Line::ofThisSource(), kArp},
    Refusal::wrongDataLength,
    "Wrong data length. (Editor Arp Name): Correct = [%02x], Data = [%02x]\n"};
constexpr Failure<> kArpIsRequestOnly{
    {kFile, Line::ofThisSource(), kArp}, Refusal::requestOnly, "Editor arp bulk is request only !!!\n"};
constexpr Failure<> kNoArpName{
    {kFile, Line::ofThisSource(), kArp}, Refusal::nameNotFound, "Arp Name getting error !!!\n"};
constexpr Failure<> kArpNameTooLong{
    {kFile, Line::ofThisSource(), kArp}, Refusal::nameTooLong, "WaveName is too long !!!\n"};  // by contract

constexpr const char* kMulti = "BDA::BulkExecuterEditorMultiName::execBulkBlock";
constexpr Failure<unsigned, unsigned> kMultiLength{
    {kFile, Line::ofThisSource(), kMulti},
    Refusal::wrongDataLength,
    "Wrong data length. (Editor Multi Name): Correct = [%02x], Data = [%02x]\n"};
constexpr Failure<> kMultiIsRequestOnly{
    {kFile, Line::ofThisSource(), kMulti}, Refusal::requestOnly, "error : multi name bulk is request only !\n"};
constexpr Failure<int> kNoMultiName{
    {kFile, Line::ofThisSource(), kMulti}, Refusal::nameNotFound, "error : can't get multi name [ret = %d]\n"};
constexpr Failure<int> kMultiNameTooLong{
    {kFile, Line::ofThisSource(), kMulti}, Refusal::nameTooLong, "error : too long multi name [size = %d]\n"};

struct Slots {
  std::uint32_t count;
  std::uint32_t size;
};
constexpr Slots kWaveSlots{16, 28};
constexpr Slots kArpSlots{16, 28};
constexpr Slots kMultiSlots{128, 20};

constexpr std::uint8_t kNameBank = 1;
constexpr int kNoWork = -1;

constexpr std::size_t kCaptureBlock = 1024;

// Name after name: getName(slot, name) gives BDA_OK or what to fail with. What was filled before a failure stays.
template <typename GetName>
BDAErr fillSlots(const Slots& slots, std::uint8_t* data, GetName getName) {
  for (std::uint32_t slot = 0; slot < slots.count; ++slot) {
    std::string name;
    if (const BDAErr result = getName(slot, name); isFailure(result)) return result;
    std::copy(name.begin(), name.end(), data + std::size_t{slot} * slots.size);
  }
  return BDA_INFO_EDITOR;
}

// What is checked before any name is asked for, in this order.
BDAErr checkNames(std::uint32_t expected, const Slots& slots, const std::uint8_t* data, std::uint32_t length,
                  std::uint8_t isReceive, const Failure<unsigned, unsigned>& wrongLength,
                  const Failure<>& isRequestOnly) {
  if (length != expected) {
    wrongLength(expected, length);
    return BDA_ERR_DATA_LENGTH;
  }
  if (isReceive != 0) {
    isRequestOnly();
    return BDA_ERR;
  }
  return data == nullptr || length < slots.count * slots.size ? BDA_ERR_DATA_LENGTH : BDA_OK;
}

}  // namespace

BDAErr BulkExecuterEditorWaveName::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const BDAErr result =
      checkNames(getDataLength(), kWaveSlots, data, length, isReceive, kWaveLength, kWaveIsRequestOnly);
  if (isFailure(result)) return result;
  return fillSlots(kWaveSlots, data, [this](std::uint32_t slot, std::string& name) {
    const std::uint32_t number = getAddress().getLo() * kWaveSlots.count + slot + 1;
    if (getJobTools().getWaveformContentName(number, kNameBank, name) != CMA::JOB::Result_Success) {
      kNoWaveName();
      return BDA_ERR;
    }
    if (name.size() <= kWaveSlots.size) return BDA_OK;
    kWaveNameTooLong();
    return BDA_ERR;
  });
}

BDAErr BulkExecuterEditorArpName::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const BDAErr result = checkNames(getDataLength(), kArpSlots, data, length, isReceive, kArpLength, kArpIsRequestOnly);
  if (isFailure(result)) return result;
  return fillSlots(kArpSlots, data, [this](std::uint32_t slot, std::string& name) {
    const std::uint32_t number = getAddress().getLo() * kArpSlots.count + slot;  // from 0, unlike waveforms
    if (getJobTools().getArpeggioContentName(number, kNameBank, name) != CMA::JOB::Result_Success) {
      kNoArpName();
      return BDA_ERR;
    }
    if (name.size() <= kArpSlots.size) return BDA_OK;
    kArpNameTooLong();
    return BDA_ERR;
  });
}

BDAErr BulkExecuterEditorMultiName::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const BDAErr result =
      checkNames(getDataLength(), kMultiSlots, data, length, isReceive, kMultiLength, kMultiIsRequestOnly);
  if (isFailure(result)) return result;
  ContSrv::Work* const work = ContSrv::WorkManager::getWork(getJobTools().getEventPortManager());
  if (work == nullptr) {
    kNoMultiName(kNoWork);
    return BDA_ERR;
  }
  return fillSlots(kMultiSlots, data, [work](std::uint32_t slot, std::string& name) {
    const ContSrv::_ContResult found = work->getContentName(ContSrv::ContType_Multi, slot, name);
    if (found != ContSrv::ContRes_Success && found != ContSrv::ContRes_DoNothing &&
        found != ContSrv::ContRes_EmptyContent) {
      kNoMultiName(int(found));
      return BDA_ERR;
    }
    if (name.size() <= kMultiSlots.size) return BDA_OK;
    kMultiNameTooLong(int(name.size()));
    return BDA_ERR;
  });
}

BDAErr BulkExecuterScreenCap::getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages) {
  messages.clear();
  std::vector<std::uint8_t> screenData;
  if (const std::uint32_t result = getJobTools().getScreenImage(screenData); result != 0) return BDA_ERR | result;
  const std::size_t blockCount = (screenData.size() + kCaptureBlock - 1) / kCaptureBlock;
  const auto high = [](std::size_t number) { return std::uint8_t(number >> 7 & 0x7F); };
  const auto low = [](std::size_t number) { return std::uint8_t(number & 0x7F); };

  BDAErr result = BDA_OK;
  const auto addMessage = [&](const Address& address, const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> message;
    message.reserve(data.size() + kDumpFrame);
    result |= writeBulkDumpHead(message);
    if (isFailure(result)) return;
    writeBulkDumpBody(message, address, data.data(), std::uint32_t(data.size()));
    messages.push_back(std::move(message));
  };
  const Address& address = getAddress();
  addMessage(address, {high(blockCount), low(blockCount), 0x01, 0x20, 0x00, 0x40, 0x00});
  const Address dataAddress(address.getHi(), address.getMid(), std::uint8_t(address.getLo() + 1));
  for (std::size_t block = 0; block < blockCount && !isFailure(result); ++block) {
    const std::size_t begin = block * kCaptureBlock;
    const std::size_t end = std::min(begin + kCaptureBlock, screenData.size());
    std::vector<std::uint8_t> data{high(block), low(block)};
    data.insert(data.end(), screenData.begin() + std::ptrdiff_t(begin), screenData.begin() + std::ptrdiff_t(end));
    addMessage(dataAddress, data);
  }
  return result;
}

}  // namespace BDA
