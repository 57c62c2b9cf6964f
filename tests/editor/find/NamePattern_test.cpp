#include "find/NamePattern.h"

#include <gtest/gtest.h>

namespace Editor {
namespace {

bool fits(const char* pattern, const char* name) { return NamePattern(pattern).fits(name); }

TEST(NamePattern, withoutAStarIsFoundAnywhere) {
  EXPECT_TRUE(fits("and", "Grand Piano"));
  EXPECT_TRUE(fits("Grand Piano", "Grand Piano"));
  EXPECT_TRUE(fits("", ""));
  EXPECT_TRUE(fits("", "Piano"));
  EXPECT_FALSE(fits("Grand Piano", "Grand"));
  EXPECT_FALSE(fits("Organ", "Grand Piano"));
}

TEST(NamePattern, withAStarHasToFitTheWhole) {
  EXPECT_TRUE(fits("*", ""));
  EXPECT_TRUE(fits("*", "Piano"));
  EXPECT_TRUE(fits("Pia*", "Piano"));
  EXPECT_TRUE(fits("*ano", "Piano"));
  EXPECT_TRUE(fits("P*o", "Piano"));
  EXPECT_TRUE(fits("P*a*o", "Piano"));
  EXPECT_TRUE(fits("**Piano**", "Piano"));
  EXPECT_TRUE(fits("*an*an*", "an Piano"));
  EXPECT_FALSE(fits("ano*", "Piano"));
  EXPECT_FALSE(fits("*ian", "Piano"));
  EXPECT_FALSE(fits("P*n", "Piano"));
  EXPECT_FALSE(fits("*an*an*", "Piano"));
  EXPECT_FALSE(fits("Piano*!", "Piano"));
}

TEST(NamePattern, aLaterPlaceIsTriedWhereTheFirstFailsBehindAStar) {
  EXPECT_TRUE(fits("*aab", "aaaab"));
  EXPECT_TRUE(fits("a*ab*b", "a ab ab b"));
  EXPECT_FALSE(fits("a*abb*c", "a ab ab c"));
}

TEST(NamePattern, caseDoesNotCountInAnyLetterOfTheInstrument) {
  EXPECT_TRUE(fits("pIANO", "Piano"));
  EXPECT_TRUE(fits("\u00C4\u00F6", "x\xE4\xD6x"));
  EXPECT_TRUE(fits("\u00DE*", "\xFE!"));
  EXPECT_FALSE(fits("[", "{"));
  EXPECT_FALSE(fits("\u00D7", "\xF7"));  // no letters, at the distance of two cases
}

TEST(NamePattern, whatNoNameCanHaveFitsNone) {
  for (const char* const pattern : {"\u0416", "*\u0416*", "\xFF"}) {
    EXPECT_FALSE(fits(pattern, "")) << pattern;
    EXPECT_FALSE(fits(pattern, "Piano\xFF")) << pattern;
  }
}

}  // namespace
}  // namespace Editor
