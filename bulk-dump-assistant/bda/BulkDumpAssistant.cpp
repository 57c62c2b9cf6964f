#include "bda/BulkDumpAssistant.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "AddressRows.h"
#include "BDAErr.h"
#include "BulkExecuterCreator.h"
#include "BulkMessage.h"
#include "BulkTable.h"
#include "EditorNumbers.h"
#include "Failure.h"
#include "GiveBack.h"
#include "JobBulkBDA.h"
#include "Receiver.h"
#include "Reception.h"
#include "SystemSettings.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/CMA/MessageModelInterface.h"
#include "bda/platform/ContSrv/ContSrv.h"
#include "bda/platform/EvtSrv/EventPort.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkDumpAssistant.cpp";
constexpr const char* kCheckMessage = "BDA::BulkDumpAssistant::checkBulkDumpMessage";
constexpr const char* kReceive = "BDA::BulkDumpAssistant::receiveBulkDump";
constexpr const char* kCheckAddress = "BDA::BulkDumpAssistant::checkAddress";

constexpr Failure<int> kMixingVoiceNotRemoved{{kFile, 24, "bulkMixVoiceDeletion"},
                                              Refusal::mixingVoiceNotRemoved,
                                              "error: failed to remove mixing voices ! [ ContSrvResult = %d ]\n"};
constexpr Failure<> kDeviceOff{
    {kFile, 237, kCheckMessage}, Refusal::deviceNumberOff, "Device Number is set to [OFF]... so can't send SysExc.\n"};
constexpr Failure<int, int> kWrongDevice{
    {kFile, 245, kCheckMessage},
    Refusal::wrongDeviceNumber,
    "Wrong Device Number... so can't send SysExc. Utility DevNum=[%d], Message Dev Num=[%d]\n"};
constexpr Failure<> kDumpSwitchOff{
    {kFile, 262, kCheckMessage}, Refusal::receiveSwitchOff, "Receive Bulk Sw is OFF !!!\n"};
// The sum that was computed stands as the received one, the message's own as the correct one; the editor relies on it.
constexpr Failure<unsigned, unsigned, unsigned, unsigned, unsigned> kWrongCheckSum{
    {kFile, 267, kCheckMessage},
    Refusal::wrongCheckSum,
    "Check Sum Error!: Address=[%02x,%02x,%02x], Received Check Sum=[ 0x%02x ], Correct Check Sum=[ 0x%02x ]\n"};
constexpr Failure<> kRequestSwitchOff{
    {kFile, 287, kCheckMessage}, Refusal::receiveSwitchOff, "Receive Bulk Sw is OFF !!!\n"};
constexpr Failure<> kDumpWhileLoading{
    {kFile, 365, kReceive}, Refusal::loadingOrSaving, "error : can't receive bulk while loding/saving file !\n"};
constexpr Failure<> kRequestWhileLoading{
    {kFile, 484, kReceive}, Refusal::loadingOrSaving, "error : can't receive bulk while loading/saving file !\n"};
constexpr Failure<> kReceivingError{
    {kFile, 573, kReceive}, Refusal::malformedMessage, "ERROR: Bulk Dump Msg receiving error!\n"};
constexpr Failure<> kUnknownType{
    {kFile, 580, kReceive}, Refusal::malformedMessage, "ERROR: Bulk Dump Msg receiving error!\n"};
constexpr Failure<> kModeError{{kFile, 623, kCheckAddress}, Refusal::wrongMode, "error : mode error...!\n"};
constexpr Failure<> kVoiceTypeError{
    {kFile, 630, kCheckAddress}, Refusal::wrongVoiceTypeInMode, "error : voice type error...!\n"};
constexpr Failure<> kEditCompareError{
    {kFile, 637, kCheckAddress}, Refusal::editCompare, "error : edit/compare error...!\n"};
constexpr Failure<> kSampleAuditionError{
    {kFile, 643, kCheckAddress}, Refusal::sampleAudition, "error : sample audition error...!\n"};
