#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "editor/wire/WireFixture.h"
#include "wire/Fetch.h"
#include "wire/Intake.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;

// Some of everything, and places where nothing is.
const std::vector<BulkAddress> kUnits{
    {0x0C, 0x0A, 0x05}, {0x0C, 0x0A, 0x06}, {0x0C, 0x28, 0x01}, {0x0E, 0x0A, 0x07}, {0x0E, 0x0A, 0x08},
    {0x0E, 0x28, 0x02}, {0x0E, 0x40, 0x03}, {0x0E, 0x70, 0x04}, {0x0E, 0x70, 0x05}, {0x0E, 0x31, 0x01},
    {0x0E, 0x31, 0x02}, {0x0E, 0x60, 0x06}, {0x0E, 0x5F, 0x00}, {0x00, 0x20, 0x00}, {0x71, 0x0A, 0x00},
};

class FetchFaultsTest : public testing::Test {
 protected:
  FetchFaultsTest() {
    using List = BDA::List;
    receive(source, unitOf({0x0E, 0x0A, 0x05}, List::normalVoice, 1));
    receive(source, unitOf({0x0E, 0x28, 0x01}, List::drumVoice, 2));
    receive(source, unitOf({0x0E, 0x0A, 0x07}, List::normalVoice, 3));
    receive(source, unitOf({0x0E, 0x28, 0x02}, List::drumVoice, 4));
    receive(source, unitOf({0x0E, 0x40, 0x03}, List::performance, 5));
    receive(source, unitOf({0x0E, 0x70, 0x04}, List::master, 6));
    receive(source, unitOf({0x0E, 0x31, 0x01}, List::normalVoice, 7));
    receive(source, unitOf({0x0E, 0x60, 0x06}, List::remote, 8));
    receive(source, {blockDump({0x00, 0x20, 0x00}, 9)});
    for (const BulkAddress unit : kUnits) answers.push_back(answerOf(source, unit));
  }

  struct Run {
    std::vector<Fetched> all;
    WireTime elapsed;
  };
  Run fetch(const std::string& faults, std::uint64_t seed, unsigned retries) {
    Run done;
    Instrument instrument(source, {.faults = parseFaults(faults), .seed = seed},
                          Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    Fetch end(kUnits, {.retries = retries}, Pacer(kCablePace, {}, Pacer::Takes::bytes),
              [&](Fetched fetched) { done.all.push_back(std::move(fetched)); });
    LoopPort port(instrument);
    run(end, port, [] { return false; });
    done.elapsed = port.now();
    return done;
  }

  // What is said to be there is what is there, and what is said to be empty may be lost where nothing was said. How
  // many did not come of those that are there.
  std::size_t judge(const std::vector<Fetched>& all) {
    EXPECT_EQ(all.size(), kUnits.size());
    EmbeddedEditor target;
    Intake intake(target);
    std::size_t lost = 0;
    for (const Fetched& fetched : all) {
      std::vector<Bytes> answer = answers[fetched.unit];
      const bool isEmpty = answer.empty() || readMessage(answer.back()).removes.has_value();
      if (fetched.state != Fetched::State::whole) {
        EXPECT_TRUE(isEmpty || fetched.state == Fetched::State::lost || fetched.isEmptyBySilence) << fetched.unit;
        lost += isEmpty ? 0 : 1;
        continue;
      }
      EXPECT_FALSE(isEmpty) << fetched.unit;
      EXPECT_EQ(intake.store({fetched.messages}).state, Intake::Result::State::stored) << fetched.unit;
      EXPECT_EQ(answerOf(target, fetched.address), answer) << fetched.unit;
    }
    return lost;
  }

  EmbeddedEditor source;
  NobodyIsTold nobody;
  std::vector<std::vector<Bytes>> answers;  // of the units
};

TEST_F(FetchFaultsTest, WithoutFaultsEverythingComesAtTheFirstTry) {
  const Run done = fetch("drop=0", 1, 2);
  EXPECT_EQ(judge(done.all), 0u);
  for (const Fetched& fetched : done.all) EXPECT_EQ(fetched.tries, fetched.isEmptyBySilence ? 3u : 1u) << fetched.unit;
}

// With each fault, at rates from 0.1 % to 20 % of the messages: 1,024 runs.
TEST_F(FetchFaultsTest, NothingIsSaidToHaveComeThatHasNot) {
  std::size_t rare = 0;  // units
  std::size_t lostWhereRare = 0;
  std::size_t lost = 0;
  forEachFault([&](const std::string& faults, bool isRare, std::uint64_t seed) {
    const Run done = fetch(faults, seed, isRare ? 10 : 2);
    const std::size_t lostNow = judge(done.all);
    lost += lostNow;
    rare += isRare ? done.all.size() : 0;
    lostWhereRare += isRare ? lostNow : 0;
    // Eleven tries of two seconds for each place that says nothing, and a cable.
    EXPECT_LT(done.elapsed, 10min);
  });
  std::cout << rare << " units at rates up to 0.5 %, " << lostWhereRare << " of them lost, " << lost
            << " at all rates\n";
  EXPECT_LE(double(lostWhereRare), 0.001 * double(rare));
  EXPECT_GT(lost, 0u) << "some faults cost something";
}

TEST_F(FetchFaultsTest, NorWithAllFaultsTogether) {
#ifdef BDA_SAMPLED
  constexpr std::uint64_t kSeeds = 3;
#else
  constexpr std::uint64_t kSeeds = 50;
#endif
  std::string all;
  for (const std::string& name : faultNames()) all += (all.empty() ? "" : ",") + name + "=3%";
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    judge(fetch(all, seed, 5).all);
  }
}

TEST_F(FetchFaultsTest, AWireThatIsCutAtAnyByteLosesNothingThatWasTold) {
  std::uint64_t step = 1;
#ifdef BDA_SAMPLED
  step = 97;
#endif
  for (std::uint64_t byte = 0;; byte += step) {
    Instrument instrument(source, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes), nobody);
    std::vector<Fetched> all;
    Fetch end({kUnits[0], kUnits[3], kUnits[13]}, {}, Pacer(kCablePace, {}, Pacer::Takes::bytes),
              [&](Fetched fetched) { all.push_back(std::move(fetched)); });
    LoopPort port(instrument);
    port.hangUpAt(byte);
    try {
      run(end, port, [] { return false; });
      break;
    } catch (const PortError& error) {
      EXPECT_EQ(error.kind(), PortError::Kind::gone);
    }
    for (const Fetched& fetched : all) EXPECT_EQ(fetched.state, Fetched::State::whole);
  }
}

}  // namespace
}  // namespace Editor
