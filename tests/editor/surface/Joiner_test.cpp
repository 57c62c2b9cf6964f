#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bda/editor.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;

struct Heard {
  std::vector<std::string> lines;
};

void hearMessage(void* context, uint64_t number, uint64_t offset, const uint8_t*, size_t size) {
  static_cast<Heard*>(context)->lines.push_back("message " + std::to_string(number) + " at " + std::to_string(offset) +
                                                ": " + std::to_string(size));
}
void hearLoss(void* context, uint64_t offset, uint64_t count, const char* reason) {
  static_cast<Heard*>(context)->lines.push_back(std::to_string(count) + " at " + std::to_string(offset) + ": " +
                                                reason);
}

TEST(Joiner, EveryByteIsOfAMessageOrLost) {
  Heard heard;
  bda_joiner* joiner = nullptr;
  ASSERT_EQ(bda_joiner_new(hearMessage, hearLoss, &heard, &joiner), BDA_OK);
  for (const uint8_t byte : std::vector<uint8_t>{0x01, 0xF0, 0x43, 0xF8, 0x01, 0xF7, 0xF0, 0x43})
    EXPECT_EQ(bda_joiner_feed(joiner, &byte, 1), BDA_OK);
  EXPECT_EQ(bda_joiner_finish(joiner), BDA_OK);
  EXPECT_THAT(heard.lines, ElementsAre("1 at 0: outside of any message", "1 at 3: real-time", "message 1 at 1: 4",
                                       "2 at 6: message without end"));
  bda_joiner_close(joiner);
}

TEST(Joiner, NobodyNeedsToHearOfLosses) {
  Heard heard;
  bda_joiner* joiner = nullptr;
  ASSERT_EQ(bda_joiner_new(hearMessage, nullptr, &heard, &joiner), BDA_OK);
  const uint8_t byte = 1;
  EXPECT_EQ(bda_joiner_feed(joiner, &byte, 1), BDA_OK);
  EXPECT_EQ(bda_joiner_finish(joiner), BDA_OK);
  EXPECT_TRUE(heard.lines.empty());
  bda_joiner_close(joiner);
}

TEST(Joiner, WhatIsMisusedSaysSo) {
  bda_joiner* joiner = nullptr;
  EXPECT_EQ(bda_joiner_new(hearMessage, nullptr, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_joiner_new(nullptr, nullptr, nullptr, &joiner), BDA_MISUSED);
  EXPECT_EQ(joiner, nullptr);
  EXPECT_EQ(bda_joiner_feed(nullptr, nullptr, 0), BDA_MISUSED);
  EXPECT_EQ(bda_joiner_finish(nullptr), BDA_MISUSED);
  ASSERT_EQ(bda_joiner_new(hearMessage, nullptr, nullptr, &joiner), BDA_OK);
  EXPECT_EQ(bda_joiner_feed(joiner, nullptr, 1), BDA_MISUSED);
  EXPECT_EQ(bda_joiner_feed(joiner, nullptr, 0), BDA_OK);
  bda_joiner_close(joiner);
  bda_joiner_close(nullptr);
}

}  // namespace
}  // namespace Editor
