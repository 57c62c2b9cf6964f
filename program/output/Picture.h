#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "exchange/AssistantHost.h"

namespace Editor {

// A picture in shades of grey, row by row, 0 (black) to 127 (white).
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint8_t> pixels;
};

// Puts the messages of a screen capture together. Otherwise says what is wrong with them.
[[nodiscard]] std::string assemblePicture(const std::vector<AssistantHost::Sent>& messages, Picture& picture);

// Throws Failure (kWrongUsage).
std::vector<std::uint8_t> encodePng(const Picture& picture);

}  // namespace Editor
