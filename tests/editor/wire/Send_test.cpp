#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "convert/Batch.h"
#include "editor/wire/SendFixture.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;
constexpr BulkAddress kElement{0x41, 0x02, 0x00};

class SendTest : public SendFixture {};

const Send::Options kVerify{.verifies = true, .onlyChanged = false, .terms = {}};

TEST_F(SendTest, SendsAtThePaceOfTheWire) {
  EXPECT_EQ(statesOf(send({})), std::vector(3, State::sent));
  std::uint64_t bytes = 0;
  for (const Send::Unit& unit : units)
    for (const Bytes& message : unit.messages) bytes += message.size();
  EXPECT_NEAR(double(elapsed.count()), double(kCablePace.timeOf(bytes).count()), 20'000);
  for (const Send::Unit& unit : units) EXPECT_TRUE(isThere(unit));
}

TEST_F(SendTest, ReadsBackWhatItSent) {
  const std::vector<SentUnit> all = send({}, kVerify);
  EXPECT_EQ(statesOf(all), std::vector(3, State::equal));
  for (const SentUnit& unit : all) EXPECT_EQ(unit.tries, 3u) << "two may have been echoes";
}

TEST_F(SendTest, AnEchoIsNoAnswer) {
  EXPECT_EQ(statesOf(send({.echoes = true}, kVerify)), std::vector(3, State::equal));
  units[0].messages = unitOf(kVoice, BDA::List::normalVoice, 5);
  const std::vector<SentUnit> full = send({.echoes = true, .faults = parseFaults("full=1")}, kVerify);
  EXPECT_EQ(statesOf(full), (std::vector{State::different, State::equal, State::equal}));
  std::size_t messages = 0;
  for (const Send::Unit& unit : units) messages += unit.messages.size();
  const std::vector<Fault> deaf = parseFaults("deaf=1:" + std::to_string(messages));
  EXPECT_EQ(statesOf(send({.echoes = true, .faults = deaf}, kVerify)), std::vector(3, State::unanswered));
}

TEST_F(SendTest, SaysWhichParameterIsAnother) {
  units.resize(1);
  send({});
  const auto element = std::ranges::find_if(
      units[0].messages, [](const Bytes& message) { return readMessage(message).address == kElement; });
  const Bytes before = *element;
  Bytes data(before.begin() + 10, before.end() - 2);
  data[3] ^= 1;
  *element = dump(kElement, data);
  const std::vector<ReadBackDifference> found = ReadBack().compare(units[0].messages, answerOf(target, kVoice));
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].address, kElement);
  EXPECT_EQ(found[0].dataByte, 2u) << "the first of the two that carry it";
  EXPECT_EQ(found[0].path, "voice.element[2].wave[0]");
  EXPECT_NE(found[0].sent, found[0].read);
}

TEST_F(SendTest, LeavesOutWhatIsThereAlready) {
  send({});
  units[1].messages = unitOf(kOther, BDA::List::normalVoice, 9);
  EXPECT_EQ(statesOf(send({}, {.verifies = false, .onlyChanged = true, .terms = {}})),
            (std::vector{State::equal, State::sent, State::equal}));
  EXPECT_TRUE(isThere(units[1]));
}

TEST_F(SendTest, AFileDumpIsComparedByteByByte) {
  const std::vector<Bytes> file = answerOf(target, {0x0C, 0x0A, 0x05});
  receive(target, units[0].messages);
  const std::vector<Bytes> full = answerOf(target, {0x0C, 0x0A, 0x05});
  units = {{BulkAddress{0x0C, 0x0A, 0x05}, full, Send::Trigger{0, writeTrigger()}}};
  EXPECT_EQ(statesOf(send({}, kVerify)), std::vector{State::equal});
  units = {{BulkAddress{0x0C, 0x0A, 0x07}, {full.front()}, Send::Trigger{0, writeTrigger()}}};
  readdress(units[0].messages[0], {0x0C, 0x0A, 0x07});
  EXPECT_EQ(statesOf(send({.faults = parseFaults("full=1")}, kVerify)), std::vector{State::different});
  EXPECT_EQ(statesOf(send({}, kVerify)), std::vector{State::equal});
}

