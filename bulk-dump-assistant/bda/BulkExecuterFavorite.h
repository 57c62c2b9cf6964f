#pragma once

#include "BulkExecuter.h"
#include "bda/platform/ContSrv/ContSrv.h"

namespace BDA {

// 71 mm 00: the favourite flags of one bank's voices, one byte each. They belong to the slots of the contents store,
// whether a content is stored there or not.
class BulkExecuterFavorite : public BulkExecuter {
 public:
  // `work` is the front end's; null: nothing succeeds. The block's flags are those of the contents from
  // `firstNumber` on, as many as it has data bytes; only their first is compared with `endNumber`, the number after the
  // bank's last.
  BulkExecuterFavorite(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                       CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState,
                       std::uint32_t dataLength, ContSrv::Work* work, ContSrv::_ContType contType,
                       std::uint32_t firstNumber, std::uint32_t endNumber);

  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;

  std::uint32_t getFirstNumber() const { return firstNumber_; }
  std::uint32_t getEndNumber() const { return endNumber_; }

 private:
  BDAErr execBulkBlockForBulkDump(const std::uint8_t* data, std::uint32_t length);
  BDAErr execBulkBlockForBulkReq(std::uint8_t* data, std::uint32_t length);

  ContSrv::Work* work_;
  ContSrv::_ContType contType_;
  std::uint32_t firstNumber_;
  std::uint32_t endNumber_;
};

}  // namespace BDA
