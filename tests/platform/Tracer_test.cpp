#include "bda/platform/Basekit/Tracer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Basekit::Tracer;
using ::testing::ElementsAre;

struct Lines : Basekit::TracerSink {
  Lines() : before(Tracer::setThreadSink(this)) {}
  ~Lines() override { Tracer::setThreadSink(before); }
  void write(const char* text, std::size_t length) noexcept override { texts.emplace_back(text, length); }
  Basekit::TracerSink* before;
  std::vector<std::string> texts;
};

TEST(Tracer, WritesEachTextToTheSinkAsItWasFormatted) {
  Lines lines;
  Tracer::dumpError("%s:%d [%s] ", "a.cpp", 24, "f");
  Tracer::dumpError("code 0x%02x, %d%%\n", 0x80000000U, -3);
  EXPECT_THAT(lines.texts, ElementsAre("a.cpp:24 [f] ", "code 0x80000000, -3%\n"));
}

TEST(Tracer, TextsOfEveryLengthArriveWhole) {
  Lines lines;
  for (const std::size_t length : {0U, 1U, 510U, 511U, 512U, 513U, 5000U}) {
    const std::string text(length, 'x');
    lines.texts.clear();
    Tracer::dumpError("%s", text.c_str());
    if (length == 0)
      EXPECT_TRUE(lines.texts.empty() || lines.texts == std::vector<std::string>{""});
    else
      EXPECT_THAT(lines.texts, ElementsAre(text)) << length;
  }
}

TEST(Tracer, WithoutSinkTextsGoToStandardError) {
  Basekit::TracerSink* const before = Tracer::setThreadSink(nullptr);
  testing::internal::CaptureStderr();
  Tracer::dumpError("error %d\n", 7);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error 7\n");
  Tracer::setThreadSink(before);
}

TEST(Tracer, SettingASinkReturnsTheOneBefore) {
  Lines outer;
  {
    Lines inner;
    EXPECT_EQ(inner.before, &outer);
    Tracer::dumpError("inner\n");
    EXPECT_THAT(inner.texts, ElementsAre("inner\n"));
  }
  Tracer::dumpError("outer\n");
  EXPECT_THAT(outer.texts, ElementsAre("outer\n"));
}

}  // namespace
