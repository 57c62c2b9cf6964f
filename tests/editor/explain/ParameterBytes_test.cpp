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

TEST(ParameterBytes, areThoseThatARequestOfThePlaceIsAnsweredBy) {
  EmbeddedEditor editor;
  const ParameterPlace place = parseParameterPlace("voice:edit");
  const ParameterBytes found = bytesOf(editor, place, "voice.common[3]");
  ASSERT_THAT(found.bytes, SizeIs(1));
  EXPECT_EQ(found.bytes[0].address, (BulkAddress{0x40, 0x00, 0x00}));
  EXPECT_EQ(found.bytes[0].message, 2u);
  EXPECT_EQ(found.bytes[0].dataByte, 30u);
  EXPECT_THAT(found.unanswered, IsEmpty());
}

TEST(ParameterBytes, ofAPlaceThatIsNotAnsweredThereAreNone) {
  EmbeddedEditor editor;
  const ParameterBytes found = bytesOf(editor, parseParameterPlace("voice:user1:6"), "voice.common[3]");
  EXPECT_THAT(found.bytes, IsEmpty());
  ASSERT_THAT(found.unanswered, SizeIs(1));
  EXPECT_EQ(found.unanswered[0].address, (BulkAddress{0x0E, 0x0A, 0x05}));
  EXPECT_NE(found.unanswered[0].why, "");
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
