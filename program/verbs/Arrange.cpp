// The verbs copy, move and swap: what places hold, to other places.

#include "arrange/Arrange.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "ChangeRun.h"
#include "midi/Counted.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

const char* wordOf(Arrangement::Kind kind) {
  constexpr std::array kWords{"copy", "move", "swap"};
  return kWords.at(std::size_t(kind));
}

void tellNotes(const Arranged& arranged, const std::vector<PlaceChange>& changes, Console& console) {
  for (const Arranged::Note& flag : arranged.droppedFlags)
    if (std::ranges::find(changes, flag.to, &PlaceChange::place) != changes.end())
      console.note(fmt::format("{} cannot be a favourite: it gets no flag", flag.to));
  for (const Arranged::Note& voice : arranged.voicesAlone)
    console.note(fmt::format("{} takes the voice of {} alone: its multi stays as it is", voice.to, voice.from));
  std::string places;
  for (std::size_t i = 0; i < arranged.leftOut.size() && i < kMostAlike; ++i)
    places += (i == 0 ? "" : ", ") + arranged.leftOut[i];
  if (arranged.leftOut.size() > kMostAlike) places += fmt::format(" and {} more", arranged.leftOut.size() - kMostAlike);
  if (!places.empty())
    console.note(fmt::format("{} nothing, left out: {}", counted(arranged.leftOut.size(), "place holds", "places hold"),
                             places));
}

}  // namespace

void arrange(Arrangement::Kind kind, const Words& words, const std::string& otherLibrary, const ChangeOptions& options,
             Program& program) {
  const Words sides = joinAddresses(words);
  if (sides.size() != 2) throw Failure(kWrongUsage, "expected two places, ranges or banks");
  const Arrangement arrangement = parseArrangement(kind, sides.front(), sides.back());
  if (kind != Arrangement::Kind::copy) program.requireLibrary(kRefused);
  ChangeRun run(program, {wordOf(kind), otherLibrary.empty() ? Words() : Words{otherLibrary}}, options);
  const Arranged arranged = otherLibrary.empty()
                                ? arrange(run.editor(), arrangement)
                                : arrange(run.editor(), arrangement, *program.openToRead(otherLibrary));
  tellNotes(arranged, run.keep(), program.console);
  for (const Arranged::Damage& damage : arranged.damaged) program.leaveOutDamaged(damage.place, damage.why);
}

}  // namespace Editor
