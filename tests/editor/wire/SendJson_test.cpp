#include "wire/SendJson.h"

#include <gtest/gtest.h>

#include "editor/wire/WireFixture.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

class SendJson : public testing::Test {
 protected:
  static SendPlan planOfVoice() {
    BatchBuilder builder;
    for (const Bytes& message : unitOf({0x0E, 0x0A, 0x05}, BDA::List::normalVoice)) builder.add(message);
    return SendPlan(builder.finish());
  }
  std::string lineOf(const SentUnit& unit) const { return jsonLine(toJson(plan, unit)); }

  const SendPlan plan = planOfVoice();
};

TEST_F(SendJson, aUnitHasItsHeader) {
  EXPECT_EQ(lineOf({0, SentUnit::State::unanswered, {}, 1, "silent"}),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"unanswered","differences":[],"reason":"silent"})");
}

TEST_F(SendJson, eachDifferenceHasWhatWasSentAndRead) {
  const SentUnit unit{0,
                      SentUnit::State::different,
                      {{{0x41, 0x02, 0x00}, 2, "voice.element[2].wave[0]", std::int64_t{129}, std::int64_t{128}},
                       {{0x0C, 0x0A, 0x05}, 4, std::nullopt, std::int64_t{1}, std::monostate()},
                       {{0x41, 0x03, 0x00}, 0, std::nullopt, std::monostate(), std::monostate(), true}},
                      1,
                      ""};
  EXPECT_EQ(lineOf(unit),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"different","differences":[)"
            R"({"address":"41 02 00","dataByte":2,"path":"voice.element[2].wave[0]","sent":129,"read":128},)"
            R"({"address":"0C 0A 05","dataByte":4,"path":null,"sent":1,"read":null},)"
            R"({"address":"41 03 00","dataByte":0,"path":null,"sent":null,"read":null}],"reason":""})");
}

TEST_F(SendJson, whatWasOtherwiseBeforeIsNoDifference) {
  const SentUnit unit{
      0, SentUnit::State::sent, {}, 1, "", {{{0x41, 0x02, 0x00}, 2, "x", std::int64_t{1}, std::int64_t{2}}}};
  EXPECT_EQ(lineOf(unit), R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"sent","differences":[],"reason":"",)"
                          R"("before":[{"address":"41 02 00","dataByte":2,"path":"x","sent":1,"read":2}]})");
}

}  // namespace
}  // namespace Editor
