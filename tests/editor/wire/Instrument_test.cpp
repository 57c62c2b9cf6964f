#include "wire/Instrument.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};

struct Told final : Instrument::Observer {
  void handled(std::uint64_t number, std::uint64_t offset, std::span<const std::uint8_t> /*message*/,
               const Record& record) override {
    text += std::to_string(number) + " at " + std::to_string(offset) + ": " + wordOf(record.outcome) + "\n";
  }
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    text += std::to_string(count) + " at " + std::to_string(offset) + ": " + describe(reason) + "\n";
  }
  void tooLong(std::uint64_t number, std::size_t length) override {
    text += std::to_string(number) + ": too long, " + std::to_string(length) + "\n";
  }
  std::string text;
};

class InstrumentTest : public testing::Test {
 protected:
  // All that it sends by then.
  static Bytes sentBy(Instrument& instrument, WireTime now) {
    Bytes all;
    for (std::span<const std::uint8_t> bytes = instrument.toSend(now); !bytes.empty(); bytes = instrument.toSend(now)) {
      all.insert(all.end(), bytes.begin(), bytes.end());
      instrument.sent(bytes.size());
    }
    return all;
  }
  static Bytes joined(const std::vector<Bytes>& messages) {
    Bytes all;
    for (const Bytes& message : messages) all.insert(all.end(), message.begin(), message.end());
    return all;
  }

  EmbeddedEditor editor;
  Told told;
};

