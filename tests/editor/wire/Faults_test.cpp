#include "wire/Faults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <numeric>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "editor/messages/BulkMessages.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

Bytes numbered(unsigned number) {
  return dump({0x41, 0x02, 0x00}, {std::uint8_t(number >> 7), std::uint8_t(number & 0x7F)});
}

std::vector<Pacer::Message> answer(unsigned count) {
  std::vector<Pacer::Message> messages;
  for (unsigned number = 0; number < count; ++number) messages.push_back({numbered(number)});
  return messages;
}

std::vector<Bytes> bytesOf(const std::vector<Pacer::Message>& messages) {
  std::vector<Bytes> bytes;
  for (const Pacer::Message& message : messages) bytes.push_back(message.bytes);
  return bytes;
}

Faults faults(const char* list, std::uint64_t seed = 1) { return Faults(parseFaults(list), seed); }

std::string refusalOf(const std::string& list) {
  try {
    parseFaults(list);
    return "";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(Faults, AreNamesRatesAndAmounts) {
  const std::vector<Fault> list = parseFaults("drop=0.25,in-flip=5%,delay=1:300,wrong-device=1e-3");
  ASSERT_EQ(list.size(), 4u);
  EXPECT_EQ(list[0].kind, Fault::Kind::drop);
  EXPECT_FALSE(list[0].isIncoming);
  EXPECT_EQ(list[0].rate, 0.25);
  EXPECT_TRUE(list[1].isIncoming);
  EXPECT_DOUBLE_EQ(list[1].rate, 0.05);
  EXPECT_EQ(list[2].amount, 300u);
  EXPECT_EQ(list[3].kind, Fault::Kind::wrongDevice);
  for (const std::string& name : faultNames()) EXPECT_EQ(refusalOf(name + "=1"), "") << name;
}

TEST(Faults, AreRefusedInWords) {
  EXPECT_EQ(refusalOf("dorp=0.1"), "fault \"dorp=0.1\": there is none of that name: did you mean drop?");
  EXPECT_THAT(refusalOf("in-repeat=0.1"), testing::HasSubstr("there is none of that name: there are drop, "));
  EXPECT_EQ(refusalOf("drop=1%,"), "fault \"\": expected a name, as in drop=1%,delay=0.05:300");
  EXPECT_EQ(refusalOf("drop"), "fault \"drop\": expected its rate behind it, as in drop=0.01 or drop=1%");
  for (const char* const rate : {"", "1.1", "-0.1", "101%", "nan", "inf", "0.5x", "%", "0,5"})
    EXPECT_NE(refusalOf(std::string("drop=") + rate), "") << rate;
  EXPECT_EQ(refusalOf("drop=1:5"), "fault \"drop=1:5\": it has a rate only");
  for (const char* const amount : {"", "-1", "1.5", "x", "1000000001"})
    EXPECT_NE(refusalOf(std::string("delay=1:") + amount), "") << amount;
  EXPECT_NE(refusalOf("slow=1:0"), "");
  EXPECT_EQ(refusalOf("deaf=1:0"), "");
  EXPECT_NE(refusalOf(""), "");
  EXPECT_NE(refusalOf("drop=1,"), "");
  EXPECT_EQ(refusalOf("drop=1%,flip=1%,drop=2%"), "fault \"drop=2%\": it is there twice");
  EXPECT_EQ(refusalOf("drop=1%,in-drop=1%"), "");
}

TEST(Faults, ChangeNothingAtRate0) {
  for (const std::string& name : faultNames()) {
    Faults none = faults((name + "=0").c_str());
    EXPECT_EQ(bytesOf(none.send(answer(50))), bytesOf(answer(50))) << name;
    EXPECT_EQ(none.receive(numbered(1)), numbered(1));
    EXPECT_FALSE(none.isDeaf() || none.isFull());
  }
}

TEST(Faults, HappenAtTheirRate) {
  Faults dropping = faults("drop=10%");
  std::size_t left = 0;
  for (int i = 0; i < 100; ++i) left += dropping.send(answer(100)).size();
  EXPECT_NEAR(double(left), 9'000, 200);
}

TEST(Faults, DoTheSameForTheSameSeed) {
  const char* const all = "drop=.1,repeat=.1,flip=.1,cut=.1,clock=.1,stall=.1,reorder=.1,wrong-device=.1,chatter=.1";
  EXPECT_EQ(bytesOf(faults(all, 7).send(answer(500))), bytesOf(faults(all, 7).send(answer(500))));
  EXPECT_NE(bytesOf(faults(all, 7).send(answer(500))), bytesOf(faults(all, 8).send(answer(500))));
}

TEST(Faults, FlipOneBit) {
  const auto bitsIn = [](const Bytes& message, const Bytes& whole) {
    int bits = 0;
    for (std::size_t i = 0; i < message.size(); ++i) bits += std::popcount(unsigned(message[i] ^ whole[i]));
    return bits;
  };
  const std::vector<Bytes> flipped = bytesOf(faults("flip=1").send(answer(100)));
  for (unsigned i = 0; i < 100; ++i) EXPECT_EQ(bitsIn(flipped[i], numbered(i)), 1);
  for (unsigned seed = 0; seed < 200; ++seed)
    EXPECT_EQ(bitsIn(faults("in-flip=1", seed).receive(numbered(5)), numbered(5)), 1);
}

TEST(Faults, CutMessagesBeforeTheirEnd) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    const Bytes message = faults("cut=1", seed).send(answer(1)).front().bytes;
    ASSERT_LT(message.size(), numbered(0).size());
    ASSERT_FALSE(message.empty());
    EXPECT_TRUE(std::equal(message.begin(), message.end(), numbered(0).begin()));
  }
}

TEST(Faults, KeepWhatTheyOnlyMove) {
  EXPECT_EQ(bytesOf(faults("repeat=1").send(answer(2))),
            (std::vector<Bytes>{numbered(0), numbered(0), numbered(1), numbered(1)}));
  EXPECT_EQ(bytesOf(faults("reorder=1").send(answer(2))), (std::vector<Bytes>{numbered(1), numbered(0)}));
  std::vector<Bytes> clocked = bytesOf(faults("clock=1").send(answer(20)));
  for (unsigned i = 0; i < 20; ++i) {
    ASSERT_EQ(clocked[i].size(), numbered(i).size() + 1);
    std::erase_if(clocked[i], [](std::uint8_t byte) { return byte >= 0xF8; });
    EXPECT_EQ(clocked[i], numbered(i));
  }
  std::vector<Bytes> chattered = bytesOf(faults("chatter=1").send(answer(20)));
  ASSERT_EQ(chattered.size(), 40u);
  for (unsigned i = 0; i < 20; ++i) EXPECT_EQ(chattered[2 * i + 1], numbered(i));
  const std::vector<Pacer::Message> stalled = faults("stall=1:700").send(answer(1));
  ASSERT_EQ(stalled.size(), 1u);
  EXPECT_EQ(stalled[0].bytes, numbered(0));
  ASSERT_TRUE(stalled[0].stall);
  EXPECT_EQ(stalled[0].stall->time, 700ms);
  EXPECT_GT(stalled[0].stall->at, 0u);
  EXPECT_LT(stalled[0].stall->at, numbered(0).size());
  EXPECT_EQ(faults("delay=1:300").send(answer(1)).front().delay, 300ms);
  EXPECT_EQ(faults("slow=1:50").send(answer(1)).front().pace, Pace{50});
}

TEST(Faults, HappenInTheSameOrderHoweverTheyAreListed) {
  const auto sent = [](const std::string& list) {
    std::vector<std::tuple<Bytes, WireTime, std::size_t, WireTime>> all;
    for (const Pacer::Message& one : faults(list.c_str(), 5).send(answer(20))) {
      const Pacer::Stall stall = one.stall.value_or(Pacer::Stall{});
      all.emplace_back(one.bytes, one.delay, stall.at, stall.time);
    }
    return all;
  };
  const std::string stall = "stall=1:50";
  for (const char* const other : {"chatter=.5", "repeat=.5", "reorder=.5", "wrong-device=.5", "delay=.5:100", "drop=.5",
                                  "flip=.5", "cut=.5", "clock=.5", "slow=.5"})
    EXPECT_EQ(sent(stall + "," + other), sent(other + ("," + stall))) << other;
  EXPECT_EQ(sent("chatter=.5,reorder=.5,repeat=.5,cut=.5"), sent("cut=.5,repeat=.5,reorder=.5,chatter=.5"));
}

TEST(Faults, HitWholeMessagesHoweverTheyAreStalled) {
  const auto of = [](const char* list) { return bytesOf(faults(list).send(answer(2))); };
  EXPECT_EQ(of("stall=1:50,repeat=1"), (std::vector<Bytes>{numbered(0), numbered(0), numbered(1), numbered(1)}));
  EXPECT_EQ(of("stall=1:50,reorder=1"), (std::vector<Bytes>{numbered(1), numbered(0)}));
  const std::vector<Pacer::Message> chattered = faults("stall=1:50,chatter=1").send(answer(2));
  ASSERT_EQ(chattered.size(), 4u);
  for (const std::size_t i : {0u, 1u}) {
    EXPECT_EQ(chattered[2 * i + 1].bytes, numbered(unsigned(i)));
    EXPECT_TRUE(chattered[2 * i + 1].stall);
    EXPECT_FALSE(chattered[2 * i].stall) << "it is no message of the instrument";
  }
  const std::vector<Pacer::Message> cut = faults("stall=1:50,cut=1").send(answer(50));
  for (const Pacer::Message& one : cut) EXPECT_TRUE(!one.stall || one.stall->at < one.bytes.size());
}

TEST(Faults, GiveAMessageAnotherDevice) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    Bytes message = faults("wrong-device=1", seed).send(answer(1)).front().bytes;
    EXPECT_NE(message[2] & 0x0F, 0);
    message[2] &= 0xF0;
    EXPECT_EQ(message, numbered(0));
  }
}

TEST(Faults, BeginBehindSoMany) {
  Faults all = faults("deaf=1:3,full=1:2");
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(all.isDeaf(), i > 3);
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(all.isFull(), i > 2);
    EXPECT_EQ(all.isFull(), i > 2) << "what is not stored does not count";
    all.hasStored();
  }
}

}  // namespace
}  // namespace Editor
