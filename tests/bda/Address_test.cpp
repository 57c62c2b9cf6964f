#include "Address.h"

#include <gtest/gtest.h>

namespace BDA {
namespace {

TEST(Address, HoldsItsThreeBytes) {
  const Address address(0x0E, 0x7F, 0xFF);
  EXPECT_EQ(address.getHi(), 0x0E);
  EXPECT_EQ(address.getMid(), 0x7F);
  EXPECT_EQ(address.getLo(), 0xFF);
}

TEST(Address, IsSetFromBytesAndFromAnAddress) {
  Address address(1, 2, 3);
  address.setAddress(4, 5, 6);
  EXPECT_TRUE(address.isEqual(4, 5, 6));
  address.setAddress(Address(7, 8, 9));
  EXPECT_TRUE(address.isEqual(7, 8, 9));
}

TEST(Address, IsEqualWhenAllThreeBytesAre) {
  const Address address(1, 2, 3);
  EXPECT_TRUE(address.isEqual(1, 2, 3));
  EXPECT_FALSE(address.isEqual(0, 2, 3));
  EXPECT_FALSE(address.isEqual(1, 0, 3));
  EXPECT_FALSE(address.isEqual(1, 2, 0));
  EXPECT_TRUE(address.isEqual(Address(1, 2, 3)));
  EXPECT_FALSE(address.isEqual(Address(0, 2, 3)));
  EXPECT_FALSE(address.isEqual(Address(1, 0, 3)));
  EXPECT_FALSE(address.isEqual(Address(1, 2, 0)));
}

TEST(Address, IsEqualHiLoIgnoresTheMiddleByte) {
  EXPECT_TRUE(Address(0x0E, 0x00, 5).isEqualHiLo(0x0E, 5));
  EXPECT_TRUE(Address(0x0E, 0x7F, 5).isEqualHiLo(0x0E, 5));
  EXPECT_FALSE(Address(0x0F, 0x00, 5).isEqualHiLo(0x0E, 5));
  EXPECT_FALSE(Address(0x0E, 0x00, 6).isEqualHiLo(0x0E, 5));
}

TEST(Address, IsEqualMidLoIgnoresTheHighByte) {
  EXPECT_TRUE(Address(0x0E, 0x5F, 5).isEqualMidLo(0x5F, 5));
  EXPECT_TRUE(Address(0x0F, 0x5F, 5).isEqualMidLo(0x5F, 5));
  EXPECT_FALSE(Address(0x0E, 0x5E, 5).isEqualMidLo(0x5F, 5));
  EXPECT_FALSE(Address(0x0E, 0x5F, 6).isEqualMidLo(0x5F, 5));
}

TEST(HeaderAddress, StartsWithoutABank) {
  const HeaderAddress header(9, 0x0E, 0x30, 0x04);
  EXPECT_EQ(header.getBlockType(), 9u);
  EXPECT_TRUE(header.isEqual(0x0E, 0x30, 0x04));
  EXPECT_EQ(header.getBank(), 0u);
}

TEST(HeaderAddress, IsSetInOneCall) {
  HeaderAddress header(0, 0, 0, 0);
  header.setHeader(9, 0x0E, 0x30, 0x0F, 2);
  EXPECT_EQ(header.getBlockType(), 9u);
  EXPECT_TRUE(header.isEqual(0x0E, 0x30, 0x0F));
  EXPECT_EQ(header.getBank(), 2u);
  header.setHeader(1, 0x0E, 0x00, 0x05, 0);
  EXPECT_EQ(header.getBlockType(), 1u);
  EXPECT_TRUE(header.isEqual(0x0E, 0x00, 0x05));
  EXPECT_EQ(header.getBank(), 0u);
}

}  // namespace
}  // namespace BDA