TEST_F(InstrumentTest, AnswersWhatItIsAskedAndTellsEachMessage) {
  receive(editor, unitOf(kMaster, BDA::List::master));
  Instrument instrument(editor, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  Bytes asked = request(kMaster);
  asked.insert(asked.begin(), 0x01);
  for (const std::uint8_t byte : asked) instrument.receive({&byte, 1}, 0s);
  EXPECT_EQ(told.text, "1 at 0: outside of any message\n1 at 1: answered\n");
  EXPECT_EQ(sentBy(instrument, 0s), joined(unitOf(kMaster, BDA::List::master)));
}

TEST_F(InstrumentTest, StoppedItFinishesTheMessageThatHasBegunAndHandlesNoMore) {
  const std::vector<Bytes> unit = unitOf(kMaster, BDA::List::master);
  receive(editor, unit);
  Instrument instrument(editor, {}, Pacer(Pace{1000}, {}, Pacer::Takes::bytes), told);
  instrument.receive(request(kMaster), 0s);
  Bytes all = sentBy(instrument, 0s);
  ASSERT_LT(all.size(), unit[0].size());
  instrument.stop();
  EXPECT_FALSE(instrument.isDone());
  instrument.receive(request(kMaster), 1ms);
  for (WireTime now = 1ms; !instrument.isDone() && now < 10s; now += 1ms) {
    instrument.pass(now);
    for (const std::uint8_t byte : sentBy(instrument, now)) all.push_back(byte);
  }
  EXPECT_EQ(all, unit[0]);
  EXPECT_EQ(told.text, "1 at 0: answered\n");
}

TEST_F(InstrumentTest, AfterItTheLibraryHasRoomAgain) {
  {
    Instrument instrument(editor, {.faults = parseFaults("full=1")}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
    instrument.receive(joined(unitOf(kMaster, BDA::List::master)), 0s);
  }
  EXPECT_TRUE(editor.library().contents().empty());
  receive(editor, unitOf(kMaster, BDA::List::master));
  EXPECT_EQ(editor.library().contents().size(), 1u);
}

TEST_F(InstrumentTest, StoppedItFinishesTheMessageThatStandsStill) {
  const std::vector<Bytes> unit = unitOf(kMaster, BDA::List::master);
  receive(editor, unit);
  Instrument instrument(editor, {.faults = parseFaults("stall=1:1000")}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(request(kMaster), 0s);
  Bytes all = sentBy(instrument, 0s);
  ASSERT_LT(all.size(), unit[0].size());
  instrument.stop();
  EXPECT_FALSE(instrument.isDone());
  for (const std::uint8_t byte : sentBy(instrument, 1s)) all.push_back(byte);
  EXPECT_EQ(all, unit[0]);
  EXPECT_TRUE(instrument.isDone());
}

TEST_F(InstrumentTest, StoppedItWaitsOnlyForAWhileForSomebodyWhoTakesWhatHasBegun) {
  receive(editor, unitOf(kMaster, BDA::List::master));
  Instrument instrument(editor, {}, Pacer(Pace{1000}, {}, Pacer::Takes::bytes), told);
  instrument.receive(request(kMaster), 0s);
  ASSERT_FALSE(sentBy(instrument, 0s).empty());
  instrument.stop();
  for (WireTime now = 1s; now <= 3s; now += 5ms) {
    ASSERT_FALSE(instrument.toSend(now).empty()) << now.count();
    instrument.pass(now);
    EXPECT_FALSE(instrument.isDone());
  }
  instrument.pass(3'001ms);
  EXPECT_TRUE(instrument.isDone());
}

TEST_F(InstrumentTest, EchoesOnlyWhereItIsAskedTo) {
  const Bytes unit = joined(unitOf(kMaster, BDA::List::master));
  for (const bool echoes : {false, true}) {
    Instrument instrument(editor, {.echoes = echoes}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
    instrument.receive(unit, 0s);
    EXPECT_EQ(sentBy(instrument, 0s), echoes ? unit : Bytes());
  }
}

TEST_F(InstrumentTest, TellsWhatAFaultHasLeftOfAMessage) {
  Instrument instrument(editor, {.faults = parseFaults("in-cut=1")}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(Bytes{0x01, 0x02}, 0s);
  instrument.receive(request(kMaster), 0s);
  EXPECT_NE(told.text.find("at 2: message without end\n"), std::string::npos) << told.text;
  EXPECT_EQ(told.text.find("answered"), std::string::npos) << told.text;
}

TEST_F(InstrumentTest, StoresNothingThatIsFull) {
  Instrument instrument(editor, {.faults = parseFaults("full=1:1")}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(joined(unitOf(kMaster, BDA::List::master)), 0s);
  instrument.receive(joined(unitOf({0x0E, 0x70, 0x04}, BDA::List::master)), 0s);
  EXPECT_EQ(editor.library().contents().size(), 1u);
}

TEST_F(InstrumentTest, IsFullBehindSoManyThatWereStored) {
  Instrument instrument(editor, {.faults = parseFaults("full=1:1")}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  Bytes broken = dump(footerOf(kMaster));
  broken[broken.size() - 2] ^= 1U;
  instrument.receive(broken, 0s);
  instrument.receive(dump(footerOf(kMaster)), 0s);  // of nothing
  EXPECT_EQ(told.text.find("stored"), std::string::npos) << told.text;
  instrument.receive(joined(unitOf(kMaster, BDA::List::master)), 0s);
  instrument.receive(joined(unitOf({0x0E, 0x70, 0x04}, BDA::List::master)), 0s);
  EXPECT_EQ(editor.library().contents().size(), 1u);
}

TEST_F(InstrumentTest, TellsWhatThePortCannotCarryAndSendsTheRest) {
  const std::vector<Bytes> unit = unitOf(kMaster, BDA::List::master);
  receive(editor, unit);
  std::size_t longest = 0;
  Bytes rest;
  for (const Bytes& message : unit) longest = std::max(longest, message.size());
  for (const Bytes& message : unit)
    if (message.size() < longest) rest.insert(rest.end(), message.begin(), message.end());
  Instrument instrument(editor, {.longestMessage = longest - 1}, Pacer(kNoPace, {}, Pacer::Takes::messages), told);
  instrument.receive(request(kMaster), 0s);
  EXPECT_EQ(told.text.find("1 at 0: answered\n1: too long, " + std::to_string(longest) + "\n"), 0u) << told.text;
  EXPECT_EQ(sentBy(instrument, 0s), rest);
}

TEST_F(InstrumentTest, BytesThatAreLostEndTheMessageThatHasBegun) {
  Instrument instrument(editor, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(Bytes{0xF0, 0x01}, 0s);
  instrument.lost(5, 0s);
  instrument.receive(request(kMaster), 0s);
  EXPECT_EQ(told.text.find("2 at 0: message without end\n5 at 2: came faster than it was taken\n1 at 7: "), 0u)
      << told.text;
}

TEST_F(InstrumentTest, TellsAMessageThatHasNoEndWhenNothingMoreComes) {
  Instrument instrument(editor, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(Bytes{0x01, 0xF0, 0x7D, 0x20}, 0s);
  EXPECT_EQ(told.text, "");
  instrument.finish();
  EXPECT_EQ(told.text, "1 at 0: outside of any message\n3 at 1: message without end\n");
}

TEST_F(InstrumentTest, ForgetsWhatNobodyTakes) {
  receive(editor, unitOf(kMaster, BDA::List::master));
  Instrument instrument(editor, {}, Pacer(kNoPace, {}, Pacer::Takes::bytes), told);
  instrument.receive(request(kMaster), 0s);
  for (WireTime now = 0s; now <= 2s; now += 5ms) {
    ASSERT_FALSE(instrument.toSend(now).empty()) << now.count();
    instrument.sent(0);
    instrument.pass(now);
  }
  instrument.pass(2'001ms);
  EXPECT_FALSE(instrument.due().has_value());
}

}  // namespace
}  // namespace Editor
