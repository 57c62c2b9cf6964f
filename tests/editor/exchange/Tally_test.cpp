#include "exchange/Tally.h"

#include <gtest/gtest.h>

using Editor::Outcome;
using Editor::Record;
using Editor::Tally;

namespace {

Record recordOf(Outcome outcome, std::size_t stored = 0, std::size_t removed = 0) {
  Record record;
  record.outcome = outcome;
  record.contents.assign(stored + removed, "voice:user1:6");
  record.removed.assign(removed, "voice:user1:6");
  return record;
}

}  // namespace

TEST(Tally, countsContentsWhereTheyChangeAndMessagesElsewhere) {
  Tally tally;
  EXPECT_EQ(tally.words(), "nothing received");
  tally.add(recordOf(Outcome::accepted));
  tally.add(recordOf(Outcome::accepted));
  EXPECT_EQ(tally.words(), "2 accepted");
  tally.add(recordOf(Outcome::stored, 3, 2));
  EXPECT_EQ(tally.words(), "3 stored, 2 removed, 2 accepted");
  tally.add(recordOf(Outcome::refused, 1));
  EXPECT_EQ(tally.words(), "4 stored, 2 removed, 2 accepted, 1 refused");
}

TEST(Tally, hasAWordForEveryOutcome) {
  Tally tally;
  for (const Outcome outcome :
       {Outcome::notOurs, Outcome::ignored, Outcome::nothingToSend, Outcome::answered, Outcome::completed})
    tally.add(recordOf(outcome));
  tally.addRefused();
  EXPECT_EQ(tally.words(), "1 completed, 1 answered, 1 refused, 1 nothing-to-send, 1 ignored, 1 not-ours");
}
