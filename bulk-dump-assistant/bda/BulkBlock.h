#pragma once

#include <cstdint>
#include <vector>

#include "Address.h"
#include "BDAErr.h"

namespace BDA {

class BulkExecuter;

// One address of the instrument, and the executer that converts what travels under it. Many blocks share an executer,
// so a block tells it before every message which block it serves.
class BulkBlock : public Address {
 public:
  // `executer` is not owned and outlives the block; null: both message operations fail.
  BulkBlock(std::uint32_t blockType, std::uint8_t index, BulkExecuter* executer, std::uint8_t hi, std::uint8_t mid,
            std::uint8_t lo)
      : Address(hi, mid, lo), executer_(executer), blockType_(blockType), index_(index) {}

  // Receives `length` data bytes of a bulk dump.
  virtual BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length);
  // Replaces `messages` with the block's complete bulk dump messages. What a failure leaves there is not to be sent.
  virtual BDAErr getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages);
  virtual std::uint32_t getBlockType() const { return blockType_; }
  // Element, part, key, zone, controller or bank; 0 for single blocks.
  virtual std::uint8_t getBlockIndex() const { return index_; }
  // 0 without an executer.
  virtual std::uint32_t getDataLength() const;

 private:
  BulkExecuter* executer_;
  std::uint32_t blockType_;
  std::uint8_t index_;
};

inline constexpr std::uint32_t kDummyBlockType = 125;

// Stands for blocks that are swallowed: a request gives nothing to send, a dump is refused without a word.
class DummyBulkBlock : public BulkBlock {
 public:
  DummyBulkBlock() : BulkBlock(kDummyBlockType, 0, nullptr, 0, 0, 0) {}

  BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) override;
  BDAErr getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages) override;
};

}  // namespace BDA
