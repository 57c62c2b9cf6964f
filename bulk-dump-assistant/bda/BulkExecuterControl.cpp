#include "BulkExecuterControl.h"

#include "AddressRows.h"
#include "BulkMessage.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/StmcSrv/State.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterControl.cpp";
constexpr const char* kHeader = "BDA::BulkExecuterHeader::execBulkBlock";
constexpr const char* kFooter = "BDA::BulkExecuterFooter::execBulkBlock";
constexpr Failure<> kWrongVoiceType{
    {kFile, Line::ofThisSource(), kHeader}, Refusal::unknownVoiceType, "Voice Type Error !!!\n"};
constexpr Failure<> kNoSuchHeader{
    {kFile, Line::ofThisSource(), kHeader}, Refusal::unknownHeader, "error : model init failure!\n"};
constexpr Failure<int> kCannotLoad{{kFile, Line::ofThisSource(), kHeader},
                                   Refusal::notLoaded,
                                   "error : jobTools->loadForReceivedSysExBulk()! [ ret = %d]\n"};
constexpr Failure<> kNotReceiving{
    {kFile, Line::ofThisSource(), kFooter}, Refusal::wrongDirection, "error : wrong bulk type!\n"};
constexpr Failure<int> kCannotStore{{kFile, Line::ofThisSource(), kFooter},
                                    Refusal::notStored,
                                    "error : jobTools->storeForReceivedSysExBulk()! [ret = %d]\n"};

constexpr std::uint32_t kMultiHeader = 11;

// What a header of a type stands for.
enum class Opens : std::uint8_t { nothing, normalVoice, drumVoice, partVoice, multi, master, remote };
struct HeaderType {
  Opens opens;
  bool isEditBuffer;  // dumped as it stands, without loading
};
constexpr std::array<HeaderType, 18> kHeaderTypes{{
    {Opens::nothing, false},
    {Opens::normalVoice, false},  // 1 preset
    {Opens::normalVoice, false},  // 2 GM
    {Opens::normalVoice, false},  // 3 user
    {Opens::normalVoice, true},   // 4 edit buffer
    {Opens::drumVoice, false},    // 5 preset
    {Opens::drumVoice, false},    // 6 user
    {Opens::drumVoice, false},    // 7 GM
    {Opens::drumVoice, true},     // 8 edit buffer
    {Opens::partVoice, true},     // 9 voice of a multi part
    {Opens::normalVoice, false},  // 10 mixing voice
    {Opens::multi, true},         // 11 multi edit buffer
    {Opens::multi, false},        // 12 performance
    {Opens::multi, true},         // 13 performance edit buffer
    {Opens::master, false},       // 14
    {Opens::master, true},        // 15 edit buffer
    {Opens::remote, false},       // 16
    {Opens::remote, true},        // 17 edit buffer
}};

constexpr HeaderType headerTypeOf(std::uint32_t blockType) {
  return blockType < kHeaderTypes.size() ? kHeaderTypes[blockType] : kHeaderTypes[0];
}

enum VoiceType : std::uint8_t { kNormalVoice = 0, kDrumVoice = 1 };

// Neither when there is no such voice.
std::uint8_t typeOfLiveVoice(CMA::JobTools& jobTools, std::uint16_t number) {
  std::uint8_t type = 0xFF;
  CMA::VoiceParameterModel* const voice = jobTools.getVoiceModel(number);
  if (CMA::ParameterGroup* const group = voice == nullptr ? nullptr : voice->getType()) {
    type = 0;
    group->get(&type, 0);
  }
  return type;
}

// A multi that is being received plays at the tempo of the one it replaces until its own arrives.
void copyLiveTempo(CMA::JobTools& jobTools, CMA::TemporaryCoreModel* temporaryModel) {
  CMA::ArpeggioParameterModel* const live = jobTools.getArpeggioModel();
  CMA::ArpeggioParameterModel* const temporary = jobTools.getTemporaryArpeggioModel(temporaryModel);
  if (live == nullptr || temporary == nullptr) return;
  CMA::ParameterGroup* const from = live->getTempo();
  CMA::ParameterGroup* const to = temporary->getTempo();
  if (from == nullptr || to == nullptr) return;
  std::uint16_t tempo = 0;
  from->get(&tempo, 0);
  to->set(&tempo, 0, 0);
}

}  // namespace

