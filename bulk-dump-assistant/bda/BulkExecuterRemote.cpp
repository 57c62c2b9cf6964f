#include "BulkExecuterRemote.h"

#include "MasterRemoteLayouts.h"
#include "ModelNodes.h"
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

using Remote = CMA::RemoteParameterModel;

// The model that the header chose: the live one when it loaded nothing, or the temporary one.
Remote* chosenRemote(bool loadSkipped, CMA::JobTools& jobTools, CMA::TemporaryCoreModel* temporaryModel) {
  return loadSkipped ? jobTools.getRemoteModel() : jobTools.getTemporaryRemoteModel(temporaryModel);
}

}  // namespace

BDAErr BulkExecuterRemoteCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  Remote* const remote = chosenRemote(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  const Targets<RemoteCommon::kLayout> targets{{from(remote, &Remote::getCommon)},
                                               {from(remote, &Remote::getName1), from(remote, &Remote::getName2)}};
  return convertBlock<RemoteCommon::kLayout>(kCommon, targets, data, length, isReceive);
}

BDAErr BulkExecuterRemoteController::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  using Controller = Remote::ControllerNode;
  Remote* const remote = chosenRemote(getLoadSkipped() == 1, getJobTools(), getTemporaryModel());
  Controller* const controller = from(remote, &Remote::getController, getBlockIndex());
  const Targets<RemoteController::kLayout> targets{
      {from(controller, &Controller::getParams)},
      {from(controller, &Controller::getName1), from(controller, &Controller::getName2)}};
  return convertBlock<RemoteController::kLayout>(kController, targets, data, length, isReceive);
}

}  // namespace BDA
