#pragma once

#include <cstdint>
#include <vector>

#include "BDAErr.h"

namespace BDA {

class BulkExecuter;

// The three bytes that say what a bulk dump carries, or what a bulk request asks for.
class Address {
 public:
  Address(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) : hi_(hi), mid_(mid), lo_(lo) {}
  Address(const Address&) = default;
  Address& operator=(const Address&) = default;
  virtual ~Address() = default;

  virtual std::uint8_t getHi() const { return hi_; }
  virtual std::uint8_t getMid() const { return mid_; }
  virtual std::uint8_t getLo() const { return lo_; }
  virtual Address getAddress() const { return {hi_, mid_, lo_}; }
  virtual void setAddress(const Address& address) { setAddress(address.hi_, address.mid_, address.lo_); }
  virtual void setAddress(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo);
  virtual bool isEqual(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) const {
    return hi_ == hi && mid_ == mid && lo_ == lo;
  }
  virtual bool isEqual(const Address& address) const { return isEqual(address.hi_, address.mid_, address.lo_); }
  virtual bool isEqualHiLo(std::uint8_t hi, std::uint8_t lo) const { return hi_ == hi && lo_ == lo; }
  virtual bool isEqualMidLo(std::uint8_t mid, std::uint8_t lo) const { return mid_ == mid && lo_ == lo; }

 private:
  std::uint8_t hi_;
  std::uint8_t mid_;
  std::uint8_t lo_;
};

// The header that opened the dump in progress: its block type (1 to 17, 0 when none is open), its address and, for the
// voice of a multi part (type 9) alone, the kind of its bank.
class HeaderAddress : public Address {
 public:
  HeaderAddress(std::uint32_t blockType, std::uint8_t hi, std::uint8_t mid, std::uint8_t lo)
      : Address(hi, mid, lo), blockType_(blockType), bank_(0) {}

  virtual void setHeader(std::uint32_t blockType, std::uint8_t hi, std::uint8_t mid, std::uint8_t lo,
                         std::uint32_t bank);
  virtual std::uint32_t getBank() const { return bank_; }

  std::uint32_t getBlockType() const { return blockType_; }

 private:
  std::uint32_t blockType_;
  std::uint32_t bank_;
};

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
