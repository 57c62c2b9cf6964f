#pragma once

#include "BulkExecuter.h"
#include "bda/platform/CMA/ParameterModels.h"

namespace BDA {

// The blocks of multis; performances share most of them.
class BulkExecuterMultiBase : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;

 protected:
  // The models that the header chose: the live ones when it loaded nothing, or the temporary ones. May be null.
  CMA::MultiParameterModel* getMulti() const;
  CMA::ArpeggioParameterModel* getArpeggio() const;
};

// 80 bytes: common settings, and which parts go through the insertion effects.
class BulkExecuterMultiCommon : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 14 bytes, in a performance 13: the arpeggio's common settings. The low 7 bits of the last parameter do not travel
// with a performance.
class BulkExecuterMultiCommonArp : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 20 bytes: the master EQ.
class BulkExecuterMultiCommonMeq : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 38 bytes: the master effect.
class BulkExecuterMultiCommonMef : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 36 bytes: insertion effect A or B, by the block type.
class BulkExecuterMultiCommonInsAB : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 62 bytes: the part of the block index. A voice selection that the editor cannot correct is left out.
class BulkExecuterMultiPart : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;

 protected:
  CMA::MultiParameterModel::PartNode* getPart() const;
};

// 72 bytes: its arpeggio.
class BulkExecuterMultiPartArp : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 8 bytes: the audio input part of the block index.
class BulkExecuterMultiPartAd : public BulkExecuterMultiBase {
 public:
  using BulkExecuterMultiBase::BulkExecuterMultiBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
