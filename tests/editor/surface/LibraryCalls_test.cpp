#include <string>
#include <utility>
#include <vector>

#include "editor/surface/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class LibraryCalls : public LibraryCallTest {
 protected:
  static void hear(void* context, unsigned port, const uint8_t* message, size_t size) {
    static_cast<LibraryCalls*>(context)->sent.emplace_back(message, message + size);
    static_cast<LibraryCalls*>(context)->ports.push_back(port);
  }

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
  open(file);
  receiveVoice();
  bda_library* other = nullptr;
  ASSERT_EQ(bda_library_open(file.c_str(), BDA_OPEN_READ, &other), BDA_OK);
  EXPECT_EQ(bda_library_contents(other, "voice:user1", &json), BDA_OK);
  EXPECT_THAT(take(json), HasSubstr("voice:user1:6"));
  const Bytes message = unitOf(kVoice, BDA::List::normalVoice).front();
  EXPECT_EQ(bda_library_handle(other, 1, message.data(), message.size(), nullptr, nullptr, &json), BDA_REFUSED);
  EXPECT_STREQ(bda_library_error(other), "the library was opened to be read: nothing is changed");
  EXPECT_EQ(bda_library_request(other, "voice:user1:6", hear, this), BDA_OK) << bda_library_error(other);
  EXPECT_FALSE(sent.empty());
  bda_library_close(other);
}

TEST_F(LibraryCalls, MessagesAreAnEntryOfTheHistory) {
  receiveVoice();
  EXPECT_EQ(bda_library_history(library, 0, &json), BDA_OK);
  EXPECT_THAT(take(), AllOf(HasSubstr("\"verb\":\"receive\""), HasSubstr("voice:user1:6")));
  EXPECT_EQ(bda_library_undo(library, 0, 0, nullptr), BDA_OK) << error();
  EXPECT_EQ(contents(), "");
}

TEST_F(LibraryCalls, ACopyChangesNothingOfWhatItIsACopyOf) {
  receiveVoice();
  bda_library* copy = nullptr;
  ASSERT_EQ(bda_library_clone(library, &copy), BDA_OK) << error();
  EXPECT_EQ(contents(copy), contents());
  char* would = nullptr;
  EXPECT_EQ(bda_library_rename(copy, "voice:user1:6", "Grand", &would), BDA_OK) << bda_library_error(copy);
  EXPECT_THAT(contents(copy), HasSubstr("Grand"));
  EXPECT_THAT(contents(), Not(HasSubstr("Grand")));
  EXPECT_EQ(bda_library_rename(library, "voice:user1:6", "Grand", &json), BDA_OK);
  EXPECT_EQ(take(), take(would)) << "what it tells is what the call does";
  EXPECT_EQ(bda_library_undo(copy, 1, 1, nullptr), BDA_OK) << "with its history";
  bda_library_close(copy);
  EXPECT_EQ(bda_library_clone(library, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_library_clone(nullptr, &copy), BDA_MISUSED);
  EXPECT_EQ(copy, nullptr);
}

TEST_F(LibraryCalls, ParametersHaveTheNamesThatTheyWereGiven) {
  EXPECT_EQ(bda_library_name_parameters(library, "parameter voice.common[3] Volume\n"), BDA_OK) << error();
  receiveVoice();
  EXPECT_EQ(bda_library_explain(library, "voice:user1:6", "Volume", &json), BDA_OK) << error();
  const std::string named = take();
  EXPECT_EQ(bda_library_explain(library, "voice:user1:6", "voice.common[3]", &json), BDA_OK);
  EXPECT_EQ(named, take());
  EXPECT_EQ(bda_library_name_parameters(library, "nonsense"), BDA_UNUSABLE);
  EXPECT_THAT(error(), StartsWith("line 1: "));
  EXPECT_EQ(bda_library_name_parameters(library, "\xFF"), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_name_parameters(library, nullptr), BDA_OK);
  EXPECT_EQ(bda_library_explain(library, "voice:user1:6", "Volume", &json), BDA_UNUSABLE) << "it has none any more";
  EXPECT_EQ(bda_library_name_parameters(nullptr, nullptr), BDA_MISUSED);
}

}  // namespace
}  // namespace Editor
