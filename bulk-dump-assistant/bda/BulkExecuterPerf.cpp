#include "BulkExecuterPerf.h"

#include "LayoutTargets.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterPerf.cpp";

// Both name the multi common block.
constexpr const char* kWrongLength = "Wrong data length. (Multi Common): Correct = [%02x], Data = [%02x]\n";
constexpr BlockFailures kCommon = blockFailures(kFile, "BDA::BulkExecuterPerfCommon::execBulkBlock", kWrongLength);
constexpr BlockFailures kPart = blockFailures(kFile, "BDA::BulkExecuterPerfPart::execBulkBlock", kWrongLength);

}  // namespace

BDAErr BulkExecuterPerfCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Multi* const multi = getMulti();
  const auto targets = PerfCommon::targetsIn(multi);
  const BDAErr result = checkBlock<PerfCommon::kLayout>(kCommon, targets, data, length);
  if (isFailure(result)) return result;
  constexpr std::size_t kBeforeSwitches = PerfCommon::kBeforeSwitches.size();
  convertFirst<PerfCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  if (isReceive == 1) multi->insertionSwitchAllOff();
  convertRest<PerfCommon::kLayout, kBeforeSwitches>(targets, data, isReceive);
  return result;
}

BDAErr BulkExecuterPerfPart::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = MultiPart::targetsIn<PerfPart::kLayout>(getPart());
  const BDAErr result = checkBlock<PerfPart::kLayout>(kPart, targets, data, length);
  if (isFailure(result)) return result;
  convertFirst<PerfPart::kLayout, PerfPart::kOwnRows.size()>(targets, data, isReceive);
  BulkExecuterMultiPart::execBulkBlock(data, length, isReceive);
  return result;
}

}  // namespace BDA
