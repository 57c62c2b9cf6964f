// Ends before the end, clocks that are wrong, and calls that may not be made.

#include <limits>
#include <string>

#include "editor/surface/WireCallFixture.h"

namespace Editor {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

using WireOrder = WireCallTest;

std::ptrdiff_t takeNone(void* /*context*/, const std::uint8_t* /*bytes*/, std::size_t /*size*/) { return 0; }
std::ptrdiff_t takeTooMany(void* /*context*/, const std::uint8_t* /*bytes*/, std::size_t size) {
  return std::ptrdiff_t(size) + 1;
}
std::ptrdiff_t takeAway(void* /*context*/, const std::uint8_t* /*bytes*/, std::size_t /*size*/) { return -1; }

TEST_F(WireOrder, StoppedItSendsTheUnitThatHasBegunToItsEnd) {
  receiveVoice();
  receiveVoice(4, kNext);
  std::size_t size = 0;
  for (const Bytes& message : unitOf(kVoice, BDA::List::normalVoice)) size += message.size();
  serve();
  send("voice:user1:6..7", "{}");
  step();
  ASSERT_FALSE(out.empty());
  ASSERT_LT(out.size(), size);
  EXPECT_EQ(bda_wire_stop(wire), BDA_OK);
  EXPECT_EQ(bda_wire_is_done(wire), 0);
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_EQ(out.size(), size);
  EXPECT_EQ(linesIn(take()), 1);
  EXPECT_EQ(wireError(), "1 unit not sent");
}

TEST_F(WireOrder, StoppedItAsksForNothingMore) {
  serve(R"({"faults": "deaf=1"})");
  fetch("voice:user1:6..8", "{}");
  step();
  EXPECT_EQ(bda_wire_stop(wire), BDA_OK);
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_EQ(out.size() % request(kVoice).size(), 0u) << "no request is cut";
  EXPECT_EQ(linesIn(take()), 1);
  EXPECT_THAT(wireError(), HasSubstr("2 units not asked for"));
  EXPECT_EQ(bda_wire_stop(wire), BDA_OK) << "it is done";
  feed(wire, {0xF0});
  EXPECT_EQ(tick(wire), Bytes());
}

TEST_F(WireOrder, WhenItsPortIsGoneItIsDone) {
  receiveVoice();
  send("voice:user1:6");
  std::int64_t due = 0;
  EXPECT_EQ(bda_wire_tick(wire, now, &takeAway, nullptr, &due), BDA_FAILED);
  EXPECT_EQ(wireError(), "nobody is at the wire any more");
  EXPECT_EQ(due, BDA_NEVER);
  EXPECT_EQ(bda_wire_is_done(wire), 1);
  EXPECT_EQ(bda_wire_results(wire, &json), BDA_REFUSED);
  EXPECT_EQ(take(), "");
  EXPECT_EQ(wireError(), "1 unit not sent");
}

TEST_F(WireOrder, StoppedBeforeItBeganNothingGoesOut) {
  receiveVoice();
  send("voice:user1:6");
  EXPECT_EQ(bda_wire_stop(wire), BDA_OK);
  EXPECT_EQ(bda_wire_is_done(wire), 1);
  EXPECT_EQ(bda_wire_results(wire, nullptr), BDA_REFUSED);
  bda_wire_close(wire);
  fetch("voice:user1:6");
  EXPECT_EQ(bda_wire_stop(wire), BDA_OK);
  EXPECT_EQ(bda_wire_is_done(wire), 1);
  EXPECT_EQ(bda_wire_results(wire, nullptr), BDA_REFUSED);
  EXPECT_EQ(wireError(), "1 unit not asked for");
}

TEST_F(WireOrder, ClosedInTheMidstTheLibraryIsAsItWas) {
  give(kVoice);
  serve("{}");
  fetch("voice:user1:6", "{}");
  for (int i = 0; i < 20; ++i) step();
  EXPECT_EQ(bda_wire_is_done(wire), 0);
  EXPECT_EQ(bda_library_contents(library, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(error(), "a wire uses the library");
  bda_wire* second = nullptr;
  EXPECT_EQ(bda_wire_fetch(library, "voice:user1:6", nullptr, &second), BDA_MISUSED);
  bda_wire_close(second);
  close();
  EXPECT_EQ(contents(), "");
  receiveVoice();
  EXPECT_THAT(contents(), HasSubstr("voice:user1:6"));
}

TEST_F(WireOrder, TheLibraryMayBeClosedBefore) {
  give(kVoice);
  serve();
  fetch("voice:user1:6");
  bda_library_close(std::exchange(library, nullptr));
  bda_library_close(std::exchange(other, nullptr));
  EXPECT_EQ(run(), BDA_OK) << wireError();
  EXPECT_THAT(take(), HasSubstr("stored"));
}

TEST_F(WireOrder, TimeDoesNotGoBack) {
  receiveVoice();
  send("voice:user1:6", R"({"pace": 1000})");
  std::int64_t due = 0;
  EXPECT_NE(tick(wire, &due), Bytes());
  ASSERT_GT(due, now);
  const std::int64_t last = due;
  now -= kHour;
  EXPECT_EQ(tick(wire, &due), Bytes()) << "it is no later than before";
  EXPECT_EQ(due, last);
  EXPECT_EQ(bda_wire_feed(wire, std::numeric_limits<std::int64_t>::min(), nullptr, 0), BDA_OK);
  now = due;
  EXPECT_NE(tick(wire), Bytes());
}

TEST_F(WireOrder, AnyMomentMayBeTheFirstOrTheLast) {
  receiveVoice();
  for (const std::int64_t first :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    send("voice:user1:6", "{}");
    now = first;
    std::int64_t due = 0;
    EXPECT_NE(tick(wire, &due), Bytes());
    EXPECT_GE(due, first);
    now = std::numeric_limits<std::int64_t>::max();
    tick(wire, &due);
    EXPECT_EQ(bda_wire_stop(wire), BDA_OK);
    bda_wire_close(std::exchange(wire, nullptr));
  }
}

TEST_F(WireOrder, WhereNobodyTakesWhatGoesOutItEnds) {
  receiveVoice();
  send("voice:user1:6", R"({"timeout": 1, "retries": 0})");
  std::int64_t due = 0;
  EXPECT_EQ(bda_wire_tick(wire, 0, takeNone, nullptr, &due), BDA_OK);
  EXPECT_GT(due, 0) << "nobody turns in a circle";
  EXPECT_LT(due, kSecond);
  EXPECT_EQ(bda_wire_tick(wire, kSecond, takeNone, nullptr, &due), BDA_OK);
  EXPECT_EQ(bda_wire_tick(wire, 2 * kSecond, takeNone, nullptr, &due), BDA_FAILED);
  EXPECT_EQ(due, BDA_NEVER);
  EXPECT_EQ(bda_wire_is_done(wire), 1);
  EXPECT_EQ(bda_wire_results(wire, nullptr), BDA_REFUSED);
  EXPECT_EQ(wireError(), "1 unit not sent");
}

TEST_F(WireOrder, WhoGivesNothingToSendByIsToldSo) {
  receiveVoice();
  send("voice:user1:6");
  EXPECT_EQ(bda_wire_tick(wire, now, nullptr, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(wireError(), "out is NULL");
  EXPECT_EQ(bda_wire_tick(wire, now, takeTooMany, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_wire_feed(wire, now, nullptr, 1), BDA_MISUSED);
  EXPECT_EQ(bda_wire_is_done(wire), 0);
  serve();
  EXPECT_EQ(run(), BDA_OK) << "nothing of it has gone out by then";
  take();
  close();
  EXPECT_EQ(shownBy(other), shownBy(library));
}

TEST_F(WireOrder, WhatIsNullIsMisused) {
  EXPECT_EQ(bda_wire_fetch(library, "all", nullptr, nullptr), BDA_MISUSED);
  for (const auto begin : {bda_wire_fetch, bda_wire_send}) {
    EXPECT_EQ(begin(nullptr, "all", nullptr, &wire), BDA_MISUSED);
    EXPECT_EQ(wireError(), "library is NULL");
    EXPECT_EQ(bda_wire_is_done(wire), 1);
    EXPECT_EQ(bda_wire_stop(wire), BDA_MISUSED);
    EXPECT_EQ(bda_wire_tick(wire, 0, takeNone, nullptr, nullptr), BDA_MISUSED);
    EXPECT_EQ(bda_wire_feed(wire, 0, nullptr, 0), BDA_MISUSED);
    EXPECT_EQ(bda_wire_effects(wire, &json), BDA_MISUSED);
    EXPECT_EQ(bda_wire_results(wire, &json), BDA_MISUSED);
    bda_wire_close(std::exchange(wire, nullptr));
    EXPECT_EQ(begin(library, nullptr, nullptr, &wire), BDA_MISUSED);
    bda_wire_close(std::exchange(wire, nullptr));
  }
  EXPECT_EQ(bda_wire_instrument(nullptr, nullptr, &wire), BDA_MISUSED);
  bda_wire_close(std::exchange(wire, nullptr));
  EXPECT_EQ(bda_wire_send_files(nullptr, nullptr, &wire), BDA_MISUSED);
  EXPECT_EQ(bda_wire_stop(nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_wire_feed(nullptr, 0, nullptr, 0), BDA_MISUSED);
  EXPECT_EQ(bda_wire_tick(nullptr, 0, takeNone, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_wire_results(nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_wire_is_done(nullptr), 1);
  EXPECT_STREQ(bda_wire_error(nullptr), "wire is NULL");
  bda_wire_close(nullptr);
}

TEST_F(WireOrder, WhatCannotBeUnderstoodIsUnusable) {
  receiveVoice();
  struct Wrong {
    const char* places;
    const char* options;
    const char* why;
  };
  for (const auto& [places, options, why] :
       {Wrong{"voice:user1:6\xFF", nullptr, "UTF-8"}, Wrong{"nowhere", nullptr, "nowhere"}, Wrong{"", nullptr, "none"},
        Wrong{"voice:user1:6", "[]", "not a JSON object"},
        Wrong{"voice:user1:6", R"({"pace": "fast"})", "expected cable, usb, none, or bytes a second"},
        Wrong{"voice:user1:6", R"({"pace": 0})", "pace"}, Wrong{"voice:user1:6", R"({"pace": true})", "pace"},
        Wrong{"voice:user1:6", R"({"timeout": "2"})", "timeout"},
        Wrong{"voice:user1:6", R"({"timeout": -1})", "timeout"},
        Wrong{"voice:user1:6", R"({"retries": 1001})", "retries"},
        Wrong{"voice:user1:6", R"({"retrys": 1})", "did you mean retries?"}})
    for (const auto begin : {bda_wire_fetch, bda_wire_send}) {
      EXPECT_EQ(begin(library, places, options, &wire), BDA_UNUSABLE) << places << why;
      EXPECT_THAT(wireError(), HasSubstr(why));
      bda_wire_close(std::exchange(wire, nullptr));
    }
  for (const char* const options :
       {R"({"port": 2})", R"({"port": 7})", R"({"faults": "nonsense"})", R"({"seed": -1})"}) {
    EXPECT_EQ(bda_wire_instrument(library, options, &wire), BDA_UNUSABLE) << options;
    bda_wire_close(std::exchange(wire, nullptr));
  }
  EXPECT_EQ(bda_wire_send(library, "voice:user1:9", nullptr, &wire), BDA_UNUSABLE);
  EXPECT_THAT(wireError(), StartsWith("voice:user1:9: not sent: "));
  EXPECT_THAT(contents(), HasSubstr("voice:user1:6")) << "no wire has it";
}

TEST_F(WireOrder, WhatIsOpenedToBeReadIsSentAndNotFetchedInto) {
  TemporaryDirectory directory;
  open(directory / "library.db");
  receiveVoice();
  open(directory / "library.db", BDA_OPEN_READ);
  EXPECT_EQ(bda_wire_fetch(library, "voice:user1:6", nullptr, &wire), BDA_REFUSED);
  EXPECT_THAT(wireError(), HasSubstr("opened to be read"));
  bda_wire_close(std::exchange(wire, nullptr));
  EXPECT_EQ(bda_wire_instrument(library, nullptr, &wire), BDA_REFUSED);
  bda_wire_close(std::exchange(wire, nullptr));
  send("voice:user1:6");
}

}  // namespace
}  // namespace Editor
