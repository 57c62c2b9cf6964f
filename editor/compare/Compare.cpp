#include "compare/Compare.h"

#include <fmt/format.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "AddressRows.h"
#include "contents/ContentFormat.h"
#include "messages/Text.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

void compareModels(const ModelSet& first, const ModelSet& second, std::vector<std::string>& details) {
  const std::vector<std::string> paths = differingPaths(first, second);
  if (paths.empty()) return;
  const Json left = toJson(first);
  const Json right = toJson(second);
  for (const std::string& path : paths) {
    const std::string value = valueAt(left, path);
    details.push_back(value.empty() ? path : fmt::format("{}: {} | {}", path, value, valueAt(right, path)));
  }
}

void compareContents(ContentId id, const Library::Content& first, const Library::Content& second,
                     std::vector<std::string>& details) {
  if (first.name != second.name)
    details.push_back(fmt::format("name: \"{}\" | \"{}\"", showName(first.name), showName(second.name)));
  if (first.bytes == second.bytes) return;
  ModelSet left = emptySetFor(id);
  ModelSet right = left;
  const bool haveFormat = !haveSameShape(left, ModelSet());
  if (haveFormat && !decodeContent(first.bytes, left) && !decodeContent(second.bytes, right))
    compareModels(left, right, details);
  else
    details.push_back(fmt::format("opaque bytes differ: {} | {} bytes", first.bytes.size(), second.bytes.size()));
}

std::map<ContentId, std::uint8_t> flagsOf(Library& library) {
  std::map<ContentId, std::uint8_t> flags;
  for (const auto& [id, flag] : library.favourites()) flags[id] = flag;
  return flags;
}

std::uint8_t flagOf(const std::map<ContentId, std::uint8_t>& flags, ContentId id) {
  const auto found = flags.find(id);
  return found == flags.end() ? std::uint8_t(0) : found->second;
}

void ignoreReception(ModelSet& system) {
  const std::uint8_t none = 0;
  system.system->utility.set(&none, SystemModel::kReceiveBulk, 0);
  system.system->utility.set(&none, SystemModel::kDeviceNumber, 0);
}

class Comparing {
 public:
  Comparing(EmbeddedEditor& first, EmbeddedEditor& second) : first_(first), second_(second) {}

  void contents() {
    std::set<ContentId> ids;
    const auto left = flagsOf(first_.library());
    const auto right = flagsOf(second_.library());
    for (EmbeddedEditor* const editor : {&first_, &second_})
      for (const ContentId id : editor->library().contents()) ids.insert(id);
    for (const auto& flags : {left, right})
      for (const auto& [id, flag] : flags) ids.insert(id);
    for (const ContentId id : ids) content(id, flagOf(left, id), flagOf(right, id));
  }

  void live(Reception reception) {
    const EditorJobTools& left = first_.tools();
    const EditorJobTools& right = second_.tools();
    for (const EditBuffer buffer : {EditBuffer::normalVoice, EditBuffer::drumVoice, EditBuffer::multi,
                                    EditBuffer::performance, EditBuffer::master, EditBuffer::remote})
      models(nameOf(buffer), left.live(buffer), right.live(buffer));
    for (std::uint8_t part = 0; part < kParts; ++part)
      models(nameOf(EditBuffer::partVoice, part), left.live(EditBuffer::partVoice, part),
             right.live(EditBuffer::partVoice, part));
    ModelSet leftSystem = left.liveSystem();
    ModelSet rightSystem = right.liveSystem();
    if (reception == Reception::ignored) {
      ignoreReception(leftSystem);
      ignoreReception(rightSystem);
    }
    models("system", leftSystem, rightSystem);
    models("additional", left.liveAdditional(), right.liveAdditional());
    const std::int64_t leftMost = first_.library().mixingVoiceMaximum();
    const std::int64_t rightMost = second_.library().mixingVoiceMaximum();
    if (reception == Reception::compared && leftMost != rightMost)
      changed("setting mixing-voices", {fmt::format("{} | {}", leftMost, rightMost)});
  }

  std::vector<Difference> differences;

 private:
  static std::string nameOf(EditBuffer buffer, std::uint8_t part = 0) {
    const MidLo header = headerOf(buffer, part);
    return nameOrBytes({BDA::kHeaderHi, header.mid, header.lo});
  }

  void content(ContentId id, std::uint8_t leftFlag, std::uint8_t rightFlag) {
    const std::optional<Library::Content> left = first_.library().content(id);
    const std::optional<Library::Content> right = second_.library().content(id);
    const std::string target = Editor::nameOf(id);
    std::vector<std::string> details;
    if (left && right)
      compareContents(id, *left, *right, details);
    else if (left)
      differences.push_back({target, Difference::Kind::onlyInFirst, left->name, {}});
    else if (right)
      differences.push_back({target, Difference::Kind::onlyInSecond, right->name, {}});
    if (leftFlag != rightFlag) details.push_back(fmt::format("favourite: {} | {}", leftFlag, rightFlag));
    changed(target, std::move(details));
  }

  void models(const std::string& target, const ModelSet& left, const ModelSet& right) {
    std::vector<std::string> details;
    if (!(left == right)) compareModels(left, right, details);
    changed(target, std::move(details));
  }

  void changed(const std::string& target, std::vector<std::string> details) {
    if (!details.empty()) differences.push_back({target, Difference::Kind::changed, {}, std::move(details)});
  }

  EmbeddedEditor& first_;
  EmbeddedEditor& second_;
};

}  // namespace

std::vector<Difference> compareLibraries(EmbeddedEditor& first, EmbeddedEditor& second, Reception reception) {
  Comparing comparing(first, second);
  comparing.contents();
  comparing.live(reception);
  return std::move(comparing.differences);
}

}  // namespace Editor
