#pragma once

#include "BulkExecuterMulti.h"

namespace BDA {

// 81 bytes: name and common settings of a performance, and which parts go through the insertion effects.
class BulkExecuterPerfCommon : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 63 bytes: a part of a performance, what a multi's part carries and two parameters more.
class BulkExecuterPerfPart : public BulkExecuterMultiPart {
 public:
  using BulkExecuterMultiPart::BulkExecuterMultiPart;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
