#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "contents/ContentsWork.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {

inline constexpr ContentId kVoice{4, 0x3F0805};
inline constexpr ContentId kOtherVoice{4, 0x3F0806};
inline constexpr ContentId kMixingVoice{4, 0x3F8013};  // 3 of multi 1
inline constexpr ContentId kMulti{1, 7};
inline constexpr ContentId kSingle{14, 0};

struct ContentsWorkTest : ::testing::Test {
  std::string pathOf(ContentId id) {
    std::string path;
    EXPECT_EQ(work.getDataFilePath(id.type, id.number, path), ContSrv::ContRes_Success);
    return path;
  }

  // Writes one content as a received file dump is written; nothing is synchronised.
  void write(ContentId id, const Library::Bytes& bytes, const std::optional<std::string>& name = std::nullopt) {
    ContSrv::DataFile* const opened = work.openDataFile(pathOf(id), ContSrv::OpenMode_Write);
    ASSERT_NE(opened, nullptr);
    ContSrv::Data* const data = opened->openData();
    ASSERT_NE(data, nullptr);
    if (name) {
      EXPECT_EQ(work.setContentName(id.type, id.number, *name, false), ContSrv::ContRes_Success);
    }
    EXPECT_EQ(data->write(bytes.data(), std::int64_t(bytes.size())), std::int64_t(bytes.size()));
    EXPECT_EQ(opened->closeDataWithoutSync(data), ContSrv::ContRes_Success);
    EXPECT_EQ(work.closeDataFile(opened, 0), ContSrv::ContRes_Success);
  }

  // What is on disk, seen by another program.
  std::optional<Library::Content> onDisk(ContentId id) { return other.content(id); }

  TemporaryDirectory directory;
  std::filesystem::path file = madeLibrary(directory / "library.db");
  Library library{file, {.busyTimeout = std::chrono::milliseconds(20)}};
  Library other{file};
  PlainDatabase plain{file};
  ContentsWork work{library};
};

}  // namespace Editor
