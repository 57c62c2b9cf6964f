#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/CMA/MessageModelInterface.h"
#include "bda/platform/CMA/VoiceBanks.h"
#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"

namespace CMA {

ParameterGroup::~ParameterGroup() = default;
VoiceParameterModel::ElementNode::ExceptionalParam8::~ExceptionalParam8() = default;
VoiceParameterModel::ElementNode::~ElementNode() = default;
VoiceParameterModel::KeyNode::~KeyNode() = default;
VoiceParameterModel::~VoiceParameterModel() = default;
MultiParameterModel::PartNode::~PartNode() = default;
MultiParameterModel::AdPartNode::~AdPartNode() = default;
MultiParameterModel::~MultiParameterModel() = default;
ArpeggioParameterModel::PartNode::~PartNode() = default;
ArpeggioParameterModel::~ArpeggioParameterModel() = default;
MasterParameterModel::ZoneNode::~ZoneNode() = default;
MasterParameterModel::~MasterParameterModel() = default;
RemoteParameterModel::ControllerNode::~ControllerNode() = default;
RemoteParameterModel::~RemoteParameterModel() = default;
SystemParameterModel::AdPartNode::~AdPartNode() = default;
SystemParameterModel::QuickSetupNode::~QuickSetupNode() = default;
SystemParameterModel::~SystemParameterModel() = default;
AdditionalParameterModel::~AdditionalParameterModel() = default;
TemporaryCoreModel::~TemporaryCoreModel() = default;
JobTools::~JobTools() = default;

std::uint32_t JobTools::getScreenImage(std::vector<std::uint8_t>& bytes) {
  bytes.clear();
  return 0;
}

JobReceiver::~JobReceiver() = default;

unsigned long JobReceiver::execOther(EvtSrv::MemoryHolder* /*argument*/, EvtSrv::MemoryHolder* /*answer*/,
                                     unsigned char /*event*/) {
  return JOB::Result_UnknownError;
}

JobBulkBase::JobBulkBase(JobTools* jobTools) : jobTools_(jobTools) {}
JobBulkBase::~JobBulkBase() = default;

unsigned long JobBulkBase::execEvent(EvtSrv::MemoryHolder* /*argument*/, EvtSrv::MemoryHolder* /*answer*/) {
  return sendBulkRequest();
}

JobNormalVoiceBulkBase::~JobNormalVoiceBulkBase() = default;
JobDrumVoiceBulkBase::~JobDrumVoiceBulkBase() = default;
JobPerformanceBulkBase::~JobPerformanceBulkBase() = default;
JobMixBulkBase::~JobMixBulkBase() = default;
JobMasterBulkBase::~JobMasterBulkBase() = default;

MessageModelInterface::MessageModelInterface(EvtSrv::EventPortManager* manager, const char* modelName,
                                             unsigned char channel)
    : port_(manager == nullptr ? nullptr : manager->openPort(modelName, channel)) {}
MessageModelInterface::~MessageModelInterface() = default;

void MessageModelInterface::setId(std::uint16_t id) {
  if (port_ != nullptr) port_->post(id);
}

const BankSelect voiceBankSelTable[16] = {
    {0x3F, 0x00}, {0x3F, 0x01}, {0x3F, 0x02}, {0x3F, 0x03}, {0x3F, 0x04}, {0x3F, 0x05}, {0x3F, 0x06}, {0x3F, 0x07},
    {0x3F, 0x08}, {0x3F, 0x09}, {0x3F, 0x0A}, {0x3F, 0x20}, {0x3F, 0x28}, {0x00, 0x00}, {0x7F, 0x00}, {0x3F, 0x3C},
};

}  // namespace CMA
