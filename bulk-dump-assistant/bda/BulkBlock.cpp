#include "BulkBlock.h"

#include "BulkExecuter.h"
#include "Failure.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkBlock.cpp";
constexpr const char* kNoExecuter = "BulkExecuter is NULL !!!\n";
constexpr Failure<> kCannotReceive{{kFile, Line::ofThisSource(), "BDA::BulkBlock::setBulkDumpMessage"}, kNoExecuter};
constexpr Failure<> kCannotDump{{kFile, Line::ofThisSource(), "BDA::BulkBlock::getBulkDumpMessage"}, kNoExecuter};

}  // namespace

void Address::setAddress(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) {
  hi_ = hi;
  mid_ = mid;
  lo_ = lo;
}

void HeaderAddress::setHeader(std::uint32_t blockType, std::uint8_t hi, std::uint8_t mid, std::uint8_t lo,
                              std::uint32_t bank) {
  setAddress(hi, mid, lo);
  blockType_ = blockType;
  bank_ = bank;
}

BDAErr BulkBlock::setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) {
  if (executer_ == nullptr) {
    kCannotReceive();
    return BDA_ERR;
  }
  executer_->setBlockInfo(getAddress(), blockType_, index_);
  return executer_->setBulkDumpMessage(data, length);
}

BDAErr BulkBlock::getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages) {
  if (executer_ == nullptr) {
    kCannotDump();
    return BDA_ERR;
  }
  executer_->setBlockInfo(getAddress(), blockType_, index_);
  return executer_->getBulkDumpMessage(messages);
}

std::uint32_t BulkBlock::getDataLength() const { return executer_ == nullptr ? 0 : executer_->getDataLength(); }

BDAErr DummyBulkBlock::setBulkDumpMessage(const std::uint8_t* /*data*/, std::uint32_t /*length*/) { return BDA_ERR; }

BDAErr DummyBulkBlock::getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& /*messages*/) {
  return BDA_INFO_SWALLOWED;
}

}  // namespace BDA
