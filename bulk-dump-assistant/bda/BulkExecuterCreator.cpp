#include "BulkExecuterCreator.h"

#include <new>

#include "BulkExecuterControl.h"
#include "BulkExecuterEditor.h"
#include "BulkExecuterFavorite.h"
#include "BulkExecuterFileDump.h"
#include "BulkExecuterMaster.h"
#include "BulkExecuterMulti.h"
#include "BulkExecuterPerf.h"
#include "BulkExecuterRemote.h"
#include "BulkExecuterSystem.h"
#include "BulkExecuterVoice.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

struct Arguments {
  EvtSrv::EventPortManager* eventPortManager;
  std::vector<CMA::JobReceiver*>* jobReceivers;
  CMA::JobTools* jobTools;
  CMA::TemporaryCoreModel* temporaryModel;
  ContSrv::Work* work;
  ExecuterSharedState* sharedState;
};

using Make = BulkExecuter* (*)(const Arguments& arguments, std::uint32_t dataLength);

template <typename Executer>
BulkExecuter* make(const Arguments& arguments, std::uint32_t dataLength) {
  return new (std::nothrow)
      Executer(arguments.jobReceivers, arguments.jobTools, arguments.temporaryModel, arguments.sharedState, dataLength);
}

BulkExecuter* makeFileDump(const Arguments& arguments, std::uint32_t dataLength) {
  return new (std::nothrow)
      BulkExecuterFileDump(arguments.jobReceivers, arguments.jobTools, arguments.temporaryModel, arguments.sharedState,
                           dataLength, arguments.eventPortManager, arguments.work);
}

struct Executers {
  std::size_t first;
  std::size_t last;
  Make make;
};
constexpr std::array kExecuters{
    Executers{1, 1, make<BulkExecuterHeader>},
    Executers{2, 2, make<BulkExecuterFooter>},
    Executers{3, 3, make<BulkExecuterVoiceCommon>},  // normal voice
    Executers{4, 4, make<BulkExecuterVoiceCommonRev>},
    Executers{5, 5, make<BulkExecuterVoiceCommonCho>},
    Executers{6, 7, make<BulkExecuterVoiceCommonInsAB>},
    Executers{8, 8, make<BulkExecuterVoiceCommonInsL>},
    Executers{9, 9, make<BulkExecuterVoiceCommonCtrl>},
    Executers{10, 10, make<BulkExecuterVoiceCommonArp>},
    Executers{11, 11, make<BulkExecuterNormalVoiceElmOsc>},
    Executers{12, 12, make<BulkExecuterNormalVoiceElmFilter>},
    Executers{13, 13, make<BulkExecuterVoiceCommon>},  // drum voice
    Executers{14, 14, make<BulkExecuterVoiceCommonRev>},
    Executers{15, 15, make<BulkExecuterVoiceCommonCho>},
    Executers{16, 17, make<BulkExecuterVoiceCommonInsAB>},
    Executers{18, 18, make<BulkExecuterVoiceCommonInsL>},
    Executers{19, 19, make<BulkExecuterVoiceCommonCtrl>},
    Executers{20, 20, make<BulkExecuterVoiceCommonArp>},
    Executers{21, 21, make<BulkExecuterDrumVoiceKey>},
    Executers{22, 22, make<BulkExecuterMultiCommon>},  // multi
    Executers{23, 23, make<BulkExecuterVoiceCommonRev>},
    Executers{24, 24, make<BulkExecuterVoiceCommonCho>},
    Executers{25, 26, make<BulkExecuterMultiCommonInsAB>},
    Executers{27, 27, make<BulkExecuterMultiCommonMeq>},
    Executers{28, 28, make<BulkExecuterMultiCommonMef>},
    Executers{29, 29, make<BulkExecuterMultiCommonArp>},
    Executers{30, 30, make<BulkExecuterMultiPart>},
    Executers{31, 31, make<BulkExecuterMultiPartArp>},
    Executers{32, 32, make<BulkExecuterMultiPartAd>},
    Executers{33, 33, make<BulkExecuterPerfCommon>},  // performance
    Executers{34, 34, make<BulkExecuterVoiceCommonRev>},
    Executers{35, 35, make<BulkExecuterVoiceCommonCho>},
    Executers{36, 37, make<BulkExecuterMultiCommonInsAB>},
    Executers{38, 38, make<BulkExecuterMultiCommonMeq>},
    Executers{39, 39, make<BulkExecuterMultiCommonMef>},
    Executers{40, 40, make<BulkExecuterMultiCommonArp>},
    Executers{41, 41, make<BulkExecuterPerfPart>},
    Executers{42, 42, make<BulkExecuterMultiPartArp>},
    Executers{43, 43, make<BulkExecuterMultiPartAd>},
    Executers{44, 44, make<BulkExecuterMasterCommon>},
    Executers{45, 45, make<BulkExecuterMasterZone>},
    Executers{46, 46, make<BulkExecuterRemoteCommon>},
    Executers{47, 47, make<BulkExecuterRemoteController>},
    Executers{48, 48, make<BulkExecuterSystemCommon>},
    Executers{49, 49, make<BulkExecuterSystemAd>},
    Executers{50, 51, make<BulkExecuterSystemAdInsAB>},
    Executers{52, 52, make<BulkExecuterSystemMeq>},
    Executers{53, 53, make<BulkExecuterSystemMef>},
    Executers{54, 54, make<BulkExecuterSystemUserQuickSetup>},
    Executers{55, 55, make<BulkExecuterSystemSeq>},
    Executers{56, 56, make<BulkExecuterSystemRemote>},
    Executers{57, 57, make<BulkExecuterEditorWaveName>},  // editor
    Executers{58, 58, make<BulkExecuterEditorArpName>},
    Executers{59, 59, make<BulkExecuterEditorMultiName>},
    Executers{60, 60, makeFileDump},
    Executers{61, 61, make<BulkExecuterScreenCap>},
};

