#include <nlohmann/json.hpp>
#include <string>

#include "editor/surface/LibraryFixture.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kPlace = "voice:user1:6";

class LibraryChanges : public LibraryCallTest {
 protected:
  LibraryChanges() { receiveVoice(); }

  std::string history(std::size_t most = 0) {
    EXPECT_EQ(bda_library_history(library, most, &json), BDA_OK) << error();
    return take();
  }
  // The newest entry of the history says the same.
  void expectNewest(const std::string& told) {
    const auto entry = nlohmann::ordered_json::parse(history(1));
    std::string lines;
    for (const auto& change : entry["changes"]) lines += jsonLine(change) + '\n';
    EXPECT_EQ(told, lines);
  }
};

TEST_F(LibraryChanges, WhatIsToldIsWhatTheHistorySays) {
  EXPECT_EQ(bda_library_rename(library, kPlace, "Grand", &json), BDA_OK) << error();
  const std::string told = take();
  EXPECT_EQ(linesIn(told), 1);
  EXPECT_THAT(told,
              AllOf(StartsWith(R"({"content":"voice:user1:6","what":"renamed")"), HasSubstr(R"("after":"Grand")")));
  expectNewest(told);
  EXPECT_THAT(history(1), HasSubstr(R"("verb":"rename","sources":[])"));
}

TEST_F(LibraryChanges, WhatWasSoBeforeIsNoChange) {
  ASSERT_EQ(bda_library_rename(library, kPlace, "Grand", nullptr), BDA_OK) << "nobody wants the answer";
  const std::string before = history();
  EXPECT_EQ(bda_library_rename(library, kPlace, "Grand", &json), BDA_OK);
  EXPECT_EQ(take(), "");
  EXPECT_EQ(history(), before);
}

