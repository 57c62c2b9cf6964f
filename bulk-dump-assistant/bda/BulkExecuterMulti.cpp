#include "BulkExecuterMulti.h"

#include "EditorNumbers.h"
#include "ModelNodes.h"
#include "MultiLayouts.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterMulti.cpp";

constexpr BlockFailures kCommon = blockFailures(kFile, "BDA::BulkExecuterMultiCommon::execBulkBlock",
                                                "Wrong data length. (Multi Common): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kArp =
    blockFailures(kFile, "BDA::BulkExecuterMultiCommonArp::execBulkBlock",
                  "Wrong data length. (Multi Common Arp): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kMeq =
    blockFailures(kFile, "BDA::BulkExecuterMultiCommonMeq::execBulkBlock",
                  "Wrong data length. (Multi Common MEQ): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kMef =
    blockFailures(kFile, "BDA::BulkExecuterMultiCommonMef::execBulkBlock",
                  "Wrong data length. (Multi Common MEF): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kInsAB =
    blockFailures(kFile, "BDA::BulkExecuterMultiCommonInsAB::execBulkBlock",
                  "Wrong data length. (normal Voice Ins AB): Correct = [%02x], Data = [%02x]\n");
constexpr Failure<> kWrongInsertion{{kFile, Line::ofThisSource(), "BDA::BulkExecuterMultiCommonInsAB::execBulkBlock"},
                                    Refusal::wrongBlockType,
                                    "Multi AD Part Ins Block Error !\n"};
constexpr BlockFailures kPart = blockFailures(kFile, "BDA::BulkExecuterMultiPart::execBulkBlock",
                                              "Wrong data length. (Multi Part): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kPartArp =
    blockFailures(kFile, "BDA::BulkExecuterMultiPartArp::execBulkBlock",
                  "Wrong data length. (Multi Part Arp): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kPartAd =
    blockFailures(kFile, "BDA::BulkExecuterMultiPartAd::execBulkBlock",
                  "Wrong data length. (Multi Part AD): Correct = [%02x], Data = [%02x]\n");

enum BlockType : std::uint32_t {
  kMultiInsertionA = 85,
  kMultiInsertionB = 86,
  kPerformanceInsertionA = 97,
  kPerformanceInsertionB = 98,
};

using Multi = CMA::MultiParameterModel;
using Arpeggio = CMA::ArpeggioParameterModel;

void receiveVoiceSelection(Multi::PartNode& part, CMA::ParameterGroup& bankProgram, std::uint32_t number,
                           const std::uint8_t* data) {
  std::uint8_t bankSelectMsb = data[1];
  std::uint8_t bankSelectLsb = data[2];
  std::uint8_t prgNum = data[3];
  if (!part.correctBankSelAndProgramNum(number, bankSelectMsb, bankSelectLsb, prgNum, true)) return;
  bankProgram.set(&bankSelectMsb, 0, kSetFlag);
  bankProgram.set(&bankSelectLsb, 1, kSetFlag);
  bankProgram.set(&prgNum, 2, kSetFlag);
}

}  // namespace

Multi* BulkExecuterMultiBase::getMulti() const {
  return getLoadSkipped() == 1 ? getJobTools().getMultiModel()
                               : getJobTools().getTemporaryMultiModel(getTemporaryModel());
}

Arpeggio* BulkExecuterMultiBase::getArpeggio() const {
  return getLoadSkipped() == 1 ? getJobTools().getArpeggioModel()
                               : getJobTools().getTemporaryArpeggioModel(getTemporaryModel());
}

BDAErr BulkExecuterMultiCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  Targets<MultiCommon::kLayout> targets{};
  targets.groups[MultiCommon::common] = from(multi, &Multi::getCommon);
  targets.groups[MultiCommon::adPart0] = from(from(multi, &Multi::getAdPart, 0U), &Multi::AdPartNode::getParams);
  for (std::uint32_t i = 0; i < MultiCommon::kParts; ++i)
    targets.groups[MultiCommon::part0 + i] = from(from(multi, &Multi::getPart, i), &Multi::PartNode::getMain);
  const BDAErr result = checkBlock<MultiCommon::kLayout>(kCommon, targets, data, length);
  if (isFailure(result)) return result;
  constexpr std::size_t kBeforeSwitches = MultiCommon::kBeforeSwitches.size();
  convertFirst<MultiCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  if (isReceive == 1) multi->insertionSwitchAllOff();
  convertRest<MultiCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterMultiCommonArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  CMA::ParameterGroup* const common = from(getArpeggio(), &Arpeggio::getCommon);
  if (getDataLength() < MultiCommonArp::kMulti.length)
    return convertBlock<MultiCommonArp::kPerformance>(kArp, {{common}}, data, length, isReceive);
  return convertBlock<MultiCommonArp::kMulti>(kArp, {{common}}, data, length, isReceive);
}

BDAErr BulkExecuterMultiCommonMeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  return convertBlock<kEq>(kMeq, {{from(getMulti(), &Multi::getMasterEq)}}, data, length, isReceive);
}

BDAErr BulkExecuterMultiCommonMef::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  const Targets<kMasterEffect> targets{
      {from(multi, &Multi::getMasterEffect), from(multi, &Multi::getMasterEffectSettings)}};
  return convertBlock<kMasterEffect>(kMef, targets, data, length, isReceive);
}

// The order of its tests: model, block type, length.
BDAErr BulkExecuterMultiCommonInsAB::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  if (multi == nullptr) {
    kInsAB.noModel();
    return BDA_ERR;
  }
  switch (getBlockType()) {
    case kMultiInsertionA:
    case kPerformanceInsertionA:
      return convertBlock<kInsEffect>(kInsAB, {{multi->getInsertionA()}}, data, length, isReceive);
    case kMultiInsertionB:
    case kPerformanceInsertionB:
      return convertBlock<kInsEffect>(kInsAB, {{multi->getInsertionB()}}, data, length, isReceive);
    default:
      kWrongInsertion();
      return BDA_ERR;
  }
}

Multi::PartNode* BulkExecuterMultiPart::getPart() const { return from(getMulti(), &Multi::getPart, getBlockIndex()); }

BDAErr BulkExecuterMultiPart::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi::PartNode* const part = getPart();
  const Targets<MultiPart::kLayout> targets{{from(part, &Multi::PartNode::getBankProgram),
                                             from(part, &Multi::PartNode::getMain),
                                             from(part, &Multi::PartNode::getExtra)}};
  const BDAErr result = checkBlock<MultiPart::kLayout>(kPart, targets, data, length);
  if (isFailure(result)) return result;
  if (isReceive == 1) receiveVoiceSelection(*part, *targets.groups[MultiPart::bankProgram], getBlockIndex(), data);
  convert<MultiPart::kLayout>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterMultiPartArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Arpeggio::PartNode* const part = from(getArpeggio(), &Arpeggio::getPart, getBlockIndex());
  const Targets<MultiPartArp::kLayout> targets{
      {from(part, &Arpeggio::PartNode::getParams), from(part, &Arpeggio::PartNode::getSix)}};
  return convertBlock<MultiPartArp::kLayout>(kPartArp, targets, data, length, isReceive);
}

BDAErr BulkExecuterMultiPartAd::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi::AdPartNode* const part = from(getMulti(), &Multi::getAdPart, getBlockIndex());
  return convertBlock<kAdPart>(kPartAd, {{from(part, &Multi::AdPartNode::getParams)}}, data, length, isReceive);
}

}  // namespace BDA
