#include "Address.h"

namespace BDA {

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

}  // namespace BDA