constexpr Failure<> kMixingVoiceFull{
    {kFile, 654, kCheckAddress}, Refusal::mixingVoicesFull, "error : mixing voice full !\n"};
constexpr Failure<int> kUnknownCheckResult{{kFile, 660, kCheckAddress},
                                           Refusal::unknownModeResult,
                                           "error : unknown jobTools check result ! [ JOB::Result = %d ]\n"};

// What the mode check's results mean, in the order in which they are compared.
struct ModeCheck {
  CMA::JOB::Result result;
  const Failure<>* failure;
  MessageId message;
  BDAErr answer;
};
constexpr std::array kModeChecks{
    ModeCheck{CMA::JOB::Result_Success, nullptr, kNoMessage, BDA_OK},
    ModeCheck{CMA::JOB::Result_CurrentStateError, &kModeError, kModeErrorMessage, BDA_ERR},
    ModeCheck{CMA::JOB::Result_VoiceTypeError, &kVoiceTypeError, kModeErrorMessage, BDA_ERR},
    ModeCheck{CMA::JOB::Result_EditCompareModeError, &kEditCompareError, kNoMessage, BDA_ERR},
    ModeCheck{CMA::JOB::Result_SampleAuditionError, &kSampleAuditionError, kNoMessage, BDA_ERR},
    ModeCheck{CMA::JOB::Result_UnknownError, nullptr, kNoMessage, BDA_INFO_SWALLOWED},  // no failure, by contract
    ModeCheck{CMA::JOB::Result_MixingVoiceFullError, &kMixingVoiceFull, kMixingVoiceFullMessage, BDA_ERR},
};

constexpr std::array<std::uint8_t, 7> kEditBufferMids{0x0F, 0x2F, 0x30, 0x4F, 0x5F, 0x6F, 0x7F};

constexpr UtilSrv::Thread::_PolicyType kReceivePolicy = 2;
constexpr UtilSrv::Thread::_PriorityType kReceivePriority = 1;
constexpr unsigned char kFileIsBusy = 1;

// The two dumps that answer a request for an empty mixing voice; device, voice and checksum are filled in.
using EmptyDump = std::array<std::uint8_t, kDumpFrame>;
constexpr std::size_t kDeviceAt = 2;
constexpr std::size_t kVoiceAt = 9;
constexpr std::size_t kCheckSumAt = 10;
constexpr EmptyDump kEmptyMixingVoiceHeader{0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, kHeaderHi, kMixingVoiceMid,
                                            0xFF, 0xFF, 0xF7};
constexpr EmptyDump kEmptyMixingVoiceFooter{0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, kFooterHi, kMixingVoiceMid,
                                            0xFF, 0xFF, 0xF7};

// Null when storage runs out, in the object itself or in what it is made of.
template <typename Object, typename... Arguments>
Object* make(Arguments... arguments) {
  try {
    return new (std::nothrow) Object(arguments...);
  } catch (...) {
    return nullptr;
  }
}

Address addressAt(const unsigned char* bytes) { return {bytes[0], bytes[1], bytes[2]}; }

bool isLoadingOrSaving(ContSrv::Work* work) { return work != nullptr && work->getLoadSaveFlag() == kFileIsBusy; }

BulkDumpOutcome outcomeOfStoring(const Reception& reception) {
  return reception.handedOver > 0 ? BulkDumpOutcome::handedToStore : BulkDumpOutcome::nothingToDo;
}

// Of a dump that its block has taken.
BulkDumpOutcome outcomeOfDump(BDAErr result, const Reception& reception) {
  if (isOfKind(result, BDA_INFO_FOOTER | BDA_INFO_FILE_DUMP_CONTROL)) return outcomeOfStoring(reception);
  if (isOfKind(result, BDA_INFO_SYSTEM | BDA_INFO_EDITOR)) return BulkDumpOutcome::completed;
  return BulkDumpOutcome::accepted;
}

// What is longer than 32 bits can tell must not seem to be short.
std::uint32_t lengthIn32Bits(unsigned long length) {
  return std::uint32_t(std::min<std::uint64_t>(length, std::numeric_limits<std::uint32_t>::max()));
}

