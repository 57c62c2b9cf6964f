#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "editor/surface/WireCallFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

using WireCalls = WireCallTest;

TEST_F(WireCalls, WhatIsFetchedIsStored) {
  give(kVoice);
  serve("{}");
  fetch("voice:user1:6", "{}");
  EXPECT_EQ(run(), BDA_OK) << wireError();
  EXPECT_EQ(take(),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"stored","tries":1,"missing":[],"reason":""})"
            "\n");
  EXPECT_EQ(bda_wire_results(wire, &json), BDA_OK);
  EXPECT_EQ(take(), "") << "it was told";
  close();
  EXPECT_EQ(shownBy(library), shownBy(other));
  EXPECT_EQ(bda_library_history(library, 0, &json), BDA_OK);
  EXPECT_THAT(take(), HasSubstr(R"("verb":"fetch")"));
}

TEST_F(WireCalls, WhatIsFetchedReplacesAndRemoves) {
  give({0x0E, 0x30, 0x00});
  serve();
  receiveVoice();
  fetch("voice:part:1 voice:user1:6 file:voice:user1:6", R"({"pace": "none", "remove-empty": true})");
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_EQ(wireError(), "what answers nothing may be empty or lost");
  EXPECT_THAT(take(), AllOf(HasSubstr(R"("with":[{"content":"multi:edit")"), HasSubstr(R"("silent":true)"),
                            HasSubstr(R"("removed":true)")));
  close();
  EXPECT_THAT(contents(), Not(HasSubstr("voice:user1:6")));
}

TEST_F(WireCalls, OfAnInstrumentThatDoesNotAnswerAllIsLost) {
  serve(R"({"faults": "deaf=1"})");
  fetch("voice:user1:6..8");
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_EQ(linesIn(take()), 3);
  EXPECT_THAT(wireError(), AllOf(StartsWith("lost: voice:user1:6: silent\n"), HasSubstr("lost: voice:user1:8")));
}

// However it goes wrong: what is told as stored is there, and what is lost is told.
TEST_F(WireCalls, FaultsLoseOnlyWhatIsTold) {
  give(kVoice);
  give(kNext, 4);
  std::size_t stored = 0;
  std::size_t lost = 0;
  for (const char* const name : {"drop", "flip", "cut", "repeat", "clock", "chatter", "stall", "in-drop"})
    for (int seed = 0; seed < 4; ++seed) {
      const std::string faults =
          R"({"pace": "none", "faults": ")" + std::string(name) + R"(=10%", "seed": )" + std::to_string(seed) + "}";
      serve(faults.c_str());
      fetch("voice:user1:6..7", R"({"pace": 100000, "timeout": 0.5, "retries": 1})");
      const bda_result result = run();
      const std::string told = take();
      const bool isLost = told.find(R"("state":"lost")") != std::string::npos;
      EXPECT_TRUE(!isLost || result == BDA_REFUSED) << faults << told;
      close();
      const bool isThere = told.find(R"("unit":"voice:user1:6","address":"0E 0A 05","state":"stored")") == 1;
      EXPECT_EQ(contents().find("voice:user1:6") != std::string::npos, isThere) << faults << told;
      if (isThere) {
        EXPECT_EQ(shownBy(library), shownBy(other)) << faults;
      }
      ++(isThere ? stored : lost);
      bda_library_close(library);
      ASSERT_EQ(bda_library_open(nullptr, 0, &library), BDA_OK);
    }
  EXPECT_GT(stored, 0u);
  EXPECT_GT(lost, 0u);
}

TEST_F(WireCalls, AllTogetherNothingIsStoredWhereOneIsLost) {
  give(kVoice);
  serve(R"({"faults": "deaf=1:1", "pace": "none"})");
  fetch("voice:user1:6..7", R"({"pace": "none", "atomic": true})");
  for (int i = 0; i < 4; ++i) step();
  EXPECT_EQ(bda_wire_results(wire, &json), BDA_OK);
  EXPECT_EQ(take(), "") << "it waits for the other one";
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_THAT(wireError(), StartsWith("lost: voice:user1:6: not stored: others are lost\nlost: voice:user1:7: silent"));
  EXPECT_EQ(linesIn(take()), 2);
  close();
  EXPECT_EQ(contents(), "");
}

