#include "BulkExecuterRemote.h"

#include "LayoutTargets.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterRemote.cpp";

constexpr BlockFailures kCommon =
    blockFailures(kFile, "BDA::BulkExecuterRemoteCommon::execBulkBlock",
                  "error : wrong data length. (Remote Common): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kController =
    blockFailures(kFile, "BDA::BulkExecuterRemoteController::execBulkBlock",
                  "error : wrong data length. (Remote Controller): Correct = [%02x], Data = [%02x]\n");

// The model that the header chose: the live one when it loaded nothing, or the temporary one.
Remote* chosenRemote(bool loadSkipped, CMA::JobTools& jobTools, CMA::TemporaryCoreModel* temporaryModel) {
  return loadSkipped ? jobTools.getRemoteModel() : jobTools.getTemporaryRemoteModel(temporaryModel);
}

}  // namespace

BDAErr BulkExecuterRemoteCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Remote* const remote = chosenRemote(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  return convertBlock<RemoteCommon::kLayout>(kCommon, RemoteCommon::targetsIn(remote), data, length, isReceive);
}

BDAErr BulkExecuterRemoteController::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Remote* const remote = chosenRemote(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  const auto targets = RemoteController::targetsIn(remote, getBlockIndex());
  return convertBlock<RemoteController::kLayout>(kController, targets, data, length, isReceive);
}

}  // namespace BDA
