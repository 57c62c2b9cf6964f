#include "BulkBlock.h"

#include "BulkExecuter.h"
#include "Failure.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkBlock.cpp";
constexpr const char* kNoExecuter = "BulkExecuter is NULL !!!\n";
constexpr Failure<> kCannotReceive{
    {kFile, Line::ofThisSource(), "BDA::BulkBlock::setBulkDumpMessage"}, Refusal::noExecuter, kNoExecuter};
constexpr Failure<> kCannotDump{
    {kFile, Line::ofThisSource(), "BDA::BulkBlock::getBulkDumpMessage"}, Refusal::noExecuter, kNoExecuter};

}  // namespace

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
