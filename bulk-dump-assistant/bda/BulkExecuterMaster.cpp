#include "BulkExecuterMaster.h"

#include "LayoutTargets.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterMaster.cpp";

constexpr BlockFailures kCommon =
    blockFailures(kFile, "BDA::BulkExecuterMasterCommon::execBulkBlock",
                  "error : invalid length. (Master Common): correct = [%02x], data = [%02x]\n");
constexpr BlockFailures kZone = blockFailures(
    kFile, "BDA::BulkExecuterMasterZone::execBulkBlock",
    "error : invalid length. (Master Zone): correct = [%02x], data = [%02x]\n", "error :model is NULL !\n");

// The model that the header chose: the live one when it loaded nothing, or the temporary one.
Master* chosenMaster(bool loadSkipped, CMA::JobTools& jobTools, CMA::TemporaryCoreModel* temporaryModel) {
  return loadSkipped ? jobTools.getMasterModel() : jobTools.getTemporaryMasterModel(temporaryModel);
}

}  // namespace

BDAErr BulkExecuterMasterCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Master* const master = chosenMaster(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  return convertBlock<MasterCommon::kLayout>(kCommon, MasterCommon::targetsIn(master), data, length, isReceive);
}

BDAErr BulkExecuterMasterZone::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Master* const master = chosenMaster(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  const auto targets = MasterZone::targetsIn(master, getBlockIndex());
  return convertBlock<MasterZone::kLayout>(kZone, targets, data, length, isReceive);
}

}  // namespace BDA
