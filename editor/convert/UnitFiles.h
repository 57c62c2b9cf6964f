#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "convert/UnitModels.h"

namespace Editor {

// What goes into a file of its own: a unit, or all messages that are of none.
struct UnitFile {
  std::optional<std::size_t> unit;
  std::string stem;  // the file's name before number and ending
  std::string name;  // of the content
  MessageBytes messages;

  std::size_t size() const;  // in bytes
};

// Whether units have a file each, or share one.
enum class Sharing : std::uint8_t { apart, together };
// Calls visit(file) for each unit of a batch in its order, then for the messages of none, if there are any: their stem
// is "other". Apart a file dump has a trigger with it, and the triggers that have written some are in no other file.
void forEachUnitFile(const Batch& batch, Sharing sharing, UnitModels& models,
                     const std::function<void(const UnitFile&)>& visit);

// "voice-user1-006-Grand_Piano": kind, number and name of a content, with nothing in it that any file system would
// take for more than a name, and short enough for one that takes 255 bytes. "-removes" says that a file has what stands
// there removed.
std::string fileStemOf(const Batch::Unit& unit, const std::string& name);

// Gives every file a name of its own, also where case does not count: "stem.syx", "stem-2.syx", ...
class FileNames {
 public:
  // The first that was not given before and is free. Those that were are passed over without being asked for again.
  std::string next(const std::string& stem, const std::function<bool(const std::string&)>& isFree);

 private:
  std::set<std::string> given_;           // in lower case
  std::map<std::string, unsigned> upTo_;  // by stem, in lower case: all numbers below were given
};

}  // namespace Editor
