#include "bda/version.h"

#include <gtest/gtest.h>

#include <string>

TEST(Version, theLibrarySaysTheOneOfItsHeader) { EXPECT_STREQ(BDA::libraryVersion(), BDA_VERSION_STRING); }

TEST(Version, theTextIsTheThreeNumbers) {
  EXPECT_EQ(BDA_VERSION_STRING, std::to_string(BDA_VERSION_MAJOR) + "." + std::to_string(BDA_VERSION_MINOR) + "." +
                                    std::to_string(BDA_VERSION_PATCH));
}

TEST(Version, theNumberCanBeTakenApartAgain) {
  EXPECT_EQ(BDA_VERSION / 10000, BDA_VERSION_MAJOR);
  EXPECT_EQ(BDA_VERSION / 100 % 100, BDA_VERSION_MINOR);
  EXPECT_EQ(BDA_VERSION % 100, BDA_VERSION_PATCH);
}