BDAErr BulkExecuterHeader::execBulkBlock(std::uint8_t* /*data*/, std::uint32_t /*length*/, std::uint8_t isReceive) {
  setCurrentNumber(getBlockType() == kPartVoiceHeader ? getHeaderNumber() : std::uint8_t{0});
  if (isReceive == 1) return openTemporaryModels();
  if (isReceive == 0) return loadContent();
  return BDA_OK;
}

// A failure leaves open what was opened before it.
BDAErr BulkExecuterHeader::openTemporaryModels() {
  CMA::JobTools& jobTools = getJobTools();
  CMA::TemporaryCoreModel* const model = getTemporaryModel();
  const auto openVoice = [&](std::uint16_t number, bool isNormal, bool arpeggioOfVoice) {
    jobTools.initTemporaryVoiceModel(model, number, isNormal);
    jobTools.initTemporaryMultiModel(model, StmcSrv::StateTyp_Void);
    jobTools.initTemporaryArpeggioModel(model, arpeggioOfVoice, 0, true);
  };
  switch (headerTypeOf(getBlockType()).opens) {
    case Opens::normalVoice:
      openVoice(0, true, true);
      break;
    case Opens::drumVoice:
      openVoice(0, false, true);
      break;
    case Opens::partVoice: {
      const std::uint8_t type = typeOfLiveVoice(jobTools, getCurrentNumber());
      if (type != kNormalVoice && type != kDrumVoice) {
        kWrongVoiceType();
        return BDA_ERR;
      }
      openVoice(getCurrentNumber(), type == kNormalVoice, false);
      break;
    }
    case Opens::multi:
      jobTools.initTemporaryMultiModel(model, StmcSrv::StateTyp_Void);
      jobTools.initTemporaryArpeggioModel(model, false, 0, true);
      if (getBlockType() == kMultiHeader) copyLiveTempo(jobTools, model);
      break;
    case Opens::master:
      jobTools.initTemporaryMasterModel(model);
      break;
    case Opens::remote:
      jobTools.initTemporaryRemoteModel(model);
      break;
    case Opens::nothing:
      kNoSuchHeader();
      return BDA_ERR;
  }
  setLoadSkipped(0);
  return BDA_OK;
}

// There is one temporary model: a stored content that is asked for takes the place of what a dump in progress has
// filled so far, and the next header that arrives the place of what was loaded. Senders keep units apart.
BDAErr BulkExecuterHeader::loadContent() {
  if (headerTypeOf(getBlockType()).isEditBuffer) {
    setLoadSkipped(1);
    return BDA_OK;
  }
  const unsigned long result =
      getJobTools().loadForReceivedSysExBulk(getTemporaryModel(), getAddress().getMid(), getAddress().getLo());
  if (result != CMA::JOB::Result_Success) {
    kCannotLoad(int(result));
    return BDA_ERR;
  }
  setLoadSkipped(0);
  return BDA_OK;
}

BDAErr BulkExecuterHeader::getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) {
  message.clear();
  message.reserve(kDumpFrame);
  if (const BDAErr result = execBulkBlock(nullptr, 0, 0); isFailure(result)) return result;
  if (const BDAErr result = writeBulkDumpHead(message); isFailure(result)) return result;
  writeBulkDumpBody(message, getAddress(), nullptr, 0);
  return BDA_OK;
}

BDAErr BulkExecuterFooter::execBulkBlock(std::uint8_t* /*data*/, std::uint32_t /*length*/, std::uint8_t isReceive) {
  BDAErr result = BDA_INFO_FOOTER;
  if (isReceive != 1) {
    kNotReceiving();  // and stores all the same, by contract
    result = BDA_ERR;
  }
  const unsigned long stored =
      getJobTools().storeForReceivedSysExBulk(getTemporaryModel(), getAddress().getMid(), getAddress().getLo());
  if (stored != CMA::JOB::Result_Success) {
    kCannotStore(int(stored));
    return BDA_ERR;
  }
  Notes::handedOver();
  return result;
}

BDAErr BulkExecuterFooter::getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) {
  message.clear();
  message.reserve(kDumpFrame);
  const BDAErr result = BDA_INFO_FOOTER | writeBulkDumpHead(message);
  if (!isFailure(result)) writeBulkDumpBody(message, getAddress(), nullptr, 0);
  return result;
}

}  // namespace BDA
