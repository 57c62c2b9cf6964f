#include "BulkExecuterCreator.h"

#include <new>

#include "BulkExecuterControl.h"
#include "BulkExecuterSystem.h"
#include "CMA/JobTools.h"

namespace BDA {
namespace {

struct CommonArguments {
  std::vector<CMA::JobReceiver*>* jobReceivers;
  CMA::JobTools* jobTools;
  CMA::TemporaryCoreModel* temporaryModel;
  ExecuterSharedState* sharedState;
};

using Make = BulkExecuter* (*)(const CommonArguments& common, std::uint32_t dataLength);

template <typename Executer>
BulkExecuter* make(const CommonArguments& common, std::uint32_t dataLength) {
  return new (std::nothrow)
      Executer(common.jobReceivers, common.jobTools, common.temporaryModel, common.sharedState, dataLength);
}

struct Executers {
  std::size_t first;
  std::size_t last;
  Make make;
};
constexpr std::array kExecuters{
    Executers{1, 1, make<BulkExecuterHeader>},          Executers{2, 2, make<BulkExecuterFooter>},
    Executers{48, 48, make<BulkExecuterSystemCommon>},  Executers{49, 49, make<BulkExecuterSystemAd>},
    Executers{50, 51, make<BulkExecuterSystemAdInsAB>}, Executers{52, 52, make<BulkExecuterSystemMeq>},
    Executers{53, 53, make<BulkExecuterSystemMef>},     Executers{54, 54, make<BulkExecuterSystemUserQuickSetup>},
    Executers{55, 55, make<BulkExecuterSystemSeq>},     Executers{56, 56, make<BulkExecuterSystemRemote>},
};

}  // namespace

BulkExecuterCreator::BulkExecuterCreator(EvtSrv::EventPortManager* /*eventPortManager*/,
                                         std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                                         CMA::TemporaryCoreModel* temporaryModel, ContSrv::Work* /*work*/)
    : executers_{} {
  const CommonArguments common{jobReceivers, jobTools, temporaryModel, &sharedState_};
  for (const Executers& row : kExecuters)
    for (std::size_t number = row.first; number <= row.last; ++number)
      executers_[number - 1] = row.make(common, kExecuterDataLength[number]);
}

BulkExecuterCreator::~BulkExecuterCreator() {
  for (BulkExecuter* executer : executers_) delete executer;
}

}  // namespace BDA