TEST_F(WireCalls, WhatIsSentIsThereAndReadBack) {
  receiveVoice();
  serve();
  send("voice:user1:6", R"({"pace": "none", "verify": true})");
  EXPECT_EQ(bda_wire_effects(wire, &json), BDA_OK);
  EXPECT_EQ(take(), "overwrites: voice:user1:6\n");
  EXPECT_THAT(contents(), HasSubstr("voice:user1:6")) << "sending does not need the library any longer";
  EXPECT_EQ(run(), BDA_OK) << wireError();
  EXPECT_EQ(take(), R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"equal","differences":[],"reason":""})"
                    "\n");
  close();
  EXPECT_EQ(shownBy(library), shownBy(other));
}

TEST_F(WireCalls, HowFarItHasComeIsTold) {
  const auto progress = [&](bda_wire* of) {
    EXPECT_EQ(bda_wire_progress(of, &json), BDA_OK) << bda_wire_error(of);
    return take();
  };
  receiveVoice();
  std::size_t size = 0;
  for (const Bytes& message : unitOf(kVoice, BDA::List::normalVoice)) size += message.size();
  const auto told = [&](int done, std::size_t sent) {
    return fmt::format(R"({{"done":{},"units":1,"sent":{},"bytes":{},"seconds":{}}})"
                       "\n",
                       done, sent, size, double(size) / 3125);
  };
  serve();
  send("voice:user1:6", "{}");
  EXPECT_EQ(progress(wire), told(0, 0));
  step();
  EXPECT_EQ(progress(wire), told(0, out.size()));
  EXPECT_EQ(run(), BDA_OK) << wireError();
  take();
  EXPECT_EQ(progress(wire), told(1, size));
  EXPECT_THAT(progress(instrument), StartsWith("{\"done\":26,\"units\":null,"));
  close();
  fetch("voice:user1:6..7");
  EXPECT_EQ(progress(wire), "{\"done\":0,\"units\":2,\"sent\":0,\"bytes\":null,\"seconds\":null}\n");
}

TEST_F(WireCalls, WhatIsNotThereAfterwardsIsTold) {
  receiveVoice();
  serve(R"({"faults": "full=1", "pace": "none"})");
  send("voice:user1:6", R"({"pace": "none", "verify": true})");
  EXPECT_EQ(run(), BDA_REFUSED);
  EXPECT_THAT(take(), Not(HasSubstr("equal")));
  EXPECT_THAT(wireError(), HasSubstr("voice:user1:6"));
}

TEST_F(WireCalls, PlacesThatHoldNothingAreToldAndTheRestGoes) {
  receiveVoice();
  serve();
  send("voice:user1:6..7");
  EXPECT_EQ(bda_wire_results(wire, &json), BDA_REFUSED);
  EXPECT_EQ(take(), "");
  EXPECT_THAT(wireError(), StartsWith("voice:user1:7: not sent: "));
  EXPECT_EQ(run(), BDA_OK) << wireError();
  EXPECT_THAT(take(), HasSubstr(R"("state":"sent")"));
  close();
  EXPECT_THAT(contents(other), HasSubstr("voice:user1:6"));
}

TEST_F(WireCalls, ToAnEditBufferNothingThatIsStoredIsOverwritten) {
  receiveVoice();
  serve();
  send("voice:user1:6", R"({"pace": "none", "to-edit-buffer": true})");
  EXPECT_EQ(bda_wire_effects(wire, &json), BDA_OK);
  EXPECT_EQ(take(), "overwrites: voice:edit\n");
  EXPECT_EQ(run(), BDA_OK) << wireError();
  take();
  close();
  EXPECT_THAT(contents(other), Not(HasSubstr("voice:user1:6")));
  EXPECT_EQ(nlohmann::json::parse(shownBy(other, "voice:edit"))["voice"],
            nlohmann::json::parse(shownBy(library))["voice"]);
}

