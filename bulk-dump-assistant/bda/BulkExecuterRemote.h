#pragma once

#include "BulkExecuter.h"
#include "bda/platform/CMA/ParameterModels.h"

namespace BDA {

// 27 bytes: names and common settings of a remote setting.
class BulkExecuterRemoteCommon : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 26 bytes: the controller of the block index.
class BulkExecuterRemoteController : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
