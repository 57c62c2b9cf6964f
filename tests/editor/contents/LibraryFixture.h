#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

#include "contents/Library.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {

inline constexpr ContentId kVoice{4, 0x3F0805};
inline constexpr ContentId kMulti{1, 7};
inline constexpr ContentId kBank15Voice{4, 0x3F3C03};
inline constexpr ContentId kSameMixingVoice{4, 0x3F8003};

struct LibraryTest : ::testing::Test {
  std::optional<LibraryError> errorOf(const std::function<void()>& operation) {
    try {
      operation();
    } catch (const LibraryError& error) {
      return error;
    }
    return std::nullopt;
  }
  std::optional<LibraryError> errorOfOpening(const std::filesystem::path& path) {
    return errorOf([&] { Library library(path, {.busyTimeout = std::chrono::milliseconds(50)}); });
  }

  TemporaryDirectory directory;
  std::filesystem::path file = directory / "library.db";
};

}  // namespace Editor
