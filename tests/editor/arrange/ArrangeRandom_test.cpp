// Random copies, moves and swaps beside a plain map of what each place holds.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "editor/arrange/ArrangeFixture.h"

namespace Editor {
namespace {

using Kind = Arrangement::Kind;
using Names = std::vector<std::string>;

struct PlainHeld {
  std::string name;
  std::string voice;  // the name inside
  int multi = 0;      // a number in its multi
  bool isOpaque = false;

  friend bool operator==(const PlainHeld&, const PlainHeld&) = default;
};

struct State {
  std::map<std::string, PlainHeld> held;
  std::map<std::string, int> flags;  // other than 0

  friend bool operator==(const State&, const State&) = default;
};

struct Bank {
  const char* name;  // a place of its own when it has no numbers
  int places;
  bool isDrum;
  bool hasFlags;
  enum { content, mixing, buffer, part } what;
};
constexpr Bank kBanks[] = {
    {"voice:user1:", 6, false, true, Bank::content}, {"voice:mix:", 4, false, false, Bank::mixing},
    {"voice:part:", 2, false, false, Bank::part},    {"voice:edit", 1, false, false, Bank::buffer},
    {"drum:user:", 4, true, true, Bank::content},    {"drum:edit", 1, true, false, Bank::buffer}};
#ifdef BDA_SAMPLED
constexpr int kSteps = 4;
#else
constexpr int kSteps = 12;
#endif
constexpr int kMultiOfParts = 9;
constexpr int kMixingVoices = 3;

const Bank& bankOf(const std::string& place) {
  for (const Bank& bank : kBanks)
    if (place.find(bank.name) == 0) return bank;
  throw std::logic_error(place);
}
bool isBuffer(const std::string& place) { return bankOf(place).what >= Bank::buffer; }
bool isPart(const std::string& place) { return bankOf(place).what == Bank::part; }

Names placesOf(const Bank& bank, int first, int count) {
  if (bank.places == 1) return {bank.name};
  Names places;
  for (int i = 0; i < count; ++i) places.push_back(bank.name + std::to_string(first + i));
  return places;
}

// What a run of the verb makes of it; nothing: it is refused.
class PlainRun {
 public:
  PlainRun(const State& before, Kind kind) : before_(before), after_(before), kind_(kind) {}

  std::optional<State> operator()(const Names& from, const Names& to) {
    bool any = false;
    for (std::size_t i = 0; i < from.size(); ++i) {
      if (!holds(from[i]) && (kind_ != Kind::swap || !holds(to[i]))) continue;
      any = true;
      if (from[i] == to[i]) continue;
      if (!fits(from[i], to[i]) || (kind_ == Kind::swap && !fits(to[i], from[i]))) return std::nullopt;
      taken_.emplace_back(from[i], to[i]);
    }
    if (!any) return std::nullopt;
    for (const auto& [a, b] : taken_) {
      if (kind_ != Kind::copy) clear(a);
      if (kind_ == Kind::swap) clear(b);
    }
    for (const auto& [a, b] : taken_) {
      give(a, b);
      if (kind_ == Kind::swap) give(b, a);
    }
    const int count = mixingVoices(after_);
    if (count > kMixingVoices && count > mixingVoices(before_)) return std::nullopt;
    return after_;
  }

 private:
  bool holds(const std::string& place) const { return before_.held.contains(place); }
  bool fits(const std::string& from, const std::string& to) const {
    const bool isStrange = holds(from) && before_.held.at(from).isOpaque && isBuffer(to);
    return bankOf(from).isDrum == bankOf(to).isDrum && !isStrange;
  }
  void clear(const std::string& place) {
    after_.held.erase(place);
    after_.flags.erase(place);
    if (isBuffer(place)) after_.held[place].multi = isPart(place) ? kMultiOfParts : 0;
  }
  void give(const std::string& from, const std::string& to) {
    if (!holds(from)) return;
    PlainHeld& held = after_.held[to] = before_.held.at(from);
    if (isBuffer(to)) held.name = held.voice;
    if (isPart(to)) held.multi = kMultiOfParts;
    if (!bankOf(to).hasFlags) return;
    after_.flags.erase(to);
    const std::string& flagged = bankOf(from).hasFlags ? from : to;
    if (before_.flags.contains(flagged)) after_.flags[to] = before_.flags.at(flagged);
  }
  static int mixingVoices(const State& state) {
    int count = 0;
    for (const auto& [place, held] : state.held) count += bankOf(place).what == Bank::mixing ? 1 : 0;
    return count;
  }