// A footer that marks its mixing voice as empty removes the voice. True when that was done: the message is then used
// up, without a mode check, and while a file is loaded or saved as well.
bool bulkMixVoiceDeletion(ContSrv::Work* work, const Address& address) {
  if (address.getHi() != kFooterHi || address.getMid() != kMixingVoiceMid || (address.getLo() & kEmptyVoice) == 0)
    return false;
  if (work == nullptr) return false;
  const ContSrv::_ContResult result = work->removeMixingVoice(ContSrv::ContType_Multi, 0, address.getLo() & 0x0FU);
  if (result == ContSrv::ContRes_Success) Notes::handedOver();
  if (result == ContSrv::ContRes_Success || result == ContSrv::ContRes_DoNothing) return true;
  kMixingVoiceNotRemoved(int(result));
  return false;
}

// Answers a request for an empty mixing voice with a header and a footer that mark it so. True when that was done.
// `bridge` is the assistant's own field: the editor may unregister its bridge from inside a send.
bool sendEmptyMixingVoice(CMA::JobTools& jobTools, ContSrv::Work* work, BulkDumpBridge* const& bridge,
                          const Address& address, DevicePortNum port) {
  if (bridge == nullptr) return false;
  if (address.getHi() != kHeaderHi || address.getMid() != kMixingVoiceMid) return false;
  if (work == nullptr) return false;
  std::string name;
  if (work->getMixingVoiceName(ContSrv::ContType_Multi, 0, address.getLo(), name) != ContSrv::ContRes_EmptyContent)
    return false;
  unsigned char device = 0;
  if (readDeviceNumber(jobTools, &device) == CMA::DeviceNumber_Off) return false;
  const auto filledIn = [&](EmptyDump dump) {
    dump[kDeviceAt] = device;
    dump[kVoiceAt] = address.getLo() | kEmptyVoice;
    dump[kCheckSumAt] = Utility::calcCheckSum(dump.data(), dump.size());
    return dump;
  };
  for (const EmptyDump& dump : {filledIn(kEmptyMixingVoiceHeader), filledIn(kEmptyMixingVoiceFooter)})
    if (bridge != nullptr)
      bridge->sendSysEx(dump.data(), std::uint32_t{kDumpFrame}, port);
    else
      Notes::refusal(BulkDumpRefusal::noBridge);
  return true;
}

}  // namespace

