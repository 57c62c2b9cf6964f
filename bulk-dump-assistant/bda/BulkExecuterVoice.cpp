#include "BulkExecuterVoice.h"

#include "ModelNodes.h"
#include "VoiceLayouts.h"
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

using Voice = CMA::VoiceParameterModel;
using Multi = CMA::MultiParameterModel;

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
  Multi::PartNode* const part0 = from(getMulti(), &Multi::getPart, 0U);
  const auto convertAs = [&]<const auto & kLayout>(const Targets<kLayout>& targets) {
    return convertBlock<kLayout>(kCommon, targets, data, length, isReceive);
  };
  const std::array<CMA::ParameterGroup*, 3> groups{from(voice, &Voice::getCommon), from(voice, &Voice::getCommonExtra),
                                                   from(part0, &Multi::PartNode::getExtra)};
  ModelSrv::ModelPart* const name = from(voice, &Voice::getName);
  switch (getBlockType()) {
    case kNormalVoiceCommon:
      return convertAs(Targets<VoiceCommon::kNormal>{groups, {name}});
    case kDrumVoiceCommon:
      return convertAs(Targets<VoiceCommon::kDrum>{groups, {name}});
    default:
      return convertAs(Targets<VoiceCommon::kEither>{groups, {name}});
  }
}

BDAErr BulkExecuterVoiceCommonArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice* const voice = getVoice();
  CMA::ParameterGroup* const entry =
      voice == nullptr ? nullptr : voice->getArpeggioEntry(voice->getArpeggioEntryIndex());
  const Targets<VoiceCommonArp::kLayout> targets{{from(voice, &Voice::getArpeggioCommon),
                                                  from(voice, &Voice::getArpeggioTempo), entry,
                                                  from(voice, &Voice::getArpeggioSix)}};
  return convertBlock<VoiceCommonArp::kLayout>(kArp, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonRev::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  const Targets<VoiceCommonRev::kLayout> targets{
      {from(multi, &Multi::getReverb), from(multi, &Multi::getReverbSettings)}};
  return convertBlock<VoiceCommonRev::kLayout>(kRev, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonCho::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  const Targets<VoiceCommonCho::kLayout> targets{
      {from(multi, &Multi::getChorus), from(multi, &Multi::getChorusSettings)}};
  return convertBlock<VoiceCommonCho::kLayout>(kCho, targets, data, length, isReceive);
}

// The order of its tests: model, length, block type; the last is no failure.
BDAErr BulkExecuterVoiceCommonInsAB::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice* const voice = getVoice();
  switch (getBlockType()) {
    case kNormalVoiceInsertionA:
    case kDrumVoiceInsertionA:
      return convertBlock<kInsEffect>(kInsAB, {{from(voice, &Voice::getInsertionA)}}, data, length, isReceive);
    case kNormalVoiceInsertionB:
    case kDrumVoiceInsertionB:
      return convertBlock<kInsEffect>(kInsAB, {{from(voice, &Voice::getInsertionB)}}, data, length, isReceive);
    default: {
      const Targets<kInsEffect> either{{from(voice, &Voice::getInsertionA)}};
      const BDAErr result = checkBlock<kInsEffect>(kInsAB, either, data, length);
      if (!isFailure(result)) kWrongInsertion();
      return result;
    }
  }
}

BDAErr BulkExecuterVoiceCommonInsL::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const Targets<VoiceCommonInsL::kLayout> targets{{from(getVoice(), &Voice::getInsertionL)}};
  return convertBlock<VoiceCommonInsL::kLayout>(kInsL, targets, data, length, isReceive);
}

BDAErr BulkExecuterVoiceCommonCtrl::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  CMA::ParameterGroup* const common = from(getVoice(), &Voice::getCommon);
  if (getBlockType() == kNormalVoiceCtrl)
    return convertBlock<VoiceCommonCtrl::kNormal>(kCtrl, {{common}}, data, length, isReceive);
  return convertBlock<VoiceCommonCtrl::kDrum>(kCtrl, {{common}}, data, length, isReceive);
}

Voice::ElementNode* BulkExecuterElementBase::getElement() const {
  Voice::ElementNode* const element = from(getVoice(), &Voice::getElement, getBlockIndex());
  return from(element, &Voice::ElementNode::getExceptionalParam) == nullptr ? nullptr : element;
}

BDAErr BulkExecuterNormalVoiceElmOsc::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice::ElementNode* const element = getElement();
  const Targets<NormalVoiceElmOsc::kLayout> targets{
      {from(element, &Voice::ElementNode::getParams), from(element, &Voice::ElementNode::getWave)}};
  return convertElement<NormalVoiceElmOsc::kLayout>(kElmOsc, element, targets, data, length, isReceive);
}

BDAErr BulkExecuterNormalVoiceElmFilter::execBulkBlock(std::uint8_t* data, std::uint32_t length,
                                                       std::uint8_t isReceive) {
  Voice::ElementNode* const element = getElement();
  const Targets<NormalVoiceElmFilter::kLayout> targets{{from(element, &Voice::ElementNode::getParams)}};
  return convertElement<NormalVoiceElmFilter::kLayout>(kElmFilter, element, targets, data, length, isReceive);
}

BDAErr BulkExecuterDrumVoiceKey::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Voice::KeyNode* const key = from(getVoice(), &Voice::getKey, getBlockIndex());
  const Targets<DrumVoiceKey::kLayout> targets{
      {from(key, &Voice::KeyNode::getParams), from(key, &Voice::KeyNode::getWave)}};
  return convertBlock<DrumVoiceKey::kLayout>(kKey, targets, data, length, isReceive);
}

}  // namespace BDA
