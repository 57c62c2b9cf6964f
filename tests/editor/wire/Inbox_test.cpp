#include "wire/Inbox.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <thread>

namespace Editor {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes copyOf(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

bool isAwake(const Inbox& inbox) {
  pollfd watched{inbox.descriptor(), POLLIN, 0};
  return ::poll(&watched, 1, 0) == 1;
}

TEST(Inbox, GivesWhatWasPushedOnceAndIsAwakeUntilThen) {
  Inbox inbox(10);
  EXPECT_FALSE(isAwake(inbox));
  inbox.push(Bytes{1, 2});
  inbox.push(Bytes{3});
  EXPECT_TRUE(isAwake(inbox));
  EXPECT_EQ(copyOf(inbox.take().bytes), (Bytes{1, 2, 3}));
  EXPECT_FALSE(isAwake(inbox));
  EXPECT_TRUE(inbox.take().bytes.empty());
}

TEST(Inbox, FromTheFirstMessageWithoutRoomDropsAllUntilItIsEmptied) {
  Inbox inbox(4);
  inbox.push(Bytes{1, 2, 3});
  inbox.push(Bytes{4, 5});
  inbox.push(Bytes{6});  // for which there would be room
  const Inbox::Content content = inbox.take();
  EXPECT_EQ(copyOf(content.bytes), (Bytes{1, 2, 3}));
  EXPECT_EQ(content.dropped, 3u);
  inbox.push(Bytes{7, 8, 9, 10});
  const Inbox::Content next = inbox.take();
  EXPECT_EQ(copyOf(next.bytes), (Bytes{7, 8, 9, 10}));
  EXPECT_EQ(next.dropped, 0u);
}

TEST(Inbox, IsAwakeForWhatIsDroppedAndForAFailure) {
  Inbox full(1);
  full.push(Bytes{1, 2});
  EXPECT_TRUE(isAwake(full));
  EXPECT_EQ(full.take().dropped, 2u);
  full.drop(3);
  EXPECT_TRUE(isAwake(full));
  EXPECT_EQ(full.take().dropped, 3u);
  full.fail("gone");
  full.fail("another");
  EXPECT_TRUE(isAwake(full));
  EXPECT_EQ(full.take().failure, "gone");
}

TEST(Inbox, OfWhatOneThreadPushesNothingIsLostUntold) {
  constexpr unsigned kMessages = 20'000;
  Inbox inbox(64);
  std::thread driver([&inbox] {
    for (unsigned i = 0; i < kMessages; ++i) inbox.push(Bytes{std::uint8_t(i), std::uint8_t(i >> 8U), 0xF7});
    inbox.fail("end");
  });
  std::uint64_t got = 0;
  std::uint64_t dropped = 0;
  unsigned next = 0;
  for (bool isEnded = false; !isEnded;) {
    pollfd watched{inbox.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&watched, 1, 60'000), 1);
    const Inbox::Content content = inbox.take();
    isEnded = !content.failure.empty();
    ASSERT_EQ(content.bytes.size() % 3, 0u);
    for (std::size_t at = 0; at < content.bytes.size(); at += 3, ++next)
      ASSERT_EQ(content.bytes[at] + 256u * content.bytes[at + 1], next);
    next += unsigned(content.dropped / 3);
    got += content.bytes.size();
    dropped += content.dropped;
  }
  driver.join();
  EXPECT_EQ(got + dropped, 3u * kMessages);
}

}  // namespace
}  // namespace Editor
