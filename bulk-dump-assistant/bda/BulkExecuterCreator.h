#pragma once

#include <array>
#include <memory>
#include <vector>

#include "BulkExecuter.h"
#include "ExecuterNumbers.h"

namespace ContSrv {
class Work;
}
namespace EvtSrv {
class EventPortManager;
}

namespace BDA {

// Makes every executer once, owns them for the life of the front end, and owns the state that they share.
class BulkExecuterCreator {
 public:
  // What is handed over is the front end's and outlives the creator. An executer that cannot be allocated stays null.
  // Lets through what the editor throws when it is asked for content numbers.
  BulkExecuterCreator(EvtSrv::EventPortManager* eventPortManager, std::vector<CMA::JobReceiver*>* jobReceivers,
                      CMA::JobTools* jobTools, CMA::TemporaryCoreModel* temporaryModel, ContSrv::Work* work);
  BulkExecuterCreator(const BulkExecuterCreator&) = delete;
  BulkExecuterCreator& operator=(const BulkExecuterCreator&) = delete;
  virtual ~BulkExecuterCreator();

  // Executer 1 to 77; null for any other number, and where there is none.
  BulkExecuter* getExecuter(std::size_t number) const {
    return number >= 1 && number <= kExecuterCount ? executers_[number - 1].get() : nullptr;
  }

 private:
  std::array<std::unique_ptr<BulkExecuter>, kExecuterCount> executers_;
  ExecuterSharedState sharedState_;
};

}  // namespace BDA
