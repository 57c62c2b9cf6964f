#include "Failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RecordingPlatform.h"

namespace {

using namespace Testing;
using BDA::BareMessage;
using BDA::Failure;
using BDA::Line;
using BDA::Refusal;
using ::testing::ElementsAre;

constexpr const char* kFile = "..\\..\\bda\\Failure.cpp";
constexpr Failure<> kPlain{{kFile, 24, "f"}, Refusal::noBlock, "plain\n"};
constexpr Failure<int, unsigned, const char*> kWithArguments{
    {kFile, 139, "BDA::X::f"}, Refusal::noBlock, "%d 0x%02x %s, 100%%\n"};
constexpr int kHere = __LINE__;
constexpr Failure<> kFree{{kFile, Line::ofThisSource(), "f"}, Refusal::noBlock, "free\n"};
constexpr BareMessage kBare{Refusal::noBlock, "bare\n"};

TEST(Failure, WritesLocationAndMessageAsTwoTexts) {
  TraceScope trace;
  kPlain();
  EXPECT_THAT(trace.take(), ElementsAre("..\\..\\bda\\Failure.cpp:24 [f] ", "plain\n"));
}

TEST(Failure, FormatsItsArguments) {
  TraceScope trace;
  kWithArguments(-1, 0x80000000U, "name");
  kWithArguments(2147483647, 7U, "");
  EXPECT_EQ(trace.take(), lines(failure("Failure", 139, "BDA::X::f", "-1 0x80000000 name, 100%\n"),
                                failure("Failure", 139, "BDA::X::f", "2147483647 0x07 , 100%\n")));
}

TEST(Failure, AFreeLineNumberTellsWhereTheFailureIsDeclared) {
  TraceScope trace;
  kFree();
  EXPECT_EQ(trace.take(), failure("Failure", kHere + 1, "f", "free\n"));
}

TEST(Failure, ABareMessageHasNoLocation) {
  TraceScope trace;
  kBare();
  EXPECT_THAT(trace.take(), ElementsAre("bare\n"));
}

}  // namespace
