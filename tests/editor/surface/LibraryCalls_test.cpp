#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "bda/editor.h"
#include "editor/contents/TemporaryLibrary.h"
#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};

class LibraryCalls : public testing::Test {
 protected:
  LibraryCalls() { EXPECT_EQ(bda_library_open(nullptr, 0, &library), BDA_OK); }
  ~LibraryCalls() override { bda_library_close(library); }

  // What was handed out.
  static std::string take(char* text) {
    std::string taken = text == nullptr ? "NULL" : text;
    bda_free(text);
    return taken;
  }
  void receive(const std::vector<Bytes>& messages) {
    for (const Bytes& message : messages)
      EXPECT_EQ(bda_library_handle(library, 1, message.data(), message.size(), nullptr, nullptr, nullptr), BDA_OK)
          << bda_library_error(library);
  }
  static void hear(void* context, unsigned port, const uint8_t* message, size_t size) {
    static_cast<LibraryCalls*>(context)->sent.emplace_back(message, message + size);
    static_cast<LibraryCalls*>(context)->ports.push_back(port);
  }

  bda_library* library = nullptr;
  char* json = nullptr;
  std::vector<Bytes> sent;
  std::vector<unsigned> ports;
};

TEST_F(LibraryCalls, WhatIsReceivedIsThereAndIsAnswered) {
  const std::vector<Bytes> unit = unitOf(kVoice, BDA::List::normalVoice, 3);
  receive(unit);
  EXPECT_EQ(bda_library_contents(library, nullptr, &json), BDA_OK);
  EXPECT_THAT(take(json), StartsWith("{\"content\":\"voice:user1:6\""));
  EXPECT_EQ(bda_library_request(library, "voice:user1:6", hear, this), BDA_OK);
  EXPECT_EQ(ports, std::vector<unsigned>(unit.size(), 1));
  const std::vector<Bytes> first = std::exchange(sent, {});
  receive(first);
  EXPECT_EQ(bda_library_request(library, "voice:user1:6", hear, this), BDA_OK);
  EXPECT_TRUE(sent == first) << "what it answers it would store again";
  EXPECT_EQ(bda_library_show(library, "voice:user1:6", &json), BDA_OK);
  EXPECT_THAT(take(json), StartsWith("{\"voice\":{"));
}

TEST_F(LibraryCalls, AMessageIsToldAsInTheTrace) {
  const Bytes message = unitOf(kVoice, BDA::List::normalVoice).front();
  EXPECT_EQ(bda_library_handle(library, 1, message.data(), message.size(), hear, this, &json), BDA_OK);
  EXPECT_THAT(take(json), HasSubstr("\"outcome\":\"accepted\""));
  EXPECT_EQ(sent.size(), 1U) << "the echo";
  EXPECT_EQ(ports, std::vector<unsigned>{4});
  Bytes broken = message;
  broken[broken.size() - 2] ^= 1;
  EXPECT_EQ(bda_library_handle(library, 1, broken.data(), broken.size(), nullptr, nullptr, &json), BDA_REFUSED);
  EXPECT_THAT(take(json), HasSubstr("\"outcome\":\"refused\""));
  EXPECT_STRNE(bda_library_error(library), "");
}

TEST_F(LibraryCalls, WhatIsNotThereIsRefusedAndWhatIsNoPlaceIsUnusable) {
  EXPECT_EQ(bda_library_show(library, "voice:user1:6", &json), BDA_REFUSED);
  EXPECT_EQ(json, nullptr);
  EXPECT_THAT(bda_library_error(library), HasSubstr("nothing is stored there"));
  EXPECT_EQ(bda_library_request(library, "voice:user1:6", hear, this), BDA_REFUSED);
  EXPECT_EQ(bda_library_show(library, "voice:usr1:6", &json), BDA_UNUSABLE);
  EXPECT_THAT(bda_library_error(library), HasSubstr("did you mean voice:user1:6"));
  EXPECT_EQ(bda_library_contents(library, "\xFF", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_contents(library, " ", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_contents(library, nullptr, &json), BDA_OK);
  EXPECT_STREQ(bda_library_error(library), "");
  EXPECT_EQ(take(json), "");
}

TEST_F(LibraryCalls, WhatIsMisusedSaysSo) {
  EXPECT_EQ(bda_library_open("x", 0, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_library_contents(nullptr, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_contents(library, nullptr, nullptr), BDA_OK) << "nobody wants the answer";
  EXPECT_EQ(bda_library_show(library, nullptr, &json), BDA_MISUSED);
  EXPECT_THAT(bda_library_error(library), HasSubstr("places is NULL"));
  EXPECT_EQ(bda_library_handle(library, 1, nullptr, 3, nullptr, nullptr, nullptr), BDA_MISUSED);
  EXPECT_STREQ(bda_library_error(nullptr), "library is NULL");
  bda_library_close(nullptr);
  bda_free(nullptr);
}

TEST_F(LibraryCalls, ALibraryThatCannotBeOpenedSaysWhy) {
  TemporaryDirectory directory;
  bda_library* missing = nullptr;
  EXPECT_EQ(bda_library_open((directory / "none.db").c_str(), BDA_OPEN_READ, &missing), BDA_UNUSABLE);
  ASSERT_NE(missing, nullptr);
  EXPECT_THAT(bda_library_error(missing), HasSubstr("none.db"));
  EXPECT_EQ(bda_library_contents(missing, nullptr, &json), BDA_MISUSED);
  bda_library_close(missing);
  EXPECT_EQ(bda_library_open((directory / "new.db").c_str(), 7, &missing), BDA_MISUSED);
  bda_library_close(missing);
}

TEST_F(LibraryCalls, WhatOneHandleStoresAnotherOneReads) {
  TemporaryDirectory directory;
  const std::string file = directory / "library.db";
  bda_library_close(library);
  ASSERT_EQ(bda_library_open(file.c_str(), 0, &library), BDA_OK);
  receive(unitOf(kVoice, BDA::List::normalVoice));
  bda_library* other = nullptr;
  ASSERT_EQ(bda_library_open(file.c_str(), BDA_OPEN_READ, &other), BDA_OK);
  EXPECT_EQ(bda_library_contents(other, "voice:user1", &json), BDA_OK);
  EXPECT_THAT(take(json), HasSubstr("voice:user1:6"));
  const Bytes message = unitOf(kVoice, BDA::List::normalVoice).back();
  bda_library_close(other);
}

}  // namespace
}  // namespace Editor
