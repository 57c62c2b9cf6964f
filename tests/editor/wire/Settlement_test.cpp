#include "wire/Settlement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "acceptance/Library.h"
#include "editor/wire/WireFixture.h"
#include "messages/BackupOrder.h"
#include "targets/Targets.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};
constexpr BulkAddress kFileDump{0x0C, 0x0A, 0x06};

class SettlementTest : public testing::Test {
 protected:
  Settlement settlement(const Settlement::Options& options = {}) {
    return Settlement(units, options, editor, [this](const Settled& settled) { told.push_back(settled); });
  }
  // The how many-th of the units, with that answer; without one it is lost.
  Fetched fetched(std::size_t unit, std::vector<Bytes> messages, Fetched::State state = Fetched::State::whole) const {
    Fetched one;
    one.unit = unit;
    one.address = units[unit].address;
    one.state = state;
    one.tries = 1;
    one.messages = std::move(messages);
    return one;
  }
  Fetched voice(std::uint8_t value = 3) const { return fetched(0, unitOf(kVoice, BDA::List::normalVoice, value)); }
  Fetched master() const { return fetched(1, unitOf(kMaster, BDA::List::master)); }
  Fetched lost(std::size_t unit) const { return fetched(unit, {}, Fetched::State::lost); }
  Fetched silent(std::size_t unit) const {
    Fetched one = fetched(unit, {}, Fetched::State::empty);
    one.isEmptyBySilence = true;
    return one;
  }
  std::vector<FetchedAs> states() const {
    std::vector<FetchedAs> all;
    for (const Settled& one : told) all.push_back(one.as);
    return all;
  }

  const std::vector<WantedUnit> units{{kVoice, true}, {kMaster, false}, {kFileDump, false}};
  EmbeddedEditor editor;
  std::vector<Settled> told;
};

TEST_F(SettlementTest, EachUnitIsStoredWhenItHasCome) {
  Settlement one = settlement();
  one.take(voice());
  ASSERT_THAT(states(), ElementsAre(FetchedAs::stored));
  EXPECT_EQ(editor.library().contents().size(), 1u);
  EXPECT_FALSE(told[0].replaced);
  EXPECT_EQ(one.unasked(), 2u);
  one.take(lost(1));
  one.finish({}, true);
  EXPECT_THAT(states(), ElementsAre(FetchedAs::stored, FetchedAs::lost));
  EXPECT_THAT(one.toAskAgain({}), ElementsAre(kMaster, kFileDump));
}

TEST_F(SettlementTest, WhatStoodThereIsNamed) {
  Settlement one = settlement();
  one.take(voice(0x41));
  told.clear();
  one.take(voice(0x42));
  ASSERT_THAT(states(), ElementsAre(FetchedAs::stored));
  EXPECT_TRUE(told[0].replaced && told[0].replaced->starts_with("AAA"));
}

TEST_F(SettlementTest, WhatIsEmptyThereIsRemovedHereOnlyWhereThatIsAsked) {
  receive(editor, {fileDump(kFileDump, "Some", {1, 2, 3}), writeTrigger(0)});
  EmbeddedEditor other;
  const Fetched empty = fetched(2, answerOf(other, kFileDump), Fetched::State::empty);
  settlement().take(empty);
  EXPECT_FALSE(told[0].isTaken);
  EXPECT_EQ(editor.library().contents().size(), 1u);
  settlement({.removeEmpty = true}).take(empty);
  EXPECT_THAT(states(), ElementsAre(FetchedAs::empty, FetchedAs::empty));
  EXPECT_FALSE(told[0].isRemoved);
  EXPECT_TRUE(told[1].isRemoved && told[1].isTaken);
  EXPECT_THAT(editor.library().contents(), IsEmpty());
}

TEST_F(SettlementTest, AllTogetherWaitForTheLast) {
  Settlement one = settlement({.atomic = true});
  one.take(voice());
  one.take(master());
  EXPECT_THAT(told, IsEmpty());
  EXPECT_THAT(editor.library().contents(), IsEmpty());
  one.take(silent(2));
  one.finish({}, true);
  EXPECT_THAT(states(), ElementsAre(FetchedAs::stored, FetchedAs::stored, FetchedAs::empty));
  EXPECT_EQ(editor.library().contents().size(), 2u);
}

