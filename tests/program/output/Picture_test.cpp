#include "output/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include "editor/messages/BulkMessages.h"

using Editor::AssistantHost;
using Editor::Picture;
using testing::HasSubstr;

namespace {

using Messages = std::vector<AssistantHost::Sent>;

// A picture of 160 x 2 pixels in one block.
const Bytes kHead{0, 1, 1, 0x20, 0, 2, 0};
Bytes block(std::uint8_t number, std::size_t pixels) {
  Bytes data(2 + pixels, 5);
  data[0] = 0;
  data[1] = number;
  return data;
}
Messages capture(const Bytes& head, const std::vector<Bytes>& blocks) {
  Messages messages{{BDA::DevicePort_Main, dump({0x51, 0, 0}, head)}};
  for (const Bytes& data : blocks) messages.push_back({BDA::DevicePort_Main, dump({0x51, 0, 1}, data)});
  return messages;
}

std::string errorOf(const Messages& messages) {
  Picture picture;
  return assemblePicture(messages, picture);
}

}  // namespace

TEST(Picture, isPutTogetherFromItsMessages) {
  Picture picture;
  EXPECT_EQ(assemblePicture(capture({0, 2, 1, 0x20, 0, 2, 0}, {block(0, 200), block(1, 120)}), picture), "");
  EXPECT_EQ(picture.width, 160u);
  EXPECT_EQ(picture.height, 2u);
  EXPECT_EQ(picture.pixels, Bytes(320, 5));
}

TEST(Picture, anythingElseIsRefused) {
  EXPECT_EQ(errorOf(capture(kHead, {block(0, 320)})), "");
  EXPECT_EQ(errorOf({}), "there are no messages");
  EXPECT_EQ(errorOf(capture(kHead, {})), "0 blocks, expected 1");
  EXPECT_EQ(errorOf(capture(kHead, {block(0, 160), block(1, 160)})), "2 blocks, expected 1");
  EXPECT_EQ(errorOf(capture(kHead, {block(1, 320)})), "message 2 is block 1, expected 0");
  EXPECT_EQ(errorOf(capture(kHead, {block(0, 319)})), "319 pixels, expected 160 x 2");
  EXPECT_EQ(errorOf(capture({0, 1}, {block(0, 320)})), "message 1 is none of a screen capture");
  EXPECT_EQ(errorOf(capture(kHead, {block(0, 0)})), "message 2 is none of a screen capture");
  Messages broken = capture(kHead, {block(0, 320)});
  broken[1].bytes = damaged(broken[1].bytes);
  EXPECT_EQ(errorOf(broken), "message 2 is none of a screen capture");
}

TEST(Picture, thePngHasItsPixels) {
  Picture picture{3, 2, {0, 1, 63, 64, 126, 127}};
  const Bytes png = encodePng(picture);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0);
  EXPECT_EQ(image.width, 3u);
  EXPECT_EQ(image.height, 2u);
  image.format = PNG_FORMAT_GRAY;
  Bytes pixels(PNG_IMAGE_SIZE(image));
  ASSERT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
  EXPECT_EQ(pixels, (Bytes{0, 2, 126, 129, 253, 255}));
}
