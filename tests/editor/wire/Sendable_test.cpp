#include "wire/Sendable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "acceptance/Library.h"
#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Why = Sendable::Why;

class SendableTest : public testing::Test {
 protected:
  static Sendable sendable(const std::vector<Bytes>& messages, const Sendable::Options& options = {}) {
    BatchBuilder builder;
    for (const Bytes& message : messages) builder.add(message);
    return sendableOf(builder.finish(), options);
  }

  std::vector<Bytes> voice = unitOf({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1);
  const Bytes fileDumpOfIt = fileDump({0x0C, 0x0A, 0x05}, "Some", {1, 2, 3});
};

TEST_F(SendableTest, WhatIsWholeIsSent) {
  const Sendable whole = sendable(voice);
  EXPECT_EQ(whole.why, Why::isSent);
  ASSERT_TRUE(whole.plan);
  EXPECT_THAT(whole.plan->effects, ElementsAre("overwrites: voice:user1:6"));
  EXPECT_THAT(whole.leftOut, IsEmpty());
}

TEST_F(SendableTest, NothingIsSentOfWhatIsNotWhole) {
  voice[3] = damaged(voice[3]);
  const Sendable broken = sendable(voice);
  EXPECT_EQ(broken.why, Why::isBroken);
  EXPECT_EQ(broken.words, "it is not whole: nothing is sent");
  EXPECT_FALSE(broken.plan);
  ASSERT_EQ(broken.faults.size(), 1u);
  EXPECT_THAT(broken.faults[0].text, HasSubstr("voice:user1:6"));
}

TEST_F(SendableTest, AFileDumpNeedsATriggerToBeStored) {
  const Sendable held = sendable({fileDumpOfIt});
  EXPECT_EQ(held.why, Why::isBroken);
  ASSERT_EQ(held.faults.size(), 1u);
  EXPECT_EQ(held.faults[0].kind, "without a write trigger");
  EXPECT_EQ(sendable({fileDumpOfIt, writeTrigger(0)}).why, Why::isSent);
}

TEST_F(SendableTest, ToEditBuffersOneOfAKindIsSent) {
  std::vector<Bytes> messages = voice;
  messages.push_back(blockDump({0x00, 0x00, 0x00}));
  const Sendable one = sendable(messages, {.toEditBuffers = true});
  ASSERT_TRUE(one.plan);
  EXPECT_THAT(one.plan->effects, ElementsAre("overwrites: voice:edit"));
  EXPECT_THAT(one.leftOut, ElementsAre("1 message left out: no edit buffer takes them"));
  messages.insert(messages.end(), voice.begin(), voice.end());
  const Sendable two = sendable(messages, {.toEditBuffers = true});
  EXPECT_EQ(two.why, Why::isUnusable);
  EXPECT_EQ(two.words, "voice:user1:6 and voice:user1:6 would both go to voice:edit, which holds one: nothing is sent");
}

TEST_F(SendableTest, WhatIsForNobodyHereIsLeftOut) {
  const Bytes foreign{0xF0, 0x7E, 0x00, 0x06, 0x01, 0xF7};
  const Sendable nothing = sendable({foreign});
  EXPECT_EQ(nothing.why, Why::isUnusable);
  EXPECT_THAT(nothing.leftOut, ElementsAre("1 message left out: no dumps for this instrument"));
  voice.push_back(foreign);
  EXPECT_EQ(sendable(voice).why, Why::isSent);
}

TEST_F(SendableTest, OfDifferentDevicesNobodyCanBeAsked) {
  voice.push_back(dump({0x00, 0x00, 0x00}, Bytes(findBlock({0x00, 0x00, 0x00})->dataLength.value()), 4));
  EXPECT_EQ(sendable(voice).why, Why::isSent);
  const Sendable asked = sendable(voice, {.asks = true});
  EXPECT_EQ(asked.why, Why::isUnusable);
  EXPECT_THAT(asked.words, HasSubstr("different devices (1, 5)"));
}

}  // namespace
}  // namespace Editor
