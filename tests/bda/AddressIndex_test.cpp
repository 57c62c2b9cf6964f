#include "AddressIndex.h"

#include <gtest/gtest.h>

#include "InstrumentMap.h"

namespace BDA {
namespace {

bool known(unsigned hi, unsigned mid, unsigned lo) { return kAddressIndex.find(hi, mid, lo).list != kListCount; }

// Bytes of messages are not trusted to be 7-bit: all 2^24 addresses.
TEST(AddressIndex, AnswersEveryThreeBytesAsTheListsDo) {
  const std::vector<std::int16_t>& expected = InstrumentMap::positions();
  std::size_t found = 0;
  for (unsigned hi = 0; hi < 256; ++hi)
    for (unsigned mid = 0; mid < 256; ++mid)
      for (unsigned lo = 0; lo < 256; ++lo) {
        const BlockPlace place = kAddressIndex.find(hi, mid, lo);
        const int position = expected[hi << 16 | mid << 8 | lo];
        if (position < 0) {
          ASSERT_EQ(place.list, kListCount) << hi << ' ' << mid << ' ' << lo;
          continue;
        }
        ASSERT_EQ(place.list, InstrumentMap::listOfHighByte(hi)) << hi << ' ' << mid << ' ' << lo;
        ASSERT_EQ(place.position, position) << hi << ' ' << mid << ' ' << lo;
        ++found;
      }
  EXPECT_EQ(found, 8330u);
}

TEST(AddressIndex, KnowsFiftyRemoteHeadersAndFooters) {
  EXPECT_TRUE(known(0x0E, 0x60, 0x31));
  EXPECT_TRUE(known(0x0F, 0x60, 0x31));
  EXPECT_FALSE(known(0x0E, 0x60, 0x32));
  EXPECT_FALSE(known(0x0F, 0x60, 0x32));
}

TEST(AddressIndex, KnowsOneGmDrumVoice) {
  EXPECT_TRUE(known(0x0E, 0x21, 0x00));
  EXPECT_FALSE(known(0x0E, 0x21, 0x01));
  EXPECT_TRUE(known(0x0C, 0x21, 0x00));
  EXPECT_FALSE(known(0x0C, 0x21, 0x01));
}

TEST(AddressIndex, KnowsSeventyThreeKeys) {
  EXPECT_TRUE(known(0x47, 0x48, 0x00));
  EXPECT_FALSE(known(0x47, 0x49, 0x00));
}

TEST(AddressIndex, KnowsSixQuickSetups) {
  EXPECT_TRUE(known(0x00, 0x55, 0x00));
  EXPECT_FALSE(known(0x00, 0x56, 0x00));
}

TEST(AddressIndex, KnowsTwoWriteTriggers) {
  EXPECT_TRUE(known(0x11, 0x00, 0x00));
  EXPECT_TRUE(known(0x11, 0x01, 0x00));
  EXPECT_FALSE(known(0x11, 0x02, 0x00));
  EXPECT_FALSE(known(0x11, 0x00, 0x01));
}

}  // namespace
}  // namespace BDA