  const State& before_;
  State after_;
  const Kind kind_;
  std::vector<std::pair<std::string, std::string>> taken_;
};

// Numbers that stand for a change: which, two banks, where in them, how many places, a name.
using Step = std::tuple<int, int, int, int, int, int, int>;

class RandomLibrary : public ArrangeTest {
 public:
  RandomLibrary() {
    editor.library().setMixingVoiceMaximum(kMixingVoices);
    editor.tools().replaceLive(EditBuffer::multi, 0, models("multi:edit", "Multi", kMultiOfParts));
    int number = 0;
    for (const char* place : {"voice:user1:1", "voice:user1:2", "voice:user1:4", "voice:user1:5", "drum:user:1"})
      fill(place, ++number);  // the fifth is opaque
    fill("drum:user:3", 7);
    toggle("voice:user1:2");
  }

  void step(const Step& step) {
    const auto& [what, firstBank, first, secondBank, second, length, name] = step;
    const Bank& a = kBanks[firstBank];
    const Bank& b = kBanks[secondBank];
    const int count = 1 + length % std::min(a.places, b.places);
    const Names from = placesOf(a, 1 + first % (a.places - count + 1), count);
    const Names to = placesOf(b, 1 + second % (b.places - count + 1), count);
    switch (what) {
      case 0:
        return run(Kind::copy, from, to);
      case 1:
        return run(Kind::move, from, to);
      case 2:
        return run(overlap(from, to) ? Kind::copy : Kind::swap, from, to);
      case 3:
        return fill(from.front(), name);
      default:
        return toggle(from.front());
    }
  }

 private:
  static bool overlap(const Names& a, const Names& b) {
    return std::find_first_of(a.begin(), a.end(), b.begin(), b.end()) != a.end();
  }
  static Places<Target> targetsOf(const Names& places) {
    Places<Target> targets{places.front(), false, {}};
    for (const std::string& place : places) targets.list.push_back(at(place));
    return targets;
  }

  void run(Kind kind, const Names& from, const Names& to) {
    const std::optional<State> expected = PlainRun(state_, kind)(from, to);
    const std::string why = refusal({kind, targetsOf(from), targetsOf(to)});
    RC_ASSERT(why.empty() == expected.has_value());
    if (expected) state_ = *expected;
    RC_ASSERT(read() == state_);
  }

  void fill(const std::string& place, int number) {
    const std::string name = "Name " + std::to_string(number);
    if (isBuffer(place) || bankOf(place).what == Bank::mixing) return;
    if (number % 5 == 0)
      editor.library().store(id(place), Bytes{1, std::uint8_t(number)}, name);
    else
      editor.library().store(id(place), encodeContent(models(place, name, std::uint8_t(number))), name + "!");
    state_ = read();
  }

  void toggle(const std::string& place) {
    if (!bankOf(place).hasFlags) return;
    editor.library().setFavourite(id(place), editor.library().favourite(id(place)) == 0 ? 1 : 0);
    state_ = read();
  }

  PlainHeld heldAt(const std::string& place) {
    const ModelSet models = loadTarget(editor, at(place));
    return {nameAt(place), nameOf(models), models.multi->common.values()[3], false};
  }

  State read() {
    State state;
    for (const Bank& bank : kBanks)
      for (const std::string& place : placesOf(bank, 1, bank.places)) {
        if (isBuffer(place)) {
          state.held[place] = heldAt(place);
        } else if (const auto content = editor.library().content(id(place))) {
          const bool isOpaque = !isContentFormat(content->bytes);
          state.held[place] = isOpaque ? PlainHeld{content->name, "", content->bytes.back(), true} : heldAt(place);
        }
        if (bank.hasFlags && editor.library().favourite(id(place)) != 0)
          state.flags[place] = editor.library().favourite(id(place));
      }
    return state;
  }

  void TestBody() override {}

  State state_;
};

RC_GTEST_PROP(ArrangeRandom, everyPlaceHoldsWhatAPlainMapSays, ()) {
  const auto below = [](int end) { return rc::gen::inRange(0, end); };
  const int banks = int(std::size(kBanks));
  const auto step = rc::gen::tuple(below(5), below(banks), below(6), below(banks), below(6), below(6), below(100));
  RandomLibrary library;
  for (int i = 0; i < kSteps; ++i) library.step(*step);
}

}  // namespace
}  // namespace Editor