BulkDumpAssistant::BulkDumpAssistant(EvtSrv::EventPortManager* eventPortManager,
                                     std::vector<CMA::JobReceiver*>* jobReceivers,
                                     std::vector<CMA::JobReceiver*>* bulkJobs, CMA::JobTools* jobTools,
                                     ContSrv::Work* work, bool silent)
    : dumpReceiver_(nullptr),
      requestReceiver_(nullptr),
      bulkTable_(nullptr),
      executerCreator_(nullptr),
      jobReceivers_(jobReceivers),
      jobTools_(jobTools),
      messageModel_(eventPortManager, CMA::BDA::ModelName, true, 0),  // opened below
      bridge_(nullptr),
      temporaryModel_(nullptr),
      normalVoiceJob_(nullptr),
      drumVoiceJob_(nullptr),
      performanceJob_(nullptr),
      mixJob_(nullptr),
      masterJob_(nullptr),
      work_(work),
      messageShown_(kNoMessage),
      savedPolicy_(kReceivePolicy),
      savedPriority_(0),
      boosted_(false),
      observer_(nullptr) {
  const Notes nobody(nullptr);
  const std::size_t jobsBefore = bulkJobs == nullptr ? 0 : bulkJobs->size();
  const bool stands = attempt([&] {
    if (!silent) messageModel_.open(eventPortManager, CMA::BDA::ModelName, 0);
    temporaryModel_ = jobTools_->createTemporaryModel();
    normalVoiceJob_ = make<JobNormalVoiceBulkBDA>(this, jobTools_, &messageModel_);
    drumVoiceJob_ = make<JobDrumVoiceBulkBDA>(this, jobTools_, &messageModel_);
    performanceJob_ = make<JobPerformanceBulkBDA>(this, jobTools_, &messageModel_);
    mixJob_ = make<JobMixBulkBDA>(this, jobTools_, &messageModel_);
    masterJob_ = make<JobMasterBulkBDA>(this, jobTools_, &messageModel_);
    // When storage runs out the editor's vector is as it was, and the assistant works without its jobs.
    if (bulkJobs != nullptr)
      attempt([&] {
        bulkJobs->insert(bulkJobs->end(), {normalVoiceJob_, drumVoiceJob_, performanceJob_, mixJob_, masterJob_});
      });
    // What this throws comes from the editor: an executer that cannot be allocated is merely missing.
    executerCreator_ =
        new (std::nothrow) BulkExecuterCreator(eventPortManager, jobReceivers_, jobTools_, temporaryModel_, work_);
    bulkTable_ = make<BulkTable>(executerCreator_, &messageModel_, jobTools_);
    BulkDumpBridge* const noBridge = nullptr;
    dumpReceiver_ = make<BulkDumpReceiver>(bulkTable_, jobTools_, noBridge, &messageModel_);
    requestReceiver_ = make<BulkRequestReceiver>(bulkTable_, jobTools_, noBridge, work_);
  });
  if (stands) return;
  work_ = nullptr;  // so that empty mixing voices, too, are neither removed nor told of
  if (bulkJobs != nullptr) bulkJobs->resize(jobsBefore);
  destroyParts();
}

BulkDumpAssistant::BulkDumpAssistant(const BulkDumpAssistant& other) = default;
BulkDumpAssistant& BulkDumpAssistant::operator=(const BulkDumpAssistant& other) = default;

// The members die after this, in reverse order: the thread, then the message model.
BulkDumpAssistant::~BulkDumpAssistant() { destroyParts(); }

void BulkDumpAssistant::destroyParts() noexcept {
  const Notes nobody(nullptr);
  const auto destroy = [](auto*& part) { delete std::exchange(part, nullptr); };
  destroy(normalVoiceJob_);
  destroy(drumVoiceJob_);
  destroy(performanceJob_);
  destroy(mixJob_);
  destroy(masterJob_);
  destroy(requestReceiver_);
  destroy(dumpReceiver_);
  destroy(bulkTable_);
  destroy(executerCreator_);
  if (CMA::TemporaryCoreModel* const model = std::exchange(temporaryModel_, nullptr))
    attempt([&] { jobTools_->destroyTemporaryModel(model); });
}

void BulkDumpAssistant::registerBDABridge(BulkDumpBridge* bridge) {
  bridge_ = bridge;
  if (dumpReceiver_ != nullptr) dumpReceiver_->setBridge(bridge);
  if (requestReceiver_ != nullptr) requestReceiver_->setBridge(bridge);
}

void BulkDumpAssistant::registerObserver(BulkDumpObserver* observer) { observer_ = observer; }

void BulkDumpAssistant::bdaLoop() {}

BulkMsgType BulkDumpAssistant::checkBulkDumpMessage(const unsigned char* message, unsigned long length) {
  const Notes nobody(nullptr);
  BulkMsgType type = BulkMsg_ReceiveError;
  attempt([&] { type = classify(message, length); });
  return type;
}

