#include "models/ContentAddress.h"

#include "AddressRows.h"
#include "bda/platform/CMA/VoiceBanks.h"

namespace Editor {

namespace {

// The middle byte of every bank's headers and file dumps, by bank code.
constexpr std::array<std::uint8_t, kBankCount> kBankMid{0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07,
                                                        0x0A, 0x0B, 0x0C, 0x20, 0x28, 0x09, 0x21, 0x31};

// By EditBuffer.
constexpr std::array<std::uint8_t, 7> kEditBufferMid{0x0F, 0x2F, 0x30, 0x5F, 0x4F, 0x7F, 0x6F};

constexpr std::uint8_t kPerformanceMid = 0x40;  // and 0x41
constexpr std::uint8_t kRemoteMid = 0x60;
constexpr std::uint8_t kMasterMid = 0x70;

constexpr std::uint8_t kMixingVoiceDumpMid = 0x10;  // to 0x1F, by the voice
constexpr std::uint8_t kMultiDumpMid = 0x50;
constexpr std::uint8_t kSingleDumpMid = 0x7F;

constexpr std::uint32_t kMultis = 128;
constexpr std::uint32_t kVoicesPerMulti = 16;
constexpr std::uint32_t kPerformances = 256;
constexpr std::uint32_t kMasters = 128;
constexpr std::uint32_t kRemotes = 50;

// Mixing voices of all multis in a row; the first sixteen are better known as bank 15.
constexpr std::uint32_t kMixingVoiceFirst = 0x3F8000;
constexpr std::uint32_t kMixingVoiceEnd = kMixingVoiceFirst + kVoicesPerMulti * kMultis;

constexpr std::uint32_t kNoSuchNumber = 0x80000000;

std::optional<ContentId> bankVoiceAt(MidLo address) {
  for (unsigned bank = 0; bank < kBankCount; ++bank)
    if (kBankMid[bank] == address.mid && address.lo < kVoicesPerBank[bank])
      return ContentId{ContSrv::ContType_Voice, voiceContentNumber(bank, address.lo)};
  return std::nullopt;
}

}  // namespace

std::optional<unsigned> bankOf(std::uint8_t bankSelectMsb, std::uint8_t bankSelectLsb) {
  for (unsigned bank = 0; bank < kBankCount; ++bank)
    if (CMA::voiceBankSelTable[bank].msb == bankSelectMsb && CMA::voiceBankSelTable[bank].lsb == bankSelectLsb)
      return bank;
  return std::nullopt;
}

std::uint32_t voiceContentNumber(unsigned bank, std::uint8_t voice) {
  if (bank >= kBankCount) return kNoSuchNumber | (bank & 0xFFFF) << 8 | voice;
  const CMA::BankSelect select = CMA::voiceBankSelTable[bank];
  return std::uint32_t(select.msb) << 16 | std::uint32_t(select.lsb) << 8 | voice;
}

std::uint32_t mixingVoiceNumber(std::uint32_t multi, std::uint32_t voice) {
  if (multi >= kMultis || voice >= kVoicesPerMulti) return kNoSuchNumber | (multi & 0xFFFF) << 8 | (voice & 0xFF);
  if (multi == 0) return voiceContentNumber(kMixingBank, std::uint8_t(voice));
  return kMixingVoiceFirst + kVoicesPerMulti * multi + voice;
}

std::optional<BankVoice> bankVoiceOf(ContentId id) {
  const std::uint32_t number = canonical(id).number;
  if (id.type != ContSrv::ContType_Voice || number > 0xFFFFFF) return std::nullopt;
  const std::optional<unsigned> bank = bankOf(std::uint8_t(number >> 16), std::uint8_t(number >> 8));
  const auto voice = std::uint8_t(number);
  if (!bank || voice >= kVoicesPerBank[*bank]) return std::nullopt;
  return BankVoice{*bank, voice};
}

bool isMixingVoice(ContentId id) {
  if (id.type != ContSrv::ContType_Voice) return false;
  if (id.number >= kMixingVoiceFirst && id.number < kMixingVoiceEnd) return true;
  const std::optional<BankVoice> voice = bankVoiceOf(id);
  return voice && voice->bank == kMixingBank;
}

bool isDrumVoice(ContentId id) {
  const std::optional<BankVoice> voice = bankVoiceOf(id);
  return voice && isDrumBank(voice->bank);
}

bool canBeFavourite(ContentId id) {
  const std::optional<BankVoice> voice = bankVoiceOf(id);
  return voice && voice->bank != kMixingBank;
}

ContentId canonical(ContentId id) {
  const bool twice = id.type == ContSrv::ContType_Voice && id.number >= kMixingVoiceFirst &&
                     id.number < kMixingVoiceFirst + kVoicesPerMulti;
  return twice ? ContentId{id.type, mixingVoiceNumber(0, id.number - kMixingVoiceFirst)} : id;
}

bool isContent(ContentId id) {
  switch (id.type) {
    case ContSrv::ContType_Voice:
      return bankVoiceOf(id).has_value() || isMixingVoice(id);
    case ContSrv::ContType_Multi:
      return id.number < kMultis;
    case ContSrv::ContType_Single:
      return id.number == 0;
    case kContentPerformance:
      return id.number < kPerformances;
    case kContentMaster:
      return id.number < kMasters;
    case kContentRemote:
      return id.number < kRemotes;
    default:
      return false;
  }
}

std::optional<EditBuffer> editBufferOf(std::uint8_t mid) {
  for (std::size_t i = 0; i < kEditBufferMid.size(); ++i)
    if (kEditBufferMid[i] == mid) return EditBuffer(i);
  return std::nullopt;
}

MidLo headerOf(EditBuffer buffer, std::uint8_t part) {
  return {kEditBufferMid[std::size_t(buffer)], buffer == EditBuffer::partVoice ? part : std::uint8_t(0)};
}

unsigned headerTypeOf(MidLo header) {
  for (const BDA::AddressRow& row : BDA::kHeaderRows)
    if (header.mid >= row.mid.first && header.mid <= row.mid.last && header.lo >= row.lo.first &&
        header.lo <= row.lo.last)
      return row.type;
  return 0;
}

std::optional<ContentId> contentOfHeader(MidLo header) {
  if (headerTypeOf(header) == 0) return std::nullopt;
  if (header.mid == kPerformanceMid || header.mid == kPerformanceMid + 1)
    return ContentId{kContentPerformance, std::uint32_t(header.mid - kPerformanceMid) << 7 | header.lo};
  if (header.mid == kMasterMid) return ContentId{kContentMaster, header.lo};
  if (header.mid == kRemoteMid) return ContentId{kContentRemote, header.lo};
  return bankVoiceAt(header);
}

std::optional<MidLo> headerOf(ContentId id) {
  if (!isContent(id)) return std::nullopt;
  if (const std::optional<BankVoice> voice = bankVoiceOf(id)) return MidLo{kBankMid[voice->bank], voice->voice};
  switch (id.type) {
    case kContentPerformance:
      return MidLo{std::uint8_t(kPerformanceMid + (id.number >> 7)), std::uint8_t(id.number & 0x7F)};
    case kContentMaster:
      return MidLo{kMasterMid, std::uint8_t(id.number)};
    case kContentRemote:
      return MidLo{kRemoteMid, std::uint8_t(id.number)};
    default:
      return std::nullopt;
  }
}

std::optional<ContentId> contentOfFileDump(MidLo address) {
  if (address.lo > 0x7F) return std::nullopt;
  if (address.mid >= kMixingVoiceDumpMid && address.mid < kMixingVoiceDumpMid + kVoicesPerMulti)
    return ContentId{ContSrv::ContType_Voice, mixingVoiceNumber(address.lo, address.mid - kMixingVoiceDumpMid)};
  if (address.mid == kMultiDumpMid) return ContentId{ContSrv::ContType_Multi, address.lo};
  if (address == MidLo{kSingleDumpMid, 0}) return ContentId{ContSrv::ContType_Single, 0};
  return bankVoiceAt(address);
}

std::optional<MidLo> fileDumpOf(ContentId id) {
  if (!isContent(id)) return std::nullopt;
  if (const std::optional<BankVoice> voice = bankVoiceOf(id)) return MidLo{kBankMid[voice->bank], voice->voice};
  switch (id.type) {
    case ContSrv::ContType_Voice: {
      const std::uint32_t index = id.number - kMixingVoiceFirst;
      return MidLo{std::uint8_t(kMixingVoiceDumpMid + index % kVoicesPerMulti), std::uint8_t(index / kVoicesPerMulti)};
    }
    case ContSrv::ContType_Multi:
      return MidLo{kMultiDumpMid, std::uint8_t(id.number)};
    case ContSrv::ContType_Single:
      return MidLo{kSingleDumpMid, 0};
    default:
      return std::nullopt;
  }
}

}  // namespace Editor
