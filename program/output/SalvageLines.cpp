#include "output/SalvageLines.h"

#include <fmt/format.h>

#include "input/InputStream.h"
#include "midi/Counted.h"

namespace Editor {

namespace {

using State = Salvaged::State;

std::string why(const Salvaged& unit) {
  if (!unit.device) return fmt::format(": blocks of no known unit, {} and after it", describeAddress(unit.address));
  const std::string help = unit.isMergeable ? "; --merge completes it" : "";
  const bool areOfTwoKinds = isUnit(unit.address) && unit.contradicts == std::vector{unit.address};
  if (areOfTwoKinds) return ": captures differ in kind" + help;
  if (!unit.contradicts.empty()) return ": captures differ in " + describeBlocks(unit.contradicts) + help;
  if (!isUnit(unit.address)) return ": it is broken";
  if (unit.isMergeable)
    return fmt::format(": nothing says that its remains are of one sound, the fullest lack {}: {}{}",
                       counted(unit.missing.size(), "block"), describeBlocks(unit.missing), help);
  return fmt::format(": {} missing: {}", counted(unit.missing.size(), "block"), describeBlocks(unit.missing));
}

std::string namesOf(const std::vector<std::size_t>& sources, const std::vector<std::string>& files) {
  std::vector<std::string> names;
  names.reserve(sources.size());
  for (const std::size_t source : sources) names.push_back(displayName(files[source]));
  return fmt::format("{}", fmt::join(names, ", "));
}

const char* wordsOf(NotTaken::Form form) {
  switch (form) {
    case NotTaken::Form::remains:
      return "otherwise, but not whole";
    case NotTaken::Form::whole:
      return "otherwise, whole too";
    case NotTaken::Form::asFileDump:
      return "as a file dump";
    case NotTaken::Form::asUnit:
      return "block by block";
  }
  return "?";
}

}  // namespace

std::string describe(const NotTaken& other, const std::vector<std::string>& files) {
  return fmt::format("{} {} it {}", namesOf(other.from, files), other.from.size() == 1 ? "has" : "have",
                     wordsOf(other.form));
}

std::string lineOf(const Salvaged& unit, const std::vector<std::string>& files) {
  std::string line = fmt::format("{}: {}{}{}", wordOf(unit.state), nameOrBytes(unit.address),
                                 unit.state == State::lost ? why(unit) : "", unit.isMerged ? ", merged" : "");
  for (const NotTaken& other : unit.notTaken) line += ", " + describe(other, files);
  return fmt::format("{} ({})", line, namesOf(unit.from, files));
}

}  // namespace Editor