TEST_F(SettlementTest, AllTogetherNoneIsStoredWhereOneIsLostOrLateOrTheWireEnded) {
  enum class What : std::uint8_t { lost, late, ended };
  for (const What what : {What::lost, What::late, What::ended}) {
    told.clear();
    Settlement one = settlement({.atomic = true});
    one.take(voice());
    one.take(what == What::lost ? lost(1) : silent(1));
    one.finish(what == What::late ? std::vector<std::size_t>{1} : std::vector<std::size_t>(), what != What::ended);
    EXPECT_THAT(states(), ElementsAre(FetchedAs::lost, what == What::ended ? FetchedAs::empty : FetchedAs::lost));
    EXPECT_EQ(told[0].fetched.reason, "not stored");
    EXPECT_EQ(told[0].why, "others are lost");
    EXPECT_THAT(editor.library().contents(), IsEmpty());
  }
}

TEST_F(SettlementTest, WhoeverKeepsThemGetsWhatIsTaken) {
  std::vector<BulkAddress> kept;
  Settlement one(
      units, {}, [&](const Fetched& fetched) { kept.push_back(fetched.address); },
      [this](const Settled& settled) { told.push_back(settled); });
  one.take(voice());
  one.take(silent(1));
  one.finish({}, true);
  EXPECT_THAT(kept, ElementsAre(kVoice));
  EXPECT_THAT(states(), ElementsAre(FetchedAs::kept, FetchedAs::empty));
}

TEST_F(SettlementTest, LateUnitsAreAskedForAgainOnce) {
  Settlement one = settlement();
  one.take(lost(0));
  one.take(silent(1));
  one.take(lost(2));
  EXPECT_THAT(one.toAskAgain({0, 1}), ElementsAre(kVoice, kFileDump, kMaster));
}

TEST_F(SettlementTest, SilenceIsDoubtfulWhereOneWasAskedForByItsNameOrQuestionsGetLost) {
  const auto isDoubtful = [this](const Settlement::Options& options, std::vector<Fetched> all) {
    Settlement one = settlement(options);
    for (Fetched& fetched : all) one.take(std::move(fetched));
    return one.isSilenceDoubtful();
  };
  Fetched askedTwice = voice();
  askedTwice.tries = 2;
  EXPECT_TRUE(isDoubtful({}, {silent(0)}));
  EXPECT_FALSE(isDoubtful({}, {voice(), silent(1)}));
  EXPECT_TRUE(isDoubtful({}, {askedTwice, silent(1)}));
  EXPECT_TRUE(isDoubtful({.retries = 0}, {voice(), silent(1)}));
  EXPECT_FALSE(isDoubtful({.retries = 0}, {voice(), lost(1)}));
}

TEST_F(SettlementTest, WhatTheLibraryRefusesIsLost) {
  Settlement one = settlement({.atomic = true});
  Fetched wrong = voice();
  wrong.messages[3] = damaged(wrong.messages[3]);
  one.take(wrong);
  one.take(master());
  one.finish({}, true);
  EXPECT_THAT(states(), ElementsAre(FetchedAs::lost, FetchedAs::lost));
  EXPECT_EQ(told[0].fetched.reason, "refused");
  EXPECT_EQ(told[1].why, "another one is refused");
}

TEST(UnitsToFetch, AreThoseOfTheWords) {
  const std::vector<WantedUnit> units = unitsToFetch({"voice:user1:6", "master:1..2", "0C", "0A", "05"});
  EXPECT_THAT(addressesOf(units), ElementsAre(kVoice, BulkAddress{0x0E, 0x70, 0x00}, BulkAddress{0x0E, 0x70, 0x01},
                                              BulkAddress{0x0C, 0x0A, 0x05}));
  EXPECT_TRUE(units[0].isSingle && !units[1].isSingle && units[3].isSingle);
  EXPECT_EQ(addressesOf(unitsToFetch({"all"})), everythingInABackup());
  EXPECT_THROW(unitsToFetch({"41", "02", "00"}), TargetError) << "it is a part of a unit";
  EXPECT_THROW(unitsToFetch({"nowhere"}), TargetError);
}

}  // namespace
}  // namespace Editor