BulkMsgType BulkDumpAssistant::classify(const unsigned char* message, unsigned long length) {
  if (message == nullptr || length == 0 || message[0] != kStartOfExclusive) return BulkMsg_NotSysEx;
  if (length < kRequestLength || message[1] != kMakerId) return BulkMsg_OtherModel;
  const bool isModel = message[3] == kModelId1 && message[4] == kModelId2;
  if (!isModel && message[4] != kOtherModelId2) return BulkMsg_OtherModel;

  unsigned char utilDeviceNum = 0;
  const CMA::DeviceNumber setting = readDeviceNumber(*jobTools_, &utilDeviceNum);
  const unsigned char device = message[2] & kDeviceMask;
  if (setting == CMA::DeviceNumber_Off) {
    kDeviceOff();
    return BulkMsg_DeviceNumberOff;
  }
  if (setting != CMA::DeviceNumber_All && device != utilDeviceNum) {
    kWrongDevice(utilDeviceNum, device);
    return BulkMsg_WrongDeviceNumber;
  }

  switch (message[2] & kTypeMask) {
    case kTypeDump: {
      if (length < kDumpFrame) return BulkMsg_ReceiveError;
      if (!isReceiveSwitchOn(*jobTools_)) {
        kDumpSwitchOff();
        return BulkMsg_ReceiveSwOff;
      }
      const bool isCorrect = Utility::isCorrectCheckSum(message, length);
      if (length != byteCountOf(message) + kDumpFrame) Notes::refusal(BulkDumpRefusal::wrongByteCount);
      if (isCorrect) return BulkMsg_BulkDump;
      const unsigned char computed = Utility::calcCheckSum(message, length);
      // By the low part of the byte count alone, which may lead out of the message.
      const std::size_t receivedAt = message[kByteCountAt + 1] + kDataAt;
      const unsigned received = receivedAt < length ? message[receivedAt] : 0U;
      const unsigned char* const address = message + kDumpAddressAt;
      kWrongCheckSum(address[0], address[1], address[2], computed, received);
      return BulkMsg_CheckSumError;
    }
    case kType1:
      return BulkMsg_Type1;
    case kType3:
      return BulkMsg_Type3;
    case kType4:
      return BulkMsg_Type4;
    case kTypeRequest:
      if (length != kRequestLength) return BulkMsg_ReceiveError;
      if (!isReceiveSwitchOn(*jobTools_)) {
        kRequestSwitchOff();
        return BulkMsg_ReceiveSwOff;
      }
      return BulkMsg_BulkRequest;
    default:
      return BulkMsg_ReceiveError;
  }
}

BulkMsgType BulkDumpAssistant::receiveBulkDump(const unsigned char* message, unsigned long length, DevicePortNum port) {
  Reception reception;
  receive(message, length, port, reception);
  return reception.kind;
}

void BulkDumpAssistant::receive(const unsigned char* message, unsigned long length, DevicePortNum port,
                                Reception& reception) noexcept {
  {
    const Notes notes(&reception);
    if (!attempt([&] { handle(message, length, port, reception); })) {
      reception.hasThrown = true;
      if (messageShown_ != kNoMessage && !attempt([&] { show(kErrorMessage); })) messageShown_ = kNoMessage;
      init();
    }
  }
  if (observer_ == nullptr) return;
  if (isFailure(reception.result) && reception.refusal == BulkDumpRefusal::none)
    reception.refusal = BulkDumpRefusal::blockFailed;
  if (reception.refusal != BulkDumpRefusal::none) reception.outcome = BulkDumpOutcome::refused;
  const Notes nobody(nullptr);
  attempt([&] { observer_->bulkDumpHandled(reception); });
}

void BulkDumpAssistant::handle(const unsigned char* message, unsigned long length, DevicePortNum port,
                               Reception& reception) {
  reception.kind = classify(message, length);
  // A kind of message that the instrument sends on its own; not worth a word to those it is not for.
  const auto isUnasked = [message] {
    return (message[2] & kTypeMask) == kType3 && message[5] == 0x70 && message[6] == 0x00 && message[7] == 0x06;
  };
  switch (reception.kind) {
    case BulkMsg_BulkDump:
      return receiveDump(message, length, port, reception);
    case BulkMsg_BulkRequest:
      return answerRequest(message, length, port, reception);
    case BulkMsg_Type1:
    case BulkMsg_Type3:
    case BulkMsg_Type4:
      return;
    case BulkMsg_OtherModel:
    case BulkMsg_NotSysEx:
      reception.outcome = BulkDumpOutcome::notOurs;
      return;
    case BulkMsg_CheckSumError:  // the open header stays: the sender may repeat the block
      reception.setAddress(addressAt(message + kDumpAddressAt));
      return show(kCheckSumErrorMessage);
    case BulkMsg_DeviceNumberOff:
    case BulkMsg_WrongDeviceNumber:
      if (isUnasked()) {
        reception.refusal = BulkDumpRefusal::none;
        return;
      }
      show(reception.kind == BulkMsg_DeviceNumberOff ? kDeviceOffMessage : kWrongDeviceMessage);
      return init();
    case BulkMsg_ReceiveSwOff:
      show(kReceiveSwitchOffMessage);
      return init();
    case BulkMsg_ReceiveError:
      kReceivingError();
      show(kErrorMessage);
      return init();
    default:
      kUnknownType();
      show(kErrorMessage);
      return init();
  }
}

