#include "output/Picture.h"

#include <fmt/format.h>
#include <png.h>

#include "BulkMessage.h"
#include "ExitCode.h"
#include "messages/Messages.h"

namespace Editor {

namespace {

constexpr std::size_t kHeadBytes = 7;    // number of blocks, width, height (14 bits each), 0
constexpr std::size_t kNumberBytes = 2;  // of a block

std::uint32_t numberAt(std::span<const std::uint8_t> data, std::size_t at) {
  return std::uint32_t(data[at]) << 7 | data[at + 1];
}

}  // namespace

std::string assemblePicture(const std::vector<AssistantHost::Sent>& messages, Picture& picture) {
  picture = {};
  if (messages.empty()) return "there are no messages";
  std::uint32_t blocks = 0;
  for (std::size_t i = 0; i < messages.size(); ++i) {
    const std::span<const std::uint8_t> message = messages[i].bytes;
    const Reading reading = readMessage(message);
    const bool isFirst = i == 0;
    if (reading.kind != Reading::Kind::dump || isBroken(reading) ||
        *reading.address != (isFirst ? kScreen : kScreenData) ||
        (isFirst ? reading.dataBytes != kHeadBytes : reading.dataBytes <= kNumberBytes))
      return fmt::format("message {} is none of a screen capture", i + 1);
    const std::span<const std::uint8_t> data = message.subspan(BDA::kDataAt, reading.dataBytes);
    if (isFirst) {
      blocks = numberAt(data, 0);
      picture.width = numberAt(data, 2);
      picture.height = numberAt(data, 4);
    } else if (numberAt(data, 0) != i - 1) {
      return fmt::format("message {} is block {}, expected {}", i + 1, numberAt(data, 0), i - 1);
    } else {
      picture.pixels.insert(picture.pixels.end(), data.begin() + kNumberBytes, data.end());
    }
  }
  if (messages.size() - 1 != blocks) return fmt::format("{} blocks, expected {}", messages.size() - 1, blocks);
  if (picture.pixels.empty() || picture.pixels.size() != std::size_t(picture.width) * picture.height)
    return fmt::format("{} pixels, expected {} x {}", picture.pixels.size(), picture.width, picture.height);
  return {};
}

std::vector<std::uint8_t> encodePng(const Picture& picture) {
  std::vector<std::uint8_t> bytes;
  for (const std::uint8_t pixel : picture.pixels) bytes.push_back(std::uint8_t(pixel << 1 | pixel >> 6));
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_GRAY;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<std::uint8_t> png(size);
  if (png_image_write_to_memory(&image, png.data(), &size, 0, bytes.data(), 0, nullptr) == 0)
    throw Failure(kWrongUsage, fmt::format("the picture cannot be encoded: {}", image.message));
  png.resize(size);
  return png;
}

}  // namespace Editor