// What the file dump holds stays, for its trigger stands behind the unit.
TEST_F(SendTest, ATriggerGoesOutWhereItStands) {
  EmbeddedEditor source;
  receive(source, unitOf(kVoice, BDA::List::normalVoice, 7));
  const BulkAddress file{0x0C, 0x0A, 0x05};
  const std::vector<Bytes> stored = answerOf(source, file);
  units = {{file, stored, Send::Trigger{0, writeTrigger(), 1}}, units[0], units[2]};
  EXPECT_EQ(statesOf(send({})), std::vector(3, State::sent));
  EXPECT_EQ(answerOf(target, file), stored);
  EXPECT_NEAR(double(elapsed.count()), double(timeOfAll().count()), 20'000);
}

TEST_F(SendTest, ThatIsStoppedEndsTheUnitThatHasBegun) {
  Instrument instrument(target, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
  std::vector<SentUnit> all;
  Send end(units, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes),
           [&](SentUnit unit) { all.push_back(std::move(unit)); });
  LoopPort port(instrument);
  run(end, port, [&] {
    if (port.now() > 100ms) end.stop();
    return false;
  });
  ASSERT_EQ(all.size(), 1u);
  EXPECT_TRUE(isThere(units[0]));
  EXPECT_TRUE(target.openUnits().empty());
  EXPECT_FALSE(isThere(units[1]));
}

// With each fault, in either direction, at rates from 0.1 % to 20 %: 1,024 runs.
TEST_F(SendTest, NothingIsSaidToBeEqualThatIsNot) {
  std::size_t missed = 0;
  forEachFault([&](const std::string& faults, bool /*isRare*/, std::uint64_t seed) {
    for (Send::Unit& unit : units)
      for (Bytes& message : unit.messages)
        if (message.size() > 20) message = blockDump(*readMessage(message).address, std::uint8_t(seed % 7 + 1));
    const std::vector<SentUnit> all =
        send({.echoes = seed % 2 == 1, .faults = parseFaults(faults), .seed = seed}, kVerify);
    ASSERT_EQ(all.size(), units.size());
    for (const SentUnit& unit : all) {
      if (unit.state == State::equal)
        ASSERT_TRUE(isThere(units[unit.unit]));
      else
        ++missed;
    }
  });
  EXPECT_GT(missed, 0u) << "some faults cost something";
}

// The instrument has each unit whole, or as if it had never been sent.
TEST_F(SendTest, AWireThatIsCutAtAnyByteLeavesNoHalfUnit) {
#ifdef BDA_SAMPLED
  constexpr std::uint64_t kStep = 97;
#else
  constexpr std::uint64_t kStep = 1;
#endif
  std::size_t cuts = 0;
  for (std::uint64_t byte = 0;; byte += kStep) {
    EmbeddedEditor fresh;
    Instrument instrument(fresh, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    std::size_t told = 0;
    Send end(units, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), [&](const SentUnit& /*unit*/) { ++told; });
    LoopPort port(instrument);
    port.hangUpAt(byte);
    try {
      run(end, port, [] { return false; });
      break;
    } catch (const PortError& error) {
      ASSERT_EQ(error.kind(), PortError::Kind::gone);
    }
    ++cuts;
    ASSERT_GE(fresh.library().contents().size(), told) << byte;
    for (const ContentId content : fresh.library().contents()) {
      const auto unit = std::ranges::find_if(units, [&](const Send::Unit& one) {
        return contentOfHeader({one.asked->mid, one.asked->lo}) == content;
      });
      ASSERT_TRUE(ReadBack().compare(unit->messages, answerOf(fresh, *unit->asked)).empty()) << byte;
    }
  }
  EXPECT_GT(cuts, 30u);
}

}  // namespace
}  // namespace Editor
