#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "bda/editor.h"
#include "editor/contents/TemporaryLibrary.h"
#include "editor/wire/WireFixture.h"

namespace Editor {

inline constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};

// A library in memory behind a handle, and what its functions hand out.
class LibraryCallTest : public testing::Test {
 protected:
  LibraryCallTest() { EXPECT_EQ(bda_library_open(nullptr, 0, &library), BDA_OK); }
  ~LibraryCallTest() override { bda_library_close(library); }

  // Has the handle be one of that file.
  void open(const std::filesystem::path& file, unsigned flags = 0) {
    bda_library_close(library);
    ASSERT_EQ(bda_library_open(file.c_str(), flags, &library), BDA_OK) << bda_library_error(library);
  }
  // What was handed out.
  static std::string take(char* text) {
    std::string taken = text == nullptr ? "NULL" : text;
    bda_free(text);
    return taken;
  }
  std::string take() { return take(std::exchange(json, nullptr)); }
  std::string error() const { return bda_library_error(library); }
  static std::ptrdiff_t linesIn(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }
  void receive(const std::vector<Bytes>& messages) {
    for (const Bytes& message : messages)
      EXPECT_EQ(bda_library_handle(library, 1, message.data(), message.size(), nullptr, nullptr, nullptr), BDA_OK)
          << bda_library_error(library);
  }
  // A normal voice, every data byte `value`.
  void receiveVoice(std::uint8_t value = 3, BulkAddress header = kVoice) {
    receive(unitOf(header, BDA::List::normalVoice, value));
  }
  std::string contents(bda_library* of) {
    EXPECT_EQ(bda_library_contents(of, nullptr, &json), BDA_OK) << bda_library_error(of);
    return take();
  }
  std::string contents() { return contents(library); }
  std::string show(const char* places) {
    EXPECT_EQ(bda_library_show(library, places, &json), BDA_OK) << error();
    return take();
  }

  bda_library* library = nullptr;
  char* json = nullptr;
};

}  // namespace Editor
