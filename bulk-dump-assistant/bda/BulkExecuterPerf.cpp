#include "BulkExecuterPerf.h"

#include "ModelNodes.h"
#include "MultiLayouts.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterPerf.cpp";

// Both name the multi common block.
constexpr const char* kWrongLength = "Wrong data length. (Multi Common): Correct = [%02x], Data = [%02x]\n";
constexpr BlockFailures kCommon = blockFailures(kFile, "BDA::BulkExecuterPerfCommon::execBulkBlock", kWrongLength);
constexpr BlockFailures kPart = blockFailures(kFile, "BDA::BulkExecuterPerfPart::execBulkBlock", kWrongLength);

using Multi = CMA::MultiParameterModel;

}  // namespace

BDAErr BulkExecuterPerfCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  Targets<PerfCommon::kLayout> targets{};
  targets.names[PerfCommon::name] = from(multi, &Multi::getName);
  targets.groups[PerfCommon::common] = from(multi, &Multi::getCommon);
  targets.groups[PerfCommon::adPart0] = from(from(multi, &Multi::getAdPart, 0U), &Multi::AdPartNode::getParams);
  for (std::uint32_t i = 0; i < PerfCommon::kParts; ++i)
    targets.groups[PerfCommon::part0 + i] = from(from(multi, &Multi::getPart, i), &Multi::PartNode::getMain);
  const BDAErr result = checkBlock<PerfCommon::kLayout>(kCommon, targets, data, length);
  if (isFailure(result)) return result;
  constexpr std::size_t kBeforeSwitches = PerfCommon::kBeforeSwitches.size();
  convertFirst<PerfCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  if (isReceive == 1) multi->insertionSwitchAllOff();
  convertRest<PerfCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterPerfPart::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi::PartNode* const part = getPart();
  const Targets<PerfPart::kLayout> targets{{from(part, &Multi::PartNode::getBankProgram),
                                            from(part, &Multi::PartNode::getMain),
                                            from(part, &Multi::PartNode::getExtra)}};
  const BDAErr result = checkBlock<PerfPart::kLayout>(kPart, targets, data, length);
  if (isFailure(result)) return result;
  convertFirst<PerfPart::kLayout, PerfPart::kOwnRows.size()>(targets, data, isReceive);
  BulkExecuterMultiPart::execBulkBlock(data, length, isReceive);
  return result;
}

}  // namespace BDA
