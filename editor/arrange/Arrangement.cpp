#include "arrange/Arrangement.h"

#include <fmt/format.h>

#include <set>

#include "midi/Counted.h"

namespace Editor {

namespace {

[[noreturn]] void fail(const std::string& text) { throw TargetError(TargetError::Kind::noTarget, text); }

Places<Target> parseSide(const std::string& text) {
  Places<Target> places = parseTargets(text);
  for (const Target& target : places.list)
    if (target.kind != Target::Kind::content && target.kind != Target::Kind::editBuffer)
      fail(fmt::format("{} is neither a content nor an edit buffer", target.name));
  return places;
}

void requireApart(const Arrangement& arrangement) {
  std::set<std::string> from;
  for (const Target& target : arrangement.from.list) from.insert(placeNameOf(target));
  for (const Target& target : arrangement.to.list)
    if (const std::string name = placeNameOf(target); from.contains(name))
      fail(fmt::format("{} is on both sides: what overlaps cannot be swapped", name));
}

}  // namespace

Arrangement parseArrangement(Arrangement::Kind kind, const std::string& from, const std::string& to) {
  Arrangement arrangement{kind, parseSide(from), parseSide(to)};
  Places<Target>& source = arrangement.from;
  Places<Target>& place = arrangement.to;
  const std::size_t count = source.list.size();
  if (place.isOne && !source.isOne) place.list = placesFrom(place.list.front(), count);
  if (place.list.size() != count)
    fail(fmt::format("{} has {}, {} has {}: expected as many, or the first of them", source.name,
                     counted(count, "place"), place.name, counted(place.list.size(), "place")));
  if (kind == Arrangement::Kind::swap) requireApart(arrangement);
  return arrangement;
}

}  // namespace Editor
