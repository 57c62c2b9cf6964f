#include <gtest/gtest.h>

#include "AddressIndex.h"
#include "InstrumentMap.h"

namespace BDA {
namespace {

// Every address of the three 7-bit bytes, and the high bytes that no message should have.
TEST(AddressIndex, GivesWhatAWalkOverTheListGives) {
  std::size_t found = 0;
  for (unsigned hi = 0; hi < 0x100; ++hi)
    for (unsigned mid = 0; mid < 0x80; ++mid)
      for (unsigned lo = 0; lo < 0x80; ++lo) {
        const BlockPlace place = kAddressIndex.find(hi, mid, lo);
        const int position = InstrumentMap::walk(hi, mid, lo);
        ASSERT_EQ(place.list == kListCount ? -1 : int(place.position), position) << hi << ' ' << mid << ' ' << lo;
        if (position < 0) continue;
        ASSERT_EQ(place.list, InstrumentMap::listOfHighByte(hi)) << hi << ' ' << mid << ' ' << lo;
        ++found;
      }
  EXPECT_EQ(found, 8330u);
}

}  // namespace
}  // namespace BDA
