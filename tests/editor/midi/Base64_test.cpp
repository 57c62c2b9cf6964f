#include "midi/Base64.h"

#include <gtest/gtest.h>

namespace Editor {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

TEST(Base64Test, IsThatOfItsPublishedExamples) {
  const std::pair<const char*, const char*> examples[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
  };
  for (const auto& [plain, coded] : examples) {
    EXPECT_EQ(formatBase64(bytesOf(plain)), coded);
    EXPECT_EQ(parseBase64(coded), bytesOf(plain)) << coded;
  }
}

TEST(Base64Test, EveryByteComesBackFromEveryPlace) {
  Bytes bytes;
  for (unsigned i = 0; i < 3 * 256; ++i) bytes.push_back(std::uint8_t(i / 3 + i % 3 * 85));
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    const std::span<const std::uint8_t> part(bytes.data(), size);
    ASSERT_EQ(parseBase64(formatBase64(part)), Bytes(part.begin(), part.end())) << size;
  }
}

TEST(Base64Test, NothingElseIsRead) {
  for (const char* const text : {"Z", "Zg", "Zg=", "Zg===", "Zm8", "Zm9v=", "Zm9v====", "====", "=",
                                 "Zh==", "Zm9=", "Zm 9", "Zm9v\n", "Zm-_", "Z===", "Zg==Zg=="})
    EXPECT_EQ(parseBase64(text), std::nullopt) << text;
}

}  // namespace
}  // namespace Editor