TEST_F(LibraryChanges, WhatWasShownIsApplied) {
  const std::string shown = show(kPlace);
  EXPECT_EQ(bda_library_apply(library, "voice:user1:7", shown.c_str(), &json), BDA_OK) << error();
  EXPECT_THAT(take(), StartsWith(R"({"content":"voice:user1:7","what":"stored","before":null)"));
  EXPECT_EQ(show("voice:user1:7"), shown);
  auto object = nlohmann::ordered_json::parse(shown);
  object["voice"]["common"][3] = 256;
  EXPECT_EQ(bda_library_apply(library, "0E 0A 05", object.dump().c_str(), &json), BDA_UNUSABLE);
  EXPECT_THAT(error(), StartsWith("voice.common[3]: 256 is no integer"));
  EXPECT_EQ(bda_library_apply(library, kPlace, (shown + shown).c_str(), &json), BDA_UNUSABLE);
  EXPECT_EQ(error(), "expected one object");
  EXPECT_EQ(bda_library_apply(library, kPlace, "[", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_apply(library, "voice:user1", shown.c_str(), &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_apply(library, kPlace, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(json, nullptr);
  EXPECT_EQ(show(kPlace), shown);
}

TEST_F(LibraryChanges, WhatNoMessageCarriesIsRefused) {
  EXPECT_EQ(bda_library_rename(library, kPlace, "a name that is too long", &json), BDA_REFUSED);
  EXPECT_THAT(error(), HasSubstr("a name here has at most 20"));
  EXPECT_EQ(bda_library_rename(library, "voice:user1:9", "x", &json), BDA_REFUSED);
  EXPECT_EQ(bda_library_rename(library, "system", "x", &json), BDA_UNUSABLE);
  EXPECT_EQ(error(), "system has no name");
  EXPECT_EQ(bda_library_rename(library, kPlace, "\xFF", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_rename(library, nullptr, "x", &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_rename(library, kPlace, nullptr, &json), BDA_MISUSED);
}

TEST_F(LibraryChanges, VoicesBecomeFavouritesAndAreNoLonger) {
  EXPECT_EQ(bda_library_favourite(library, "voice:user1 voice:user1:9", 7, &json), BDA_REFUSED) << "nothing is at 9";
  EXPECT_THAT(contents(), HasSubstr("\"favourite\":0")) << "so all stay as they were";
  EXPECT_EQ(bda_library_favourite(library, "voice:user1", 7, &json), BDA_OK) << error();
  EXPECT_THAT(take(), HasSubstr(R"("what":"flagged","before":0,"after":1)"));
  EXPECT_EQ(bda_library_favourite(library, kPlace, 0, &json), BDA_OK);
  EXPECT_THAT(take(), HasSubstr(R"("before":1,"after":0)"));
  EXPECT_EQ(bda_library_favourite(library, "master:1", 1, &json), BDA_REFUSED);
  EXPECT_EQ(bda_library_favourite(library, "system", 1, &json), BDA_UNUSABLE);
}

TEST_F(LibraryChanges, WhatPlacesHoldIsCopiedMovedSwappedAndRemoved) {
  const std::string shown = show(kPlace);
  EXPECT_EQ(bda_library_copy_places(library, kPlace, "voice:user2:1", &json), BDA_OK) << error();
  expectNewest(take());
  EXPECT_EQ(bda_library_move_places(library, "voice:user1", "voice:user3", &json), BDA_OK) << error();
  EXPECT_EQ(linesIn(take()), 2);
  EXPECT_EQ(show("voice:user3:6"), shown);
  receiveVoice(5);
  const std::string other = show(kPlace);
  EXPECT_EQ(bda_library_swap_places(library, "0E 0A 05", "voice:user3:6", &json), BDA_OK) << error();
  take();
  EXPECT_EQ(show(kPlace), shown);
  EXPECT_EQ(show("voice:user3:6"), other);
  EXPECT_EQ(bda_library_remove(library, "voice:user2:1 voice:user3", &json), BDA_OK) << error();
  EXPECT_EQ(linesIn(take()), 2);
  for (const char* const verb : {"copy", "move", "swap", "remove"})
    EXPECT_THAT(history(), HasSubstr(std::string(R"("verb":")") + verb + '"'));
  EXPECT_EQ(bda_library_remove(library, "voice:user2:1", &json), BDA_REFUSED);
  EXPECT_EQ(bda_library_remove(library, "system", &json), BDA_UNUSABLE) << "it is not damaged";
  EXPECT_EQ(bda_library_copy_places(library, "voice:user1:1 voice:user1:2", "voice:user2", &json), BDA_UNUSABLE);
  EXPECT_EQ(error(), "from names several places");
  EXPECT_EQ(bda_library_move_places(library, kPlace, "master:1", &json), BDA_REFUSED);
  EXPECT_EQ(bda_library_swap_places(library, kPlace, kPlace, &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_swap_places(library, kPlace, nullptr, &json), BDA_MISUSED);
}

TEST_F(LibraryChanges, WhatIsDamagedStaysBehindAndTheRestGoes) {
  TemporaryDirectory directory;
  open(directory / "library.db");
  receiveVoice();
  receiveVoice(4, {0x0E, 0x0A, 0x06});
  PlainDatabase(directory / "library.db")("UPDATE content SET bytes = x'00' WHERE number = " +
                                          std::to_string(0x3F0805));
  EXPECT_EQ(bda_library_copy_places(library, "voice:user1", "voice:user2", &json), BDA_REFUSED);
  EXPECT_THAT(take(), AllOf(HasSubstr("voice:user2:7"), Not(HasSubstr("voice:user2:6"))));
  EXPECT_THAT(error(), StartsWith("voice:user1:6: left out: "));
}

TEST_F(LibraryChanges, AnUndoPutsBackWhatStoodThere) {
  const std::string before = contents();
  ASSERT_EQ(bda_library_rename(library, kPlace, "Grand", nullptr), BDA_OK);
  ASSERT_EQ(bda_library_rename(library, kPlace, "Piano", nullptr), BDA_OK);
  EXPECT_EQ(bda_library_undo(library, 2, 0, &json), BDA_REFUSED);
  EXPECT_EQ(error(),
            "entry 2 is not undone, nothing is changed\nvoice:user1:6: no longer holds what entry 2 left there");
  EXPECT_EQ(bda_library_undo(library, 2, 1, &json), BDA_OK) << error();
  expectNewest(take());
  EXPECT_EQ(contents(), before);
  EXPECT_EQ(bda_library_undo(library, 2, 1, &json), BDA_REFUSED);
  EXPECT_EQ(error(), "entry 2 is already undone, by 4");
  EXPECT_EQ(bda_library_undo(library, 77, 0, &json), BDA_REFUSED);
  EXPECT_EQ(error(), "there is no entry 77 in the history");
  EXPECT_EQ(bda_library_undo(library, -1, 0, &json), BDA_REFUSED);
  EXPECT_EQ(bda_library_undo(library, 0, 1, nullptr), BDA_OK);
  EXPECT_EQ(bda_library_undo(library, 0, 1, nullptr), BDA_OK);
  EXPECT_EQ(bda_library_undo(library, 0, 1, &json), BDA_REFUSED);
  EXPECT_EQ(error(), "there is nothing to undo");
}

TEST_F(LibraryChanges, ASettingIsSet) {
  EXPECT_EQ(bda_library_set(library, "device-number", "6", &json), BDA_OK) << error();
  expectNewest(take());
  EXPECT_THAT(history(1), HasSubstr("\"verb\":\"settings\""));
  EXPECT_EQ(bda_library_set(library, "device-number", "6", &json), BDA_OK);
  EXPECT_EQ(take(), "");
  EXPECT_EQ(bda_library_set(library, "history", "7", &json), BDA_OK);
  EXPECT_EQ(take(), "{\"content\":\"history\",\"what\":\"set\",\"before\":1000,\"after\":7}\n")
      << "of itself the history records nothing";
  EXPECT_EQ(bda_library_set(library, "device-number", "17", &json), BDA_UNUSABLE);
  EXPECT_EQ(error(), "device-number: \"17\": expected 1 to 16, all or off");
  EXPECT_EQ(bda_library_set(library, "device-numbr", "1", &json), BDA_UNUSABLE);
  EXPECT_THAT(error(), HasSubstr("did you mean device-number?"));
  EXPECT_EQ(bda_library_set(library, nullptr, "1", &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_set(library, "history", nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_set(library, "history", "\xFF", &json), BDA_UNUSABLE);
}

TEST_F(LibraryChanges, AMessageIsToldItsOwnChangesOnly) {
  ASSERT_EQ(bda_library_rename(library, kPlace, "Grand", nullptr), BDA_OK);
  const Bytes message = unitOf({0x0E, 0x0A, 0x06}, BDA::List::normalVoice).front();
  EXPECT_EQ(bda_library_handle(library, 1, message.data(), message.size(), nullptr, nullptr, &json), BDA_OK);
  EXPECT_THAT(take(), Not(HasSubstr("voice:user1:6")));
}

TEST_F(LibraryChanges, AUnitGoesOnAfterAChangeBetweenItsMessages) {
  const std::string shown = show(kPlace);
  std::vector<Bytes> unit = unitOf({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 3);
  const std::vector<Bytes> rest(unit.begin() + 5, unit.end());
  unit.resize(5);
  receive(unit);
  ASSERT_EQ(bda_library_favourite(library, kPlace, 1, nullptr), BDA_OK);
  ASSERT_EQ(bda_library_rename(library, kPlace, std::string(50, 'x').c_str(), nullptr), BDA_REFUSED);
  receive(rest);
  EXPECT_EQ(show("voice:user1:7"), shown);
}

TEST_F(LibraryChanges, OfALibraryThatWasOpenedToBeReadNothingIsChanged) {
  TemporaryDirectory directory;
  open(directory / "library.db");
  receiveVoice();
  open(directory / "library.db", BDA_OPEN_READ);
  const std::string before = contents();
  const std::string object = show(kPlace);
  for (const bda_result result :
       {bda_library_rename(library, kPlace, "Grand", &json), bda_library_apply(library, kPlace, object.c_str(), &json),
        bda_library_favourite(library, kPlace, 1, &json), bda_library_remove(library, kPlace, &json),
        bda_library_copy_places(library, kPlace, "voice:user2:1", &json), bda_library_undo(library, 0, 0, &json),
        bda_library_set(library, "history", "7", &json)}) {
    EXPECT_EQ(result, BDA_REFUSED);
    EXPECT_EQ(json, nullptr);
  }
  EXPECT_EQ(error(), "the library was opened to be read: nothing is changed");
  EXPECT_EQ(contents(), before);
  bda_library* copy = nullptr;
  ASSERT_EQ(bda_library_clone(library, &copy), BDA_OK);
  EXPECT_EQ(bda_library_rename(copy, kPlace, "Grand", &json), BDA_OK) << "a copy may be";
  take();
  bda_library_close(copy);
}

TEST_F(LibraryChanges, TheEntryOfAChangeIsKnownAndTakenBack) {
  const std::int64_t received = bda_library_entry(library);
  EXPECT_EQ(received, 1);
  EXPECT_EQ(bda_library_rename(library, kPlace, "Grand", &json), BDA_OK) << error();
  take();
  EXPECT_EQ(bda_library_entry(library), received + 1);
  EXPECT_EQ(bda_library_rename(library, kPlace, "Grand", &json), BDA_OK) << error();
  EXPECT_EQ(take(), "");
  EXPECT_EQ(bda_library_entry(library), 0) << "all was so before";
  EXPECT_EQ(bda_library_undo(library, received + 1, 0, &json), BDA_OK) << error();
  EXPECT_THAT(take(), HasSubstr(R"("before":"Grand")"));
  EXPECT_EQ(bda_library_entry(nullptr), 0);
}

TEST_F(LibraryChanges, WhatIsMisusedSaysSo) {
  EXPECT_EQ(bda_library_apply(nullptr, kPlace, "{}", &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_rename(nullptr, kPlace, "x", &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_favourite(nullptr, kPlace, 1, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_copy_places(nullptr, kPlace, kPlace, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_remove(nullptr, kPlace, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_undo(nullptr, 0, 0, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_set(nullptr, "history", "7", &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_remove(library, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_remove(library, " ", &json), BDA_UNUSABLE);
  bda_library* closed = nullptr;
  bda_library_open("/nowhere/at/all.db", BDA_OPEN_READ, &closed);
  EXPECT_EQ(bda_library_remove(closed, kPlace, &json), BDA_MISUSED);
  bda_library_close(closed);
}

}  // namespace
}  // namespace Editor