// A block of the system, of the editor or a write trigger completes a unit too: in the midst of a voice it closes the
// voice's header, and the rest of the voice is refused. So does a request, and what it loads overwrites what was
// received of the voice: there is one temporary model. Senders keep units apart.
void BulkDumpAssistant::receiveDump(const unsigned char* message, unsigned long length, DevicePortNum port,
                                    Reception& reception) {
  const Address address = addressAt(message + kDumpAddressAt);
  reception.setAddress(address);
  if (bulkMixVoiceDeletion(work_, address)) {
    reception.isTaken = true;
    reception.outcome = outcomeOfStoring(reception);
    return;
  }

  const BDAErr admitted = admit(address.getHi(), address.getMid(), address.getLo());
  if (isFailure(admitted)) return init();
  if (isOfKind(admitted, BDA_INFO_SWALLOWED)) return;
  if (isLoadingOrSaving(work_)) {
    kDumpWhileLoading();
    return init();
  }

  const bool stores = (address.getHi() == kFooterHi && !isEditBufferFooter(address)) || address.getHi() == kTriggerHi;
  show(stores ? kStoring : kReceiving);
  if (stores) raiseReceivePriority();
  BDAErr result = BDA_ERR;
  const bool isWhole = attempt([&] {
    jobTools_->suspendOutputMidi();
    GiveBack output([this] { jobTools_->resumeOutputMidi(); });
    if (dumpReceiver_ != nullptr && bulkTable_ != nullptr)
      result = dumpReceiver_->receiveBulkDump(message, lengthIn32Bits(length), port);
    else
      Notes::refusal(BulkDumpRefusal::notConstructed);
    output.now();
  });
  restoreReceivePriority();
  if (!isWhole) result = BDA_ERR;
  reception.hasThrown = !isWhole;
  reception.result = result;
  reception.isTaken = !isFailure(result);

  constexpr BDAErr kUnitCompleted = BDA_INFO_EDITOR | BDA_INFO_SYSTEM | BDA_INFO_FOOTER | BDA_INFO_FILE_DUMP_CONTROL;
  reception.outcome = outcomeOfDump(result, reception);
  if (isFailure(result) && isOfKind(result, BDA_ERR_NOT_FOUND)) {
    close();
  } else if (isFailure(result)) {
    show(isOfKind(result, BDA_ERR_MIXING_VOICE_FULL) ? kMixingVoiceFullMessage : kErrorMessage);
    init();
  } else if (isOfKind(result, kUnitCompleted)) {
    close();
    init();
  }
  if (messageShown_ == kStoring) close();

  if ((port == DevicePort_Main || port == DevicePort_Thru) && bridge_ != nullptr)
    bridge_->sendSysEx(message, lengthIn32Bits(length), DevicePort_Echo);
}