TEST_F(WireCalls, FilesAreSentWhereTheyAreWhole) {
  bda_files* files = nullptr;
  ASSERT_EQ(bda_files_new(&files), BDA_OK);
  Bytes bytes;
  for (const Bytes& message : unitOf(kVoice, BDA::List::normalVoice, 3))
    bytes.insert(bytes.end(), message.begin(), message.end());
  EXPECT_EQ(bda_wire_send_files(files, nullptr, &wire), BDA_UNUSABLE) << "there are none";
  bda_wire_close(wire);
  ASSERT_EQ(bda_files_add(files, "a.syx", bytes.data(), bytes.size()), BDA_OK);
  serve();
  EXPECT_EQ(bda_wire_send_files(files, R"({"pace": "none"})", &wire), BDA_OK) << wireError();
  EXPECT_EQ(run(), BDA_OK);
  take();
  EXPECT_EQ(out, bytes);
  close();
  EXPECT_THAT(contents(other), HasSubstr("voice:user1:6"));
  bytes[bytes.size() - 2] ^= 1;
  ASSERT_EQ(bda_files_add(files, "b.syx", bytes.data(), bytes.size()), BDA_OK);
  EXPECT_EQ(bda_wire_send_files(files, nullptr, &wire), BDA_REFUSED);
  EXPECT_THAT(wireError(), AllOf(HasSubstr("voice:user1:6"), HasSubstr("it is not whole: nothing is sent")));
  EXPECT_EQ(bda_wire_is_done(wire), 1);
  EXPECT_EQ(bda_wire_results(wire, &json), BDA_MISUSED);
  bda_files_close(files);
}

TEST_F(WireCalls, PortsThatTakeNoPiecesGetWholeMessagesAtThePace) {
  receiveVoice();
  send("voice:user1:6", R"({"whole-messages": true})");
  const std::int64_t start = now;
  std::vector<Bytes> sent;
  while (bda_wire_is_done(wire) == 0) {
    std::int64_t due = BDA_NEVER;
    if (Bytes bytes = tick(wire, &due); !bytes.empty()) sent.push_back(std::move(bytes));
    if (due == BDA_NEVER) break;
    now = std::max(now, due);
  }
  EXPECT_EQ(sent.size(), unitOf(kVoice, BDA::List::normalVoice).size());
  std::int64_t bytes = 0;
  for (const Bytes& message : sent) {
    EXPECT_TRUE(message.front() == 0xF0 && message.back() == 0xF7);
    bytes += std::int64_t(message.size());
  }
  EXPECT_EQ(now - start, bytes * kSecond / 3'125);
}

TEST_F(WireCalls, AnInstrumentTellsEachMessage) {
  bda_library* same = nullptr;
  ASSERT_EQ(bda_library_clone(other, &same), BDA_OK);
  serve();
  std::uint64_t offset = 0;
  for (const Bytes& message : unitOf(kVoice, BDA::List::normalVoice, 3)) {
    feed(instrument, message);
    EXPECT_EQ(bda_wire_results(instrument, &json), BDA_OK) << bda_wire_error(instrument);
    const std::string told = take();
    ASSERT_EQ(bda_library_handle(same, 1, message.data(), message.size(), nullptr, nullptr, &json), BDA_OK);
    std::string expected = take();
    expected.replace(expected.find("null,\"port\""), 4, std::to_string(offset));
    EXPECT_EQ(told, expected);
    offset += message.size();
  }
  bda_library_close(same);
  EXPECT_EQ(bda_wire_is_done(instrument), 0);
  feed(instrument, damaged(blockDump({0x00, 0x00, 0x00})));
  EXPECT_EQ(bda_wire_results(instrument, nullptr), BDA_REFUSED);
  EXPECT_THAT(bda_wire_error(instrument), StartsWith("message "));
  const Bytes begun = dump(kVoice);
  feed(instrument, begun);
  feed(instrument, {0xF0, 0x7D, 0x00});
  EXPECT_EQ(bda_wire_stop(instrument), BDA_OK);
  EXPECT_EQ(bda_wire_is_done(instrument), 1);
  EXPECT_EQ(bda_wire_results(instrument, &json), BDA_REFUSED);
  EXPECT_EQ(linesIn(take()), 1);
  EXPECT_THAT(bda_wire_error(instrument), AllOf(HasSubstr("3 bytes dropped"), HasSubstr("voice:user1:6")));
}

}  // namespace
}  // namespace Editor
