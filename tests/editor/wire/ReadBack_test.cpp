#include "wire/ReadBack.h"

#include <gtest/gtest.h>

#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

TEST(ReadBack, WhatIsStoredOnOneSideOnlyHasNoValues) {
  const std::vector<Bytes> empty{dump({0x0E, 0x31, 0x40}), dump({0x0F, 0x31, 0x40})};
  const std::vector<Bytes> stored = unitOf({0x0E, 0x31, 0x00}, BDA::List::normalVoice);
  const auto isNothing = [](const ParameterValue& value) { return std::holds_alternative<std::monostate>(value); };
  for (const bool wasStored : {false, true}) {
    const std::vector<ReadBackDifference> differences =
        wasStored ? ReadBack().compare(stored, empty) : ReadBack().compare(empty, stored);
    ASSERT_EQ(differences.size(), 1U);
    EXPECT_TRUE(differences[0].isOfOneOnly);
    EXPECT_EQ(formatAddress(differences[0].address), wasStored ? "0E 31 00" : "0E 31 40");
    EXPECT_TRUE(isNothing(differences[0].sent) && isNothing(differences[0].read) && !differences[0].path);
  }
  EXPECT_TRUE(ReadBack().compare(empty, empty).empty());
}

TEST(ReadBack, AVoiceOfTheOtherKindIsOneDifference) {
  const BulkAddress part{0x0E, 0x30, 0x02};
  const std::vector<Bytes> normal = unitOf(part, BDA::List::normalVoice);
  const std::vector<Bytes> drum = unitOf(part, BDA::List::drumVoice);
  const std::vector<ReadBackDifference> differences = ReadBack().compare(drum, normal);
  ASSERT_EQ(differences.size(), 1U);
  EXPECT_EQ(differences[0].address, part);
  EXPECT_FALSE(differences[0].isOfOneOnly);
  EXPECT_TRUE(differences[0].sent == ParameterValue("drum voice") &&
              differences[0].read == ParameterValue("normal voice"));
  EXPECT_TRUE(ReadBack().compare(normal, drum)[0].sent == ParameterValue("normal voice"));
}

}  // namespace
}  // namespace Editor
