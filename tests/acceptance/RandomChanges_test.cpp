// Random sequences of changes beside a plain map of what each place holds; undoing all of them gives the first library.

#include <algorithm>
#include <map>
#include <random>

#include "Library.h"
#include "Program.h"
#include "contents/ContentFormat.h"
#include "messages/AddressNames.h"
#include "targets/Targets.h"

namespace {

using Content = Editor::Library::Content;

struct State {
  std::map<std::string, Content> contents;
  std::map<std::string, int> flags;

  friend bool operator==(const State&, const State&) = default;
};

// Places that fit each other. So few of them are used that changes meet.
struct Bank {
  const char* name;
  std::uint8_t mid;
  BDA::List list;
  bool hasFlags;
};
constexpr Bank kBanks[] = {{"voice:user1:", 0x0A, BDA::List::normalVoice, true},
                           {"master:", 0x70, BDA::List::master, false}};
constexpr int kPlaces = 6;
constexpr int kSounds = 8;

class RandomChanges : public Program {
 protected:
  RandomChanges() {
    for (const Bank& bank : kBanks)
      for (int sound = 0; sound < kSounds; ++sound) {
        const std::string place = bank.name + std::to_string(sound + 1);
        write("sound.syx", {unitOf(bank, sound, sound)});
        EXPECT_THAT(bda({"receive", "-q", "sound.syx", "--library", "sounds.db"}), Exits(0));
        write(std::string(bank.name) + std::to_string(sound) + ".json",
              bda({"show", place, "--json", "--library", "sounds.db"}).out);
        sounds_[bank.name].push_back(stateOf("sounds.db").contents.at(place));
      }
    EXPECT_THAT(bda({"copy", "master:1..3", "master:1", "--from-library", "sounds.db"}), Exits(0));
    state_ = stateOf("library.db");
  }

  static Bytes unitOf(const Bank& bank, int place, int sound) {
    return unit({0x0E, bank.mid, std::uint8_t(place)}, bank.list, std::uint8_t(0x30 + sound));
  }

  State stateOf(const char* file) {
    Editor::Library library(directory / file);
    State state;
    for (const Editor::ContentId id : library.contents())
      state.contents[Editor::nameOf(id)] = library.content(id).value();
    for (const auto& [id, flag] : library.favourites()) state.flags[Editor::nameOf(id)] = flag.value();
    return state;
  }

  int below(int end) { return int(random_() % unsigned(end)); }
  const Bank& anyBank() { return kBanks[below(2)]; }
  static std::string at(const Bank& bank, int place) { return bank.name + std::to_string(place + 1); }
  static std::string range(const Bank& bank, int first, int count) {
    return at(bank, first) + (count == 1 ? "" : ".." + std::to_string(first + count));
  }

  // Runs a verb that makes `next` of the library, or refuses when there is no next.
  void change(std::vector<std::string> words, const std::optional<State>& next) {
    words.emplace_back("-q");
    SCOPED_TRACE(testing::PrintToString(words));
    ASSERT_THAT(bda(words), Exits(next ? 0 : 3));
    if (next && *next != state_) {
      undos_.push_back(state_);
      state_ = *next;
    }
    ASSERT_TRUE(stateOf("library.db") == state_);
  }

  void receive(const char* verb) {
    const Bank& bank = anyBank();
    State next = state_;
    std::vector<Bytes> messages;
    for (int count = 1 + below(3); count > 0; --count) {
      const int place = below(kPlaces);
      const int sound = below(kSounds);
      messages.push_back(unitOf(bank, place, sound));
      next.contents[at(bank, place)] = sounds_[bank.name][std::size_t(sound)];
    }
    std::string text;
    for (const Bytes& message : messages) text.append(message.begin(), message.end());
    write("some.syx", text);
    change({verb, "some.syx"}, next);
  }

  void apply() {
    const Bank& bank = anyBank();
    const std::string place = at(bank, below(kPlaces));
    const int sound = below(kSounds);
    State next = state_;
    next.contents[place] = sounds_[bank.name][std::size_t(sound)];
    change({"apply", place, bank.name + std::to_string(sound) + ".json"}, next);
  }

