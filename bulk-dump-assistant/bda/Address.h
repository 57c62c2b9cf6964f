#pragma once

#include <cstdint>

namespace BDA {

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
  virtual void setAddress(const Address& address) { Address::setAddress(address.hi_, address.mid_, address.lo_); }
  virtual void setAddress(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) {
    hi_ = hi;
    mid_ = mid;
    lo_ = lo;
  }
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
                         std::uint32_t bank) {
    Address::setAddress(hi, mid, lo);
    blockType_ = blockType;
    bank_ = bank;
  }
  virtual std::uint32_t getBank() const { return bank_; }

  std::uint32_t getBlockType() const { return blockType_; }

 private:
  std::uint32_t blockType_;
  std::uint32_t bank_;
};

}  // namespace BDA
