// screen: a picture of the editor's screen.

#include "Program.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Screen : public Program {};

}  // namespace

TEST_F(Screen, thePictureIsAPngOf160x64) {
  EXPECT_THAT(bda({"screen", "-o", "a.png"}), Exits(0));
  const std::string png = read("a.png");
  EXPECT_THAT(png, StartsWith(std::string("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\xA0\0\0\0\x40\x08\0", 26)));
  EXPECT_EQ(bda({"screen", "-o", "-"}).out, png);
}

TEST_F(Screen, thePictureShowsTheLibrary) {
  EXPECT_THAT(bda({"screen", "-o", "a.png"}), Exits(0));
  ASSERT_THAT(bda({"settings", "device-number", "7"}), Exits(0));
  EXPECT_THAT(bda({"screen", "-o", "b.png"}), Exits(0));
  EXPECT_NE(read("a.png"), read("b.png"));
}

TEST_F(Screen, itsMessagesAreGoodOnes) {
  EXPECT_THAT(bda({"request", "screen", "-o", "a.syx"}), Exits(0));
  const Result run = bda({"verify", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), testing::SizeIs(1 + 10));
  EXPECT_THAT(run.out, HasSubstr("screen capture data, 1026 data bytes"));
}

TEST_F(Screen, withoutAnAnswerNothingIsWritten) {
  ASSERT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  const Result run = bda({"screen", "-o", "a.png"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("receive-bulk is off"));
  EXPECT_FALSE(exists("a.png"));
}
