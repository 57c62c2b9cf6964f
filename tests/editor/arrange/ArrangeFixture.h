#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "arrange/Arrange.h"
#include "bda/platform/CMA/VoiceBanks.h"
#include "contents/ContentFormat.h"
#include "editor/history/PrintChange.h"
#include "targets/TargetModels.h"

namespace Editor {

// Two libraries in memory, whose places are named as a user names them.
class ArrangeTest : public testing::Test {
 protected:
  using Kind = Arrangement::Kind;
  using Bytes = Library::Bytes;

  // To find a name takes its time, and tests of random changes find many.
  static const Target& at(const std::string& place) {
    static std::map<std::string, Target> known;
    const auto found = known.find(place);
    return found != known.end() ? found->second : known.emplace(place, parseTarget(place)).first->second;
  }
  static ContentId id(const std::string& place) { return at(place).content; }

  // Models as that place holds them, with a name and a multi that can be told from others.
  static ModelSet models(const std::string& place, const std::string& name, std::uint8_t multi = 0) {
    ModelSet set = freshTarget(at(place), false);
    nameIn(set)->assign(name);
    if (set.multi) set.multi->common.set(&multi, 3, 0);
    return set;
  }
  void store(const std::string& place, const std::string& name, std::uint8_t multi = 0) {
    storeTarget(editor, at(place), models(place, name, multi));
  }
  void storeOpaque(const std::string& place, const std::string& name, const Bytes& bytes) {
    editor.library().store(id(place), bytes, name);
  }
  void flag(const std::string& place, std::uint8_t flag = 1) { editor.library().setFavourite(id(place), flag); }

  // A part, counted from 1, plays drums from now on: its voice is fresh.
  void makeDrums(std::uint8_t part) {
    constexpr unsigned kUserDrums = 12;
    const CMA::BankSelect bank = CMA::voiceBankSelTable[kUserDrums];
    ModelSet multi = editor.tools().live(EditBuffer::multi);
    multi.multi->part[part - 1u].bankProgram.set(&bank.msb, 0, 0);
    multi.multi->part[part - 1u].bankProgram.set(&bank.lsb, 1, 0);
    ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
  }

  struct Run : Arranged {
    std::vector<PlaceChange> changes;  // as the history would have them
  };
  template <typename... Other>
  Run run(const Arrangement& arrangement, Other&... from) {
    Library::Transaction transaction(editor.library());
    editor.library().beginRun({"arrange"});
    const Arranged arranged = arrange(editor, arrangement, from...);
    const Run run{arranged, changesOfRun(editor.library())};
    transaction.commit();
    return run;
  }
  Run copy(const std::string& from, const std::string& to) { return run(parseArrangement(Kind::copy, from, to)); }
  Run move(const std::string& from, const std::string& to) { return run(parseArrangement(Kind::move, from, to)); }
  Run swap(const std::string& from, const std::string& to) { return run(parseArrangement(Kind::swap, from, to)); }

  // Why it is refused; empty: it is not.
  std::string refusal(Kind kind, const std::string& from, const std::string& to) {
    return refusal(parseArrangement(kind, from, to));
  }
  std::string refusal(const Arrangement& arrangement) {
    try {
      arrange(editor, arrangement);
    } catch (const TargetError& error) {
      EXPECT_EQ(error.kind(), TargetError::Kind::refused);
      return error.what();
    }
    return {};
  }

  // What a place holds: the name in the list, or of the models in an edit buffer; "-" for nothing.
  std::string nameAt(const std::string& place) {
    const Target& target = at(place);
    if (target.kind == Target::Kind::editBuffer) return nameOf(loadTarget(editor, target));
    return editor.library().contentName(target.content).value_or("-");
  }
  std::uint16_t multiAt(const std::string& place) { return loadTarget(editor, at(place)).multi->common.values()[3]; }
  std::uint8_t flagAt(const std::string& place) { return editor.library().favourite(id(place)); }

  static PlaceChange stored(const std::string& place, std::optional<std::string> before, const std::string& after) {
    return {place, What::stored, std::move(before), after};
  }
  static PlaceChange removed(const std::string& place, const std::string& before) {
    return {place, What::removed, before, std::nullopt};
  }
  static PlaceChange flagged(const std::string& place, int before, int after) {
    return {place, What::flagged, std::to_string(before), std::to_string(after)};
  }
  static constexpr std::nullopt_t nothing = std::nullopt;

  EmbeddedEditor editor;
  EmbeddedEditor other;
};

}  // namespace Editor