// The banks of voices whose favourite flags travel, in the order in which the editor is asked for their content
// numbers.
struct Bank {
  std::uint8_t code;
  std::uint8_t count;
};
constexpr std::array<Bank, 15> kFavoriteBanks{{
    {0, 128},
    {1, 128},
    {2, 128},
    {3, 128},
    {4, 128},
    {5, 128},
    {6, 128},
    {7, 128},
    {8, 128},
    {9, 128},
    {10, 128},
    {13, 128},
    {11, 64},
    {12, 32},
    {14, 1},
}};
constexpr std::size_t kFirstFavorite = 62;
// There is one favourite executer more than there are banks, after the user banks. No block has it, and its range is
// fixed.
constexpr std::size_t kFavoriteOfNoBank = 73;

struct NumberRange {
  std::uint32_t first;
  std::uint32_t end;
};
constexpr NumberRange kRangeOfNoBank{0xCCCCCCCC, 3};

}  // namespace

BulkExecuterCreator::BulkExecuterCreator(EvtSrv::EventPortManager* eventPortManager,
                                         std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                                         CMA::TemporaryCoreModel* temporaryModel, ContSrv::Work* work) {
  const Arguments arguments{eventPortManager, jobReceivers, jobTools, temporaryModel, work, &sharedState_};
  for (const Executers& row : kExecuters)
    for (std::size_t number = row.first; number <= row.last; ++number)
      executers_[number - 1].reset(row.make(arguments, kExecuterDataLength[number]));

  std::array<NumberRange, kFavoriteBanks.size()> ranges{};
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    ranges[i].first = jobTools->getVoiceContentNumber(kFavoriteBanks[i].code, 0);
    ranges[i].end = jobTools->getVoiceContentNumber(kFavoriteBanks[i].code, kFavoriteBanks[i].count);
  }
  const NumberRange* next = ranges.data();
  for (std::size_t number = kFirstFavorite; number <= kExecuterCount; ++number) {
    const NumberRange& range = number == kFavoriteOfNoBank ? kRangeOfNoBank : *next++;
    executers_[number - 1].reset(new (std::nothrow) BulkExecuterFavorite(
        jobReceivers, jobTools, temporaryModel, &sharedState_, kExecuterDataLength[number], work,
        ContSrv::ContType_Voice, range.first, range.end));
  }
}

BulkExecuterCreator::~BulkExecuterCreator() = default;

}  // namespace BDA
