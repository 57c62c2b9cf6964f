// What a transcript says of messages that a wire loses.

#include "transcript/Transcript.h"

#include <gtest/gtest.h>

#include <map>

#include "editor/wire/WireFixture.h"
#include "midi/Hex.h"

namespace Editor {
namespace {

using Json = nlohmann::ordered_json;
using namespace std::chrono_literals;

constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};

// An instrument with faults, whose messages are written down.
class TranscriptTest : public testing::Test, public Instrument::Observer, public StreamJoiner::Receiver {
 protected:
  TranscriptTest() {
    receive(editor, unitOf(kMaster, BDA::List::master));
    editor.setListener(&transcript);
  }

  void serve(const char* faults, std::uint64_t seed) {
    instrument.emplace(editor, Instrument::Options{.faults = parseFaults(faults), .seed = seed},
                       Pacer(kNoPace, {}, Pacer::Takes::bytes), *this);
  }
  // The messages of its answer that come through.
  std::size_t ask() {
    const std::size_t before = came;
    instrument->receive(request(kMaster), 0s);
    for (std::span<const std::uint8_t> bytes = instrument->toSend(0s); !bytes.empty(); bytes = instrument->toSend(0s)) {
      joiner.feed(bytes);
      instrument->sent(bytes.size());
    }
    return came - before;
  }

  std::vector<Json> lines;
  Transcript transcript{{.verb = "instrument", .sent = Transcript::Sent::later, .hearsHanded = true},
                        [] { return 0s; },
                        [this](const std::string& line) { lines.push_back(Json::parse(line)); }};
  EmbeddedEditor editor;
  std::optional<Instrument> instrument;

 private:
  void handled(std::uint64_t /*number*/, std::uint64_t /*offset*/, std::span<const std::uint8_t> /*message*/,
               const Record& /*record*/) override {}
  void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
  void tooLong(std::uint64_t /*number*/, std::size_t /*length*/) override {}
  void spoiled(std::span<const std::uint8_t> message) override { transcript.keptBack(message); }
  void goesOut(const std::optional<Pacer::Answer>& answer) override { transcript.goesOut(answer); }

  void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override {
    transcript.left(bytes);
    ++came;
  }

  StreamJoiner joiner{*this};
  std::size_t came = 0;
};

TEST_F(TranscriptTest, WhatGoesOutIsOfTheMessageThatItAnswersAmongEqualOnes) {
  for (const char* const faults : {"deaf=0.5", "drop=0.5"}) {
    for (std::uint64_t seed = 0; seed < 4; ++seed) {
      lines.clear();
      std::map<std::uint64_t, std::size_t> expected;
      serve(faults, seed);
      std::uint64_t asked = 0;
      for (; asked < 6; ++asked) expected[asked + 1] = ask();
      instrument.reset();
      transcript.finish();
      std::map<std::uint64_t, std::size_t> told;
      for (asked = 1; asked <= 6; ++asked) told[asked] = 0;
      for (const Json& line : lines)
        if (line.value("direction", "") == "out" && line.value("passedOn", true)) ++told[line.value("message", 0U)];
      EXPECT_EQ(told, expected) << faults << ", seed " << seed;
    }
  }
}

TEST_F(TranscriptTest, WhatArrivesHasALineAlsoWhereAFaultGetsIt) {
  const std::string asked = formatHex(request(kMaster));
  for (const char* const faults : {"in-drop=1", "in-cut=1", "in-flip=1"}) {
    lines.clear();
    serve(faults, 4);
    ask();
    instrument.reset();
    transcript.finish();
    std::vector<Json> arrived;
    for (const Json& line : lines)
      if (line.value("direction", "") == "in") arrived.push_back(line);
    ASSERT_FALSE(arrived.empty()) << faults;
    EXPECT_EQ(arrived[0].at("bytes"), asked) << faults;
    EXPECT_EQ(arrived[0].at("passedOn"), false) << faults;
    EXPECT_FALSE(arrived[0].contains("outcome")) << faults;
    for (std::size_t i = 1; i < arrived.size(); ++i) EXPECT_NE(arrived[i].at("bytes"), asked) << faults;
  }
}

}  // namespace
}  // namespace Editor
