#include "messages/ReadingJson.h"

#include <gtest/gtest.h>

#include "acceptance/Library.h"
#include "editor/messages/BulkMessages.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

const std::string kFile = "a.syx";

std::string lineOf(const Bytes& message) { return jsonLine(toJson({7, kFile, 120, message}, readMessage(message))); }

TEST(ReadingJson, aMessageHasWhatItSaysOfItself) {
  EXPECT_EQ(lineOf(damaged(blockDump({0x0E, 0x0A, 0x05}))),
            R"({"message":7,"file":"a.syx","offset":120,"kind":"dump","verdict":"checksum wrong",)"
            R"("carries":"normal voice user 1, 006: header","device":1,"address":"0E 0A 05","name":"voice:user1:6",)"
            R"("dataBytes":0,"checksum":98,"expectedChecksum":99,"bytes":12,"note":"checksum 62, expected 63"})");
  EXPECT_EQ(lineOf({0xF0, 0x41, 0xF7}),
            R"({"message":7,"file":"a.syx","offset":120,"kind":"foreign","verdict":"not for this instrument",)"
            R"("carries":"another instrument's message","bytes":3})");
}

TEST(ReadingJson, aMessageNamesWhatItRemoves) {
  const nlohmann::ordered_json all = toJson({1, kFile, 0, {}}, readMessage(dump({0x11, 0x01, 0x00})));
  EXPECT_EQ(jsonLine(all["removes"]), R"(["mix"])");
  const nlohmann::ordered_json one = toJson({1, kFile, 0, {}}, readMessage(fileDump({0x0C, 0x0A, 0x05}, "", {})));
  EXPECT_EQ(jsonLine(one["removes"]), R"(["voice:user1:6"])");
}

TEST(ReadingJson, aLossHasAVerdictWhereItBreaksSomething) {
  using Kind = InputLoss::Kind;
  const auto line = [](Kind kind) { return jsonLine(toJson({kFile, 3, 2, "why", kind})); };
  EXPECT_EQ(line(Kind::loose), R"({"file":"a.syx","offset":3,"dropped":2,"reason":"why"})");
  EXPECT_EQ(line(Kind::realTime), line(Kind::loose));
  EXPECT_EQ(line(Kind::cutShort), R"({"file":"a.syx","offset":3,"dropped":2,"reason":"why","verdict":"cut short"})");
  EXPECT_EQ(line(Kind::brokenFile),
            R"({"file":"a.syx","offset":3,"dropped":2,"reason":"why","verdict":"broken file"})");
}

TEST(ReadingJson, aUnitHasItsMessagesAndWhatItLacks) {
  UnitReport unit;
  unit.state = UnitReport::State::open;
  unit.firstMessage = 2;
  unit.lastMessage = 5;
  unit.address = {0x0E, 0x0A, 0x05};
  unit.blocks = {{0x41, 0x02, 0x00}};
  EXPECT_EQ(jsonLine(toJson(unit)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"open","firstMessage":2,"lastMessage":5,)"
            R"("blocks":["41 02 00"],"words":")" +
                describeUnit(unit) + R"("})");
}

TEST(ReadingJson, aTriggerHasWhatItRemoved) {
  UnitReport unit;
  unit.state = UnitReport::State::written;
  unit.address = {0x11, 0x01, 0x00};
  unit.removes = {{4, 0x3F0805}};
  unit.note = "odd";
  const nlohmann::ordered_json json = toJson(unit);
  EXPECT_EQ(jsonLine(json["removes"]), R"(["mix","voice:user1:6"])");
  EXPECT_EQ(json["note"], "odd");
  unit.address = kWriteTrigger;
  EXPECT_EQ(jsonLine(toJson(unit)["removes"]), R"(["voice:user1:6"])");
}

}  // namespace
}  // namespace Editor
