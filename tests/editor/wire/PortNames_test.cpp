#include "wire/PortNames.h"

#include <gmock/gmock.h>

#include "wire/Port.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::vector<std::string> kNames{"Piano", "Piano (2)", "USB piano", "Desk", "desk"};

std::string refusalOf(std::string_view word) {
  try {
    findPort(word, kNames);
  } catch (const PortError& error) {
    EXPECT_EQ(error.kind(), PortError::Kind::cannotOpen);
    return error.what();
  }
  return "none";
}

TEST(PortNames, SeveralOfOneNameAreToldApart) {
  EXPECT_THAT(toldApart({"a", "b", "a", "a"}), ElementsAre("a", "b", "a (2)", "a (3)"));
}

TEST(PortNames, TheWholeNameComesFirstThenWithoutCaseThenAPart) {
  EXPECT_EQ(findPort("Piano", kNames), 0u);
  EXPECT_EQ(findPort("PIANO (2)", kNames), 1u);
  EXPECT_EQ(findPort("piano", kNames), 0u);
  EXPECT_EQ(findPort("usb", kNames), 2u);
  EXPECT_EQ(findPort("desk", kNames), 4u);
  EXPECT_EQ(findPort("Organ", kNames), std::nullopt);
}

TEST(PortNames, WhatMayBeSeveralIsRefusedWithTheirNames) {
  EXPECT_EQ(refusalOf("pia"), "port pia: several may be meant: Piano, Piano (2), USB piano");
  EXPECT_EQ(refusalOf("DESK"), "port DESK: several may be meant: Desk, desk");
}

TEST(PortNames, WhereThereIsNoneTheNearestOrAllAreTold) {
  EXPECT_EQ(describeNoPort("Pinao", kNames), "port Pinao: there is none of that name: did you mean Piano?");
  EXPECT_THAT(describeNoPort("Organ\n", kNames),
              HasSubstr("port Organ\\x0A: there is none of that name: there are Piano, "));
  EXPECT_THAT(describeNoPort("Organ", {}), HasSubstr("none of that name: expected a path"));
}

}  // namespace
}  // namespace Editor
