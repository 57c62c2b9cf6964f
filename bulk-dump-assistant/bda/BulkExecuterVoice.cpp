#include "BulkExecuterVoice.h"

#include "LayoutTargets.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterVoice.cpp";

constexpr BlockFailures kCommon = blockFailures(kFile, "BDA::BulkExecuterVoiceCommon::execBulkBlock",
                                                "Wrong data length. (Voice Common): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kArp =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonArp::execBulkBlock",
                  "Wrong data length. (normal Voice Arp): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kRev =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonRev::execBulkBlock",
                  "Wrong data length. (normal Voice Common Rev): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kCho =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonCho::execBulkBlock",
                  "Wrong data length. (normal Voice Common): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kInsAB =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonInsAB::execBulkBlock",
                  "Wrong data length. (normal Voice Ins AB): Correct = [%02x], Data = [%02x]\n");
constexpr Failure<> kWrongInsertion{{kFile, Line::ofThisSource(), "BDA::BulkExecuterVoiceCommonInsAB::execBulkBlock"},
                                    Refusal::wrongBlockType,
                                    "Ins Block Error !\n"};
constexpr BlockFailures kInsL =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonInsL::execBulkBlock",
                  "Wrong data length. (normal Voice Ins L): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kCtrl =
    blockFailures(kFile, "BDA::BulkExecuterVoiceCommonCtrl::execBulkBlock",
                  "Wrong data length. (Voice Common Ctrl): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kElmOsc =
    blockFailures(kFile, "BDA::BulkExecuterNormalVoiceElmOsc::execBulkBlock",
                  "Wrong data length. (normal Voice Elm Osc): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kElmFilter =
    blockFailures(kFile, "BDA::BulkExecuterNormalVoiceElmFilter::execBulkBlock",
                  "Wrong data length. (normal Voice Elm Filter): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kKey = blockFailures(kFile, "BDA::BulkExecuterDrumVoiceKey::execBulkBlock",
                                             "Wrong data length. (Drum Voice Key): Correct = [%02x], Data = [%02x]\n");

enum BlockType : std::uint32_t {
  kNormalVoiceCommon = 61,
  kNormalVoiceInsertionA = 64,
  kNormalVoiceInsertionB = 65,
  kNormalVoiceCtrl = 67,
  kDrumVoiceCommon = 72,
  kDrumVoiceInsertionA = 75,
  kDrumVoiceInsertionB = 76,
};

}  // namespace

Voice* BulkExecuterVoiceBase::getVoice() const {
  return getLoadSkipped() == 0 ? getJobTools().getTemporaryVoiceModel(getTemporaryModel(), getCurrentNumber())
                               : getJobTools().getVoiceModel(getCurrentNumber());
}

Multi* BulkExecuterVoiceBase::getMulti() const {
  return getLoadSkipped() == 0 ? getJobTools().getTemporaryMultiModel(getTemporaryModel())
                               : getJobTools().getMultiModel();
}

BDAErr BulkExecuterVoiceCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice* const voice = getVoice();
  Multi* const multi = getMulti();
  const auto convertAs = [&]<const auto & kLayout>(const Targets<kLayout>& targets) {
    return convertBlock<kLayout>(kCommon, targets, data, length, isReceive);
  };
  switch (getBlockType()) {
    case kNormalVoiceCommon:
      return convertAs(VoiceCommon::targetsIn<VoiceCommon::kNormal>(voice, multi));
    case kDrumVoiceCommon:
      return convertAs(VoiceCommon::targetsIn<VoiceCommon::kDrum>(voice, multi));
    default:
      return convertAs(VoiceCommon::targetsIn<VoiceCommon::kEither>(voice, multi));
  }
}

BDAErr BulkExecuterVoiceCommonArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = VoiceCommonArp::targetsIn(getVoice());
  return convertBlock<VoiceCommonArp::kLayout>(kArp, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonRev::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = VoiceCommonRev::targetsIn(getMulti());
  return convertBlock<VoiceCommonRev::kLayout>(kRev, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonCho::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = VoiceCommonCho::targetsIn(getMulti());
  return convertBlock<VoiceCommonCho::kLayout>(kCho, targets, data, length, isReceive);
}

// The order of its tests: model, length, block type; the last is no failure.
BDAErr BulkExecuterVoiceCommonInsAB::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice* const voice = getVoice();
  switch (getBlockType()) {
    case kNormalVoiceInsertionA:
    case kDrumVoiceInsertionA:
      return convertBlock<kInsEffect>(kInsAB, VoiceInsertion::targetsOfA(voice), data, length, isReceive);
    case kNormalVoiceInsertionB:
    case kDrumVoiceInsertionB:
      return convertBlock<kInsEffect>(kInsAB, VoiceInsertion::targetsOfB(voice), data, length, isReceive);
    default: {
      const auto either = VoiceInsertion::targetsOfA(voice);
      const BDAErr result = checkBlock<kInsEffect>(kInsAB, either, data, length);
      if (!isFailure(result)) kWrongInsertion();
      return result;
    }
  }
}

BDAErr BulkExecuterVoiceCommonInsL::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = VoiceCommonInsL::targetsIn(getVoice());
  return convertBlock<VoiceCommonInsL::kLayout>(kInsL, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonCtrl::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto convertAs = [&]<const auto & kLayout>(const Targets<kLayout>& targets) {
    return convertBlock<kLayout>(kCtrl, targets, data, length, isReceive);
  };
  Voice* const voice = getVoice();
  if (getBlockType() == kNormalVoiceCtrl) return convertAs(VoiceCommonCtrl::targetsIn<VoiceCommonCtrl::kNormal>(voice));
  return convertAs(VoiceCommonCtrl::targetsIn<VoiceCommonCtrl::kDrum>(voice));
}

Voice::ElementNode* BulkExecuterElementBase::getElement() const {
  Voice::ElementNode* const element = from(getVoice(), &Voice::getElement, getBlockIndex());
  return from(element, &Voice::ElementNode::getExceptionalParam) == nullptr ? nullptr : element;
}

BDAErr BulkExecuterNormalVoiceElmOsc::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice::ElementNode* const element = getElement();
  const auto targets = NormalVoiceElmOsc::targetsIn(element);
  return convertElement<NormalVoiceElmOsc::kLayout>(kElmOsc, element, targets, data, length, isReceive);
}

BDAErr BulkExecuterNormalVoiceElmFilter::execBulkBlock(std::uint8_t* data, std::uint32_t length,
                                                       std::uint8_t isReceive) {
  Voice::ElementNode* const element = getElement();
  const auto targets = NormalVoiceElmFilter::targetsIn(element);
  return convertElement<NormalVoiceElmFilter::kLayout>(kElmFilter, element, targets, data, length, isReceive);
}

BDAErr BulkExecuterDrumVoiceKey::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = DrumVoiceKey::targetsIn(getVoice(), getBlockIndex());
  return convertBlock<DrumVoiceKey::kLayout>(kKey, targets, data, length, isReceive);
}

}  // namespace BDA
