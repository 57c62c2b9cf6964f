#include "BulkExecuterMulti.h"

#include "EditorNumbers.h"
#include "LayoutTargets.h"
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
  const auto targets = MultiCommon::targetsIn(multi);
  const BDAErr result = checkBlock<MultiCommon::kLayout>(kCommon, targets, data, length);
  if (isFailure(result)) return result;
  constexpr std::size_t kBeforeSwitches = MultiCommon::kBeforeSwitches.size();
  convertFirst<MultiCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  if (isReceive == 1) multi->insertionSwitchAllOff();
  convertRest<MultiCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterMultiCommonArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto convertAs = [&]<const auto & kLayout>(const Targets<kLayout>& targets) {
    return convertBlock<kLayout>(kArp, targets, data, length, isReceive);
  };
  Arpeggio* const arpeggio = getArpeggio();
  if (getDataLength() < MultiCommonArp::kMulti.length)
    return convertAs(MultiCommonArp::targetsIn<MultiCommonArp::kPerformance>(arpeggio));
  return convertAs(MultiCommonArp::targetsIn<MultiCommonArp::kMulti>(arpeggio));
}

BDAErr BulkExecuterMultiCommonMeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  return convertBlock<kEq>(kMeq, MultiEq::targetsIn(getMulti()), data, length, isReceive);
}

BDAErr BulkExecuterMultiCommonMef::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  return convertBlock<kMasterEffect>(kMef, MultiEffect::targetsIn(getMulti()), data, length, isReceive);
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
      return convertBlock<kInsEffect>(kInsAB, MultiInsertion::targetsOfA(multi), data, length, isReceive);
    case kMultiInsertionB:
    case kPerformanceInsertionB:
      return convertBlock<kInsEffect>(kInsAB, MultiInsertion::targetsOfB(multi), data, length, isReceive);
    default:
      kWrongInsertion();
      return BDA_ERR;
  }
}

Multi::PartNode* BulkExecuterMultiPart::getPart() const { return from(getMulti(), &Multi::getPart, getBlockIndex()); }

BDAErr BulkExecuterMultiPart::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi::PartNode* const part = getPart();
  const auto targets = MultiPart::targetsIn<MultiPart::kLayout>(part);
  const BDAErr result = checkBlock<MultiPart::kLayout>(kPart, targets, data, length);
  if (isFailure(result)) return result;
  if (isReceive == 1) receiveVoiceSelection(*part, *targets.groups[MultiPart::bankProgram], getBlockIndex(), data);
  convert<MultiPart::kLayout>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterMultiPartArp::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = MultiPartArp::targetsIn(getArpeggio(), getBlockIndex());
  return convertBlock<MultiPartArp::kLayout>(kPartArp, targets, data, length, isReceive);
}

BDAErr BulkExecuterMultiPartAd::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = MultiAdPart::targetsIn(getMulti(), getBlockIndex());
  return convertBlock<kAdPart>(kPartAd, targets, data, length, isReceive);
}

}  // namespace BDA
