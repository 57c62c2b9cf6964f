#include "explain/ParameterBytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "exchange/Answers.h"
#include "messages/Nearest.h"

namespace Editor {

namespace {

// A file dump carries the whole content in a form of the editor's own.
[[noreturn]] void refuseFileDump(BulkAddress dump) {
  const std::string name = nameOrBytes(dump);
  const std::string place = placeNameOf(dump);
  throw TargetError(TargetError::Kind::refused, fmt::format("{}: in a file dump no parameter has bytes of its own{}",
                                                            name, place == name ? "" : fmt::format(": see {}", place)));
}

// What may have been meant by a word that is none of the paths of a place, nor a name of one.
std::string meantBy(const std::string& word, std::vector<std::string> paths, const ParameterNames& names) {
  const std::set<std::string> known(paths.begin(), paths.end());
  for (const auto& [name, count] : names.namesAmong([&](const std::string& path) { return known.contains(path); }))
    if (count == 1) paths.push_back(name);
  return didYouMean(word, paths);
}

}  // namespace

ParameterPlace parseParameterPlace(const std::string& word) {
  ParameterPlace place{parsePlaces(word), {}};
  const Places<BulkAddress>& places = place.places;
  if (!places.isOne && word != "system")
    throw TargetError(TargetError::Kind::noTarget,
                      fmt::format("{}: expected one place, not a bank or a range", places.name));
  if (const auto block = findBlock(places.list.front()); block && block->role == Role::fileDump)
    refuseFileDump(places.list.front());
  place.paths = pathsOf(places.list);
  if (place.paths.empty())
    throw TargetError(TargetError::Kind::refused, fmt::format("{}: it is not made of parameters", places.name));
  return place;
}

std::string parsePath(const ParameterPlace& place, const std::string& word, const ParameterNames& names) {
  std::string path = names.pathOf(word, [&](const std::string& one) {
    return std::find(place.paths.begin(), place.paths.end(), one) != place.paths.end();
  });
  if (path.empty())
    throw TargetError(TargetError::Kind::noTarget, fmt::format("{}: it has no parameter \"{}\"{}", place.places.name,
                                                               word, meantBy(word, place.paths, names)));
  return path;
}

std::vector<CarryingByte> bytesOf(EmbeddedEditor& editor, const ParameterPlace& place, const std::string& path,
                                  const std::function<void(BulkAddress, const std::string&)>& visitUnanswered) {
  std::vector<std::vector<std::uint8_t>> dumps;
  std::uint64_t number = 0;
  for (const BulkAddress address : place.places.list) {
    Record record = editor.handle(editor.requestFor(address), BDA::DevicePort_Main, ++number);
    if (const std::string why = whyUnanswered(record); !why.empty())
      visitUnanswered(address, why);
    else
      for (AssistantHost::Sent& sent : record.sent) dumps.push_back(std::move(sent.bytes));
  }
  return bytesByPath(dumps)[path];
}

void refuseUncarried(const ParameterPlace& place, const std::string& path) {
  const std::string& name = place.places.name;
  std::string others;
  for (const BulkAddress block : systemAddresses())
    if (carries(block, path)) others += (others.empty() ? "" : ", ") + nameOrBytes(block);
  throw TargetError(TargetError::Kind::refused,
                    others.empty() ? fmt::format("{}: no block carries {}", name, path)
                                   : fmt::format("{}: it does not carry {}: see {}", name, path, others));
}

}  // namespace Editor
