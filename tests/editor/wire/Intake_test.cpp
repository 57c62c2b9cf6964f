#include "wire/Intake.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "acceptance/Library.h"
#include "editor/wire/WireFixture.h"
#include "history/History.h"

namespace Editor {
namespace {

using testing::Contains;
using testing::IsEmpty;

class IntakeTest : public testing::Test {
 protected:
  using State = Intake::Result::State;

  EmbeddedEditor editor;
  Intake intake{editor};
  const std::vector<Bytes> master = unitOf({0x0E, 0x70, 0x02}, BDA::List::master);
  const std::vector<Bytes> drumForAVoice = unitOf({0x0E, 0x30, 0x00}, BDA::List::drumVoice);
  const std::vector<Bytes> stored{fileDump({0x0C, 0x0A, 0x05}, "Some", {1, 2, 3})};
};

TEST_F(IntakeTest, namesTheUnitThatIsRefusedAndStoresNone) {
  const Intake::Result result = intake.store({master, stored, drumForAVoice, master});
  EXPECT_EQ(result.state, State::refused);
  EXPECT_EQ(result.unit, 2u);
  EXPECT_NE(result.why, "");
  EXPECT_THAT(editor.library().contents(), IsEmpty());
}

TEST_F(IntakeTest, whatNoTriggerCanStoreIsTheFileDumpsFault) {
  Bytes broken = fileDump({0x0C, 0x0A, 0x06}, "Other", {1, 2, 3});
  broken[broken.size() - 2] ^= 1;
  const Intake::Result result = intake.store({stored, {broken}, stored, master});
  EXPECT_EQ(result.state, State::refused);
  EXPECT_EQ(result.unit, 1u);
  EXPECT_THAT(editor.library().contents(), IsEmpty());
}

TEST_F(IntakeTest, eachUnitHasItsChanges) {
  const Intake::Result result =
      intake.store({stored, master, unitOf({0x0E, 0x30, 0x00}, BDA::List::normalVoice), stored});
  ASSERT_EQ(result.state, State::stored);
  ASSERT_EQ(result.changes.size(), 4u);
  const auto places = [&](std::size_t unit) {
    std::vector<std::string> names;
    for (const Change& change : result.changes[unit]) names.push_back(nameOf(change.place));
    return names;
  };
  EXPECT_THAT(places(0), testing::ElementsAre("voice:user1:6"));
  EXPECT_THAT(places(1), testing::ElementsAre("master:3"));
  EXPECT_THAT(places(2), testing::AllOf(Contains("voice:part:1"), Contains("multi:edit")));
}

TEST_F(IntakeTest, theNextMessageIsNotToldToHaveMadeThem) {
  ASSERT_EQ(intake.store({master}).state, State::stored);
  EXPECT_THAT(editor.handle(requestMessage({0x0E, 0x70, 0x02}, 0), BDA::DevicePort_Main, 1).changes, IsEmpty());
}

}  // namespace
}  // namespace Editor
