#include "explain/ParameterBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Editor {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// With what is wrong with a word in front of it: "1" for one that is no place, "3" for a place that has none.
std::string refusalOf(const std::function<void()>& ask) {
  try {
    ask();
  } catch (const TargetError& error) {
    return (error.kind() == TargetError::Kind::noTarget ? "1: " : "3: ") + std::string(error.what());
  }
  return "";
}

// The bytes of voice.common[3] there, and which blocks are not answered.
struct Asked {
  explicit Asked(const std::string& place) {
    bytes = bytesOf(editor, parseParameterPlace(place), "voice.common[3]",
                    [this](BulkAddress address, const std::string& why) {
                      EXPECT_NE(why, "");
                      unanswered.push_back(nameOrBytes(address));
                    });
  }

  EmbeddedEditor editor;
  std::vector<CarryingByte> bytes;
  std::vector<std::string> unanswered;
};

TEST(ParameterBytes, areThoseThatARequestOfThePlaceIsAnsweredBy) {
  const Asked asked("voice:edit");
  ASSERT_THAT(asked.bytes, SizeIs(1));
  EXPECT_EQ(asked.bytes[0].address, (BulkAddress{0x40, 0x00, 0x00}));
  EXPECT_EQ(asked.bytes[0].message, 2u);
  EXPECT_EQ(asked.bytes[0].dataByte, 30u);
  EXPECT_THAT(asked.unanswered, IsEmpty());
}

TEST(ParameterBytes, ofAPlaceThatIsNotAnsweredThereAreNone) {
  const Asked asked("voice:user1:6");
  EXPECT_THAT(asked.bytes, IsEmpty());
  EXPECT_THAT(asked.unanswered, testing::ElementsAre("voice:user1:6"));
}

TEST(ParameterBytes, aPlaceHasToHaveParametersOfItsOwn) {
  EXPECT_EQ(refusalOf([] { parseParameterPlace("voice:user1"); }),
            "1: voice:user1: expected one place, not a bank or a range");
  EXPECT_EQ(refusalOf([] { parseParameterPlace("file:voice:user1:6"); }),
            "3: file:voice:user1:6: in a file dump no parameter has bytes of its own: see voice:user1:6");
  EXPECT_EQ(refusalOf([] { parseParameterPlace("screen"); }), "3: screen: it is not made of parameters");
  EXPECT_EQ(refusalOf([] { parseParameterPlace("system"); }), "");
}

TEST(ParameterBytes, aParameterCanBeNamedByPathOrName) {
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  const ParameterPlace place = parseParameterPlace("voice:edit");
  EXPECT_EQ(parsePath(place, "voice.common[3]", names), "voice.common[3]");
  EXPECT_EQ(parsePath(place, "Volume", names), "voice.common[3]");
  EXPECT_EQ(refusalOf([&] { parsePath(place, "Volum", names); }),
            "1: voice:edit: it has no parameter \"Volum\": did you mean Volume?");
}

TEST(ParameterBytes, whatAnotherBlockCarriesIsSaid) {
  const auto refusal = [](const char* place, const char* path) {
    return refusalOf([&] { refuseUncarried(parseParameterPlace(place), path); });
  };
  EXPECT_EQ(refusal("system:common", "system.masterEq[0]"),
            "3: system:common: it does not carry system.masterEq[0]: see system:master-eq");
  EXPECT_EQ(refusal("system", "system.utility[50]"), "3: system: no block carries system.utility[50]");
}

}  // namespace
}  // namespace Editor
