#include <algorithm>
#include <random>

#include "SalvageFixture.h"
#include "midi/StreamJoiner.h"

using Editor::Salvage;
using Editor::Salvaged;
using Editor::SalvageResult;
using State = Salvaged::State;

// Files of one sound each, with messages that are lost, broken or sent twice.
TEST_F(Salvaging, whatIsKeptIsAlwaysOneSound) {
  std::mt19937 random(1);
  const auto isOneIn = [&random](unsigned many) { return random() % many == 0; };
  const Unit sounds[] = {Unit(kVoice6, 1), Unit(kVoice6, 2)};
  unsigned keptUnits = 0;
  unsigned completedUnits = 0;
  for (int i = 0; i < 200; ++i) {
    Salvage salvage({});
    std::uint64_t number = 0;
    for (std::size_t source = 0; source < 3; ++source) {
      const unsigned loss = std::vector{3U, 30U, 300U}[random() % 3];
      for (const Bytes& message : sounds[random() % 8 == 0].messages) {
        if (isOneIn(loss)) continue;
        const Bytes sent = isOneIn(loss) ? damaged(message) : message;
        for (int times = isOneIn(30) ? 2 : 1; times > 0; --times)
          salvage.add({source, ++number, 0, sent, std::nullopt});
      }
    }
    std::vector<Bytes> kept;
    const SalvageResult result = salvage.finish();
    for (const Editor::Piece& piece : result.messages) kept.push_back(piece.bytes);
    if (kept.empty()) continue;
    ++keptUnits;
    completedUnits += result.units[0].state == State::completed;
    ASSERT_TRUE(kept == sounds[0].messages || kept == sounds[1].messages) << i;
  }
  EXPECT_GT(keptUnits, 20U);
  EXPECT_GT(completedUnits, 10U);
}

namespace {

// What a bad cable and a bad program make of a stream of bytes: some are lost, changed, or added.
class BadCable {
 public:
  explicit BadCable(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t end) { return random_() % end; }

  // Somewhere from `first` to before `last`.
  void damage(Bytes& stream, std::size_t first, std::size_t last) {
    const std::size_t at = first + below(last - first);
    const std::size_t count = 1 + below(std::min<std::size_t>(last - at, 1 + below(200)));
    const auto place = stream.begin() + std::ptrdiff_t(at);
    switch (below(4)) {
      case 0:
        stream.erase(place, place + std::ptrdiff_t(count));
        break;
      case 1:
        *place = std::uint8_t(*place ^ 1U << below(8));
        break;
      case 2: {
        Bytes added(count);
        for (Bytes::value_type& one : added) one = std::uint8_t(below(below(2) == 0 ? 0x80 : 0x100));
        stream.insert(place, added.begin(), added.end());
        break;
      }
      default:
        std::fill(place, place + std::ptrdiff_t(count), std::uint8_t(below(0x80)));
        break;
    }
  }

 private:
  std::mt19937 random_;
};

Bytes streamOf(const Unit& unit) {
  Bytes stream;
  for (const Bytes& message : unit.messages) stream.insert(stream.end(), message.begin(), message.end());
  return stream;
}

// Hands the pieces of a stream on as they come to the program.
class Feeding final : public Editor::StreamJoiner::Receiver {
 public:
  explicit Feeding(Salvaging& to) : to_(to) {}

  void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override {
    to_.send(Bytes(bytes.begin(), bytes.end()));
  }
  void cutShort(std::span<const std::uint8_t> beginning) override {
    beginning_.assign(beginning.begin(), beginning.end());
  }
  void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, Editor::StreamJoiner::Reason reason) override {
    using Reason = Editor::StreamJoiner::Reason;
    if (reason == Reason::Stray) to_.loose();
    if (reason != Reason::Stray && reason != Reason::RealTime) to_.cutShort(beginning_, beginning_.size());
  }

 private:
  Salvaging& to_;
  Bytes beginning_;
};

void feed(Salvaging& salvaging, const Bytes& stream) {
  salvaging.file();
  Feeding feeding(salvaging);
  Editor::StreamJoiner joiner(feeding);
  joiner.feed(stream);
  joiner.finish();
}

bool holds(const std::vector<Bytes>& messages, const Unit& unit) {
  return std::search(messages.begin(), messages.end(), unit.messages.begin(), unit.messages.end()) != messages.end();
}

bool holdsAnyOf(const std::vector<Bytes>& messages, const Unit& unit) {
  return std::any_of(unit.messages.begin() + 1, unit.messages.end() - 1,
                     [&](const Bytes& one) { return std::ranges::find(messages, one) != messages.end(); });
}

}  // namespace

// Two sounds of one place, dumped one after the other, between two other units. What is swallowed between the two is
// never exactly as long as a dump: then nothing would tell.
TEST_F(Salvaging, neverMixesTwoSoundsWhateverTheCableDidAndKeepsWhatItLeftAlone) {
  BadCable cable(1);
  const Unit first(kVoice6, 1);
  const Unit second(kVoice6, 2);
  const Unit before(kVoice7, 3);
  const Unit after({0x0E, 0x70, 0x02}, 4, BDA::List::master);
  unsigned swallowed = 0;
  unsigned lost = 0;
  for (int i = 0; i < 1000; ++i) {
    Bytes one = streamOf(first);
    Bytes two = streamOf(second);
    if (cable.below(2) == 0) {
      constexpr std::size_t kAbout = 60;
      const std::size_t end = 1 + cable.below(one.size() - kAbout);
      const std::size_t begin = end < kAbout ? 0 : end + cable.below(2 * kAbout) - kAbout;
      if (begin == end) continue;
      one.resize(end);
      two.erase(two.begin(), two.begin() + std::ptrdiff_t(begin));
      ++swallowed;
    }
    for (std::size_t times = cable.below(3); times > 0; --times) cable.damage(one, 0, one.size());
    for (std::size_t times = cable.below(3); times > 0; --times) cable.damage(two, 0, two.size());
    Bytes stream = streamOf(before);
    for (const Bytes& more : {one, two, streamOf(after)}) stream.insert(stream.end(), more.begin(), more.end());
    anew();
    feed(*this, stream);
    const std::vector<Bytes> rescued = kept();
    ASSERT_FALSE(holdsAnyOf(rescued, first) && holdsAnyOf(rescued, second)) << i;
    ASSERT_TRUE(holds(rescued, before) && holds(rescued, after)) << i;
    const bool isSecondLeftAlone = two == streamOf(second);
    ASSERT_TRUE(holds(rescued, second) || !isSecondLeftAlone) << i;
    const bool isOneKept = std::ranges::find(rescued, first.messages.front()) != rescued.end();
    ASSERT_TRUE(isOneKept || one != streamOf(first)) << i;
    lost += !isOneKept;
  }
  EXPECT_GT(swallowed, 300U);
  EXPECT_GT(lost, 300U);
  EXPECT_LT(lost, 900U);
}
