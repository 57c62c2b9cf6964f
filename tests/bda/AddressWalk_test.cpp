// The whole address space against the plain list walk.

#include <gtest/gtest.h>

#include "AddressIndex.h"
#include "InstrumentMap.h"

namespace BDA {
namespace {

class AddressWalk : public testing::TestWithParam<unsigned> {};

TEST_P(AddressWalk, GivesWhatTheIndexGives) {
  const unsigned hi = GetParam();
  for (unsigned mid = 0; mid < 0x80; ++mid)
    for (unsigned lo = 0; lo < 0x80; ++lo) {
      const BlockPlace place = kAddressIndex.find(hi, mid, lo);
      const int position = InstrumentMap::walk(hi, mid, lo);
      ASSERT_EQ(place.list == kListCount ? -1 : int(place.position), position) << hi << ' ' << mid << ' ' << lo;
      if (position >= 0) {
        ASSERT_EQ(place.list, InstrumentMap::listOfHighByte(hi));
      }
    }
}
INSTANTIATE_TEST_SUITE_P(EveryHighByte, AddressWalk, testing::Range(0U, 256U));

}  // namespace
}  // namespace BDA