  void rename() {
    const std::string place = at(anyBank(), below(kPlaces));
    const std::string name = "Name " + std::to_string(below(10));
    std::optional<State> next;
    if (const auto found = state_.contents.find(place); found != state_.contents.end()) {
      next = state_;
      Editor::ModelSet models = Editor::emptySetFor(idOf(place));
      ASSERT_EQ(Editor::decodeContent(found->second.bytes, models), std::nullopt);
      Editor::nameIn(models)->assign(name);
      next->contents[place] = {name, Editor::encodeContent(models)};
    }
    change({"rename", place, name}, next);
  }

  void favourite() {
    const std::string place = at(kBanks[0], below(kPlaces));
    const bool isOn = below(2) == 0;
    std::optional<State> next;
    if (state_.flags.contains(place) || state_.contents.contains(place)) {
      next = state_;
      next->flags.erase(place);
      if (isOn) next->flags[place] = 1;
    }
    change({"favourite", place, isOn ? "on" : "off"}, next);
  }

  void remove() {
    const std::string place = at(anyBank(), below(kPlaces));
    std::optional<State> next;
    if (state_.contents.contains(place)) {
      next = state_;
      next->contents.erase(place);
    }
    change({"remove", place}, next);
  }

  // Copies, moves or swaps.
  void arrange(const std::string& verb) {
    const Bank& bank = anyBank();
    const int count = verb == "swap" ? 1 + below(kPlaces / 2) : 1 + below(kPlaces - 1);
    const bool isSwap = verb == "swap";
    const int first = below((isSwap ? kPlaces / 2 : kPlaces) - count + 1);
    const int second = isSwap ? kPlaces / 2 + below(kPlaces / 2 - count + 1) : below(kPlaces - count + 1);
    std::optional<State> next = state_;
    std::vector<std::pair<std::string, std::string>> ways;
    bool any = false;
    for (int i = 0; i < count; ++i) {
      const std::string from = at(bank, first + i);
      const std::string to = at(bank, second + i);
      if (state_.contents.contains(from)) any = true;
      if (state_.contents.contains(from) && from != to) ways.emplace_back(from, to);
      if (isSwap && state_.contents.contains(to)) {
        any = true;
        ways.emplace_back(to, from);
      }
    }
    for (const auto& [from, to] : ways) {
      if (verb == "copy") continue;
      next->contents.erase(from);
      next->flags.erase(from);
    }
    for (const auto& [from, to] : ways) {
      next->contents[to] = state_.contents.at(from);
      next->flags.erase(to);
      if (state_.flags.contains(from)) next->flags[to] = state_.flags.at(from);
    }
    if (!any) next.reset();
    change({verb, range(bank, first, count), at(bank, second)}, next);
  }

  void undo() {
    const bool isAny = !undos_.empty();
    ASSERT_THAT(bda({"undo", "-q"}), Exits(isAny ? 0 : 3));
    if (isAny) {
      state_ = undos_.back();
      undos_.pop_back();
    }
    ASSERT_TRUE(stateOf("library.db") == state_);
  }

  void step() {
    switch (below(10)) {
      case 0:
        return receive("receive");
      case 1:
        return receive("restore");
      case 2:
        return apply();
      case 3:
        return rename();
      case 4:
        return favourite();
      case 5:
        return remove();
      case 6:
        return arrange("copy");
      case 7:
        return arrange("move");
      case 8:
        return arrange("swap");
      default:
        return undo();
    }
  }

  static Editor::ContentId idOf(const std::string& place) { return Editor::parseContent(place).content; }

  std::map<std::string, std::vector<Content>> sounds_;  // by bank
  State state_;
  std::vector<State> undos_;  // what each change that is not undone began with
  std::mt19937 random_{815};
};

TEST_F(RandomChanges, areThoseOfAPlainMapAndAllCanBeUndone) {
  ASSERT_THAT(bda({"backup", "-o", "first.syx"}), Exits(0));
  const std::string first = read("first.syx");
  const std::size_t before = lines(bda({"history", "--json"}).out).size();
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    step();
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(undos_.size(), 20u);
  EXPECT_GT(lines(bda({"history", "--json"}).out).size(), before + undos_.size());
  while (!undos_.empty()) {
    undo();
    if (HasFatalFailure()) return;
  }
  ASSERT_THAT(bda({"backup", "-o", "last.syx"}), Exits(0));
  EXPECT_TRUE(read("last.syx") == first);
}

}  // namespace
