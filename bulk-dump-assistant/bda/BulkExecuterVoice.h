#pragma once

#include "BulkExecuter.h"
#include "GiveBack.h"
#include "bda/platform/CMA/ParameterModels.h"

namespace BDA {

// The blocks of normal and drum voices. Some carry parameters that a single voice keeps in the multi model; multis and
// performances have the same reverb and chorus blocks.
class BulkExecuterVoiceBase : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;

 protected:
  // The models that the header chose: the temporary ones, or the live ones when it loaded nothing. May be null.
  CMA::VoiceParameterModel* getVoice() const;
  CMA::MultiParameterModel* getMulti() const;
};

// The blocks of one element: while one is converted the element's dependent parameters stand as they are.
class BulkExecuterElementBase : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;

 protected:
  // The element of the block index; null also when it has no parameters that could be left uncorrected.
  CMA::VoiceParameterModel::ElementNode* getElement() const;

  // `targets` are those of `element`, which may be null as they may.
  template <const auto& kLayout>
  BDAErr convertElement(const BlockFailures& failures, CMA::VoiceParameterModel::ElementNode* element,
                        const Targets<kLayout>& targets, std::uint8_t* data, std::uint32_t length,
                        std::uint8_t isReceive) const {
    const BDAErr result = checkBlock<kLayout>(failures, targets, data, length);
    if (isFailure(result)) return result;
    CMA::VoiceParameterModel::ElementNode::ExceptionalParam8& dependent = *element->getExceptionalParam();
    dependent.changeCorrectType(false);
    GiveBack correction([&] { dependent.changeCorrectType(true); });
    convert<kLayout>(targets, data, isReceive);
    correction.now();
    return result;
  }
};

// 80 bytes (normal voice), 72 (drum voice): name and common settings.
class BulkExecuterVoiceCommon : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 86 bytes: the arpeggio.
class BulkExecuterVoiceCommonArp : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 38 bytes: the reverb, also of multis and performances.
class BulkExecuterVoiceCommonRev : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 40 bytes: the chorus, also of multis and performances.
class BulkExecuterVoiceCommonCho : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 36 bytes: insertion effect A or B, by the block type. Any other type is logged and converts nothing.
class BulkExecuterVoiceCommonInsAB : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 68 bytes: insertion effect L.
class BulkExecuterVoiceCommonInsL : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 60 bytes (normal voice), 24 (drum voice): the controllers.
class BulkExecuterVoiceCommonCtrl : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 88 bytes: the oscillator of the element of the block index.
class BulkExecuterNormalVoiceElmOsc : public BulkExecuterElementBase {
 public:
  using BulkExecuterElementBase::BulkExecuterElementBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 74 bytes: its filter.
class BulkExecuterNormalVoiceElmFilter : public BulkExecuterElementBase {
 public:
  using BulkExecuterElementBase::BulkExecuterElementBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 46 bytes: the drum key of the block index.
class BulkExecuterDrumVoiceKey : public BulkExecuterVoiceBase {
 public:
  using BulkExecuterVoiceBase::BulkExecuterVoiceBase;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
