#pragma once

#include "BulkExecuter.h"
#include "bda/platform/CMA/ParameterModels.h"

namespace BDA {

// 32 bytes: name and common settings of a master.
class BulkExecuterMasterCommon : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 16 bytes: the zone of the block index.
class BulkExecuterMasterZone : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