void BulkDumpAssistant::answerRequest(const unsigned char* message, unsigned long length, DevicePortNum port,
                                      Reception& reception) {
  const Address address = addressAt(message + kRequestAddressAt);
  reception.setAddress(address);
  if (sendEmptyMixingVoice(*jobTools_, work_, bridge_, address, port)) {
    reception.outcome = BulkDumpOutcome::answered;
    return;
  }

  if (isFailure(admit(address.getHi(), address.getMid(), address.getLo()))) return init();
  if (port == DevicePort_Thru) return;
  if (isLoadingOrSaving(work_)) {
    kRequestWhileLoading();
    return init();
  }

  show(kAnswering);
  BDAErr result = BDA_ERR;
  reception.hasThrown = !attempt([&] {
    if (requestReceiver_ != nullptr && bulkTable_ != nullptr)
      result = requestReceiver_->receiveBulkRequest(message, std::uint32_t(length), port);
    else
      Notes::refusal(BulkDumpRefusal::notConstructed);
  });
  reception.result = result;
  reception.outcome = BulkDumpOutcome::answered;
  if (isFailure(result)) {
    show(kErrorMessage);
  } else {
    if (isOfKind(result, BDA_INFO_SWALLOWED)) {
      reception.kind = BulkMsg_RequestSkipped;
      reception.outcome = BulkDumpOutcome::nothingToSend;
    }
    close();
  }
  init();
}

unsigned long BulkDumpAssistant::checkAddress(const Address& address) {
  const Notes nobody(nullptr);
  BDAErr admitted = BDA_ERR;
  attempt([&] { admitted = admit(address.getHi(), address.getMid(), address.getLo()); });
  return admitted;
}

std::uint32_t BulkDumpAssistant::admit(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) {
  const unsigned long result = jobTools_->checkModeForReceivedSysExBulk(temporaryModel_, hi, mid, lo);
  for (const ModeCheck& check : kModeChecks) {
    if (result != check.result) continue;
    if (check.failure != nullptr) (*check.failure)();
    if (check.message != kNoMessage) show(check.message);
    return check.answer;
  }
  kUnknownCheckResult(int(result));
  show(kErrorMessage);
  return BDA_ERR;
}

bool BulkDumpAssistant::isEditBufferFooter(const Address& address) {
  if (address.getHi() != kFooterHi) return false;
  for (const std::uint8_t mid : kEditBufferMids)
    if (address.getMid() == mid) return true;
  return false;
}

void BulkDumpAssistant::showMsg(std::uint16_t id) {
  const Notes nobody(nullptr);
  attempt([&] { show(id); });
}

void BulkDumpAssistant::closeMsg() {
  const Notes nobody(nullptr);
  attempt([&] { close(); });
}

void BulkDumpAssistant::show(std::uint16_t id) {
  close();
  messageShown_ = id;  // from the first step on: a throw on the way is then told in its place
  if (id == kStoring) {
    if (CMA::AdditionalParameterModel* const additional = jobTools_->getAdditionalModel()) {
      constexpr std::uint8_t kCleared = 0;
      if (CMA::ParameterGroup* const params = additional->getParams()) params->set(&kCleared, 0, kSetFlag);
      if (EvtSrv::EventPort* const eventPort = additional->getEventPort()) eventPort->flush(0);
    }
  }
  messageModel_.setId(id);
  messageModel_.flush();
}

void BulkDumpAssistant::close() {
  // Each of these has a message of its own, the next number, that takes it off the screen; the others stay.
  if (messageShown_ == kStoring || messageShown_ == kReceiving || messageShown_ == kAnswering)
    messageModel_.setId(std::uint16_t(messageShown_ + 1));
  messageShown_ = kNoMessage;
}

void BulkDumpAssistant::init() {
  if (bulkTable_ != nullptr) bulkTable_->resetHeader();
}

void BulkDumpAssistant::raiseReceivePriority() {
  if (boosted_) return;
  receiveThread_.attach();
  savedPolicy_ = receiveThread_.getPolicy();
  savedPriority_ = receiveThread_.getPriority();
  receiveThread_.change(kReceivePolicy, kReceivePriority, 0);
  boosted_ = true;
}

void BulkDumpAssistant::restoreReceivePriority() {
  if (!boosted_) return;
  receiveThread_.change(savedPolicy_, savedPriority_, 0);
  receiveThread_.detach();
  boosted_ = false;
}

}  // namespace BDA
