// That these are the layouts by which the executers convert is proved where each bit is received: by the tests of the
// editor's explain/BlockMap.h.

#include "BlockLayouts.h"

#include <gtest/gtest.h>

#include "AddressRows.h"
#include "ExecuterNumbers.h"

namespace BDA {
namespace {

TEST(BlockLayouts, EveryBlockThatConvertsHasALayoutOfItsLength) {
  constexpr unsigned kFirstOfLists = 57;  // of names
  forEachAddress(kParameterRows, [&](const AddressRow& row, std::uint8_t mid, std::uint8_t /*lo*/) {
    const unsigned executer = executerOf(row, mid);
    const std::optional<BoundLayout> layout = layoutOf(row.type, indexOf(row, mid), {});
    ASSERT_EQ(layout.has_value(), executer < kFirstOfLists) << "type " << unsigned{row.type};
    if (layout) {
      ASSERT_EQ(layout->length, kExecuterDataLength[executer]) << "type " << unsigned{row.type};
    }
  });
}

TEST(BlockLayouts, WhatModelsDoNotHaveIsNull) {
  const std::optional<BoundLayout> layout = layoutOf(61, 0, {});
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->groups, (std::vector<CMA::ParameterGroup*>(3)));
  EXPECT_EQ(layout->names, (std::vector<ModelSrv::ModelPart*>(1)));
}

TEST(BlockLayouts, BlocksOfOtherKindsHaveNone) {
  for (const unsigned type : {0U, 1U, 39U, 47U, 60U, 71U, 81U, 112U, 116U, 118U})
    EXPECT_FALSE(layoutOf(type, 0, {})) << type;
}

}  // namespace
}  // namespace BDA
