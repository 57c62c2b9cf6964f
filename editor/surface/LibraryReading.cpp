// The functions of the C surface that read a library.

#include <optional>
#include <string>
#include <vector>

#include "compare/Backup.h"
#include "compare/DifferenceJson.h"
#include "explain/ExplainJson.h"
#include "explain/ParameterBytes.h"
#include "find/FoundJson.h"
#include "find/Search.h"
#include "history/Check.h"
#include "history/CheckJson.h"
#include "history/HistoryJson.h"
#include "models/ModelJson.h"
#include "surface/Handles.h"
#include "surface/Options.h"
#include "targets/Inventory.h"
#include "targets/InventoryJson.h"
#include "targets/SettingChanges.h"
#include "targets/TargetJson.h"
#include "targets/TargetModels.h"

namespace Editor {

namespace {

std::vector<Places<Target>> targetsIn(const char* places) {
  std::vector<Places<Target>> targets;
  for (const std::string& word : joinAddresses(wordsOf(places, "places"))) targets.push_back(parseTargets(word));
  return targets;
}

void showAll(EmbeddedEditor& editor, const std::vector<Places<Target>>& asked, std::string& lines, Doubts& doubts) {
  if (asked.size() == 1 && asked.front().isOne) {
    lines = jsonLine(toJson(loadTarget(editor, asked.front().list.front()))) + '\n';
    return;
  }
  for (const Places<Target>& places : asked) {
    const std::size_t empty =
        loadTargets(editor, places,
                    {.loaded = [&](const Target& target,
                                   const ModelSet& models) { lines += jsonLine(toJson(target, models)) + '\n'; },
                     .refused = [&](const TargetError& error) { doubts.add(error.what()); },
                     .damaged = [&](const Target& target) { doubts.add(target.name + ": " + kItIsDamaged); }});
    if (empty == places.list.size()) doubts.add(places.name + ": nothing is stored there");
  }
}

// What a search is for, and whether edit buffers are looked at.
struct Asked {
  Wanted wanted;
  EditBuffers buffers = EditBuffers::leftOut;
};

std::optional<Candidate> candidateNamed(const std::optional<std::string>& place, EmbeddedEditor& editor) {
  if (!place) return std::nullopt;
  const Target target = parseOneTarget(wordsOf(place->c_str(), "an address"));
  requireCandidate(target);
  return candidateAt(editor, target);
}

Asked askedBy(const char* text, const ParameterNames& names, EmbeddedEditor& editor) {
  Options options(text);
  Asked asked;
  Wanted& wanted = asked.wanted;
  for (const std::string& term : options.texts("terms")) wanted.names.emplace_back(term);
  if (const std::optional<std::string> kind = options.text("kind")) wanted.kind = contentKindNamed(*kind);
  for (const std::string& condition : options.texts("where"))
    wanted.conditions.emplace_back(condition, names, wanted.kind);
  wanted.onlyFavourites = options.flag("favourite");
  wanted.duplicates = options.flag("duplicates");
  wanted.hashes = true;
  if (options.flag("edit-buffers")) asked.buffers = EditBuffers::included;
  const std::optional<std::string> sameAs = options.text("same-as");
  const std::optional<std::string> like = options.text("like");
  options.finish();
  wanted.sameAs = candidateNamed(sameAs, editor);
  wanted.like = candidateNamed(like, editor);
  return asked;
}

// "voice:user1:6: no message carries this: voice.common[3], favourite"
std::string wordsOfLoss(const Difference& lost) {
  std::string paths;
  for (const std::vector<ParameterDifference>* const list : {&lost.names, &lost.parameters})
    for (const ParameterDifference& parameter : *list) paths += (paths.empty() ? ": " : ", ") + parameter.path;
  return lost.target + ": no message carries " + (paths.empty() ? "it" : "this" + paths);
}

}  // namespace

}  // namespace Editor

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

bda_result bda_library_contents(bda_library* library, const char* places, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const std::vector<Places<Target>> asked = places == nullptr ? std::vector<Places<Target>>() : targetsIn(places);
    const LeavingOut leavingOut(editor, doubts);
    const Inventory found = inventoryOf(editor, asked);
    std::string lines;
    for (const Inventory::Entry& entry : found.entries) {
      lines += jsonLine(toJson(entry)) + '\n';
      if (entry.isDamaged) doubts.add(nameOf(entry.id) + ": " + kItIsDamaged);
    }
    for (const Target& live : found.damaged) doubts.add(live.name + ": " + kItIsDamaged);
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_show(bda_library* library, const char* places, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    std::vector<Places<Target>> asked = targetsIn(places);
    const LeavingOut leavingOut(editor, doubts);
    std::string lines;
    const EmbeddedEditor::View oneState(editor);
    if (library->isOfFiles)
      for (Places<Target>& one : asked) {
        dropUnstored(editor, one.list);
        if (one.list.empty()) throw CallFailure{BDA_REFUSED, one.name + ": it is in none of the files"};
      }
    showAll(editor, asked, lines, doubts);
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_find(bda_library* library, const char* options, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const LeavingOut leavingOut(editor, doubts);
    const EmbeddedEditor::View oneState(editor);
    Asked asked = askedBy(options, library->names, editor);
    std::string lines;
    Search search(std::move(asked.wanted),
                  [&](const Found& found) { lines += jsonLine(toJson(found, library->names)) + '\n'; });
    const Search::Source source{library->path, true};
    forEachCandidate(
        editor, asked.buffers, [&](Candidate candidate) { search.look(source, std::move(candidate)); },
        [&](const std::string& place, const std::string& why) { doubts.add(place + ": " + why); });
    if (search.finish() == 0) doubts.add("nothing is found");
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_diff(bda_library* library, bda_library* other, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    require(other, "other");
    EmbeddedEditor& second = editorOf(other);
    const LeavingOut leavingOut(editor, doubts);
    const LeavingOut leavingOutToo(second, doubts);
    const EmbeddedEditor::View firstState(editor);
    const EmbeddedEditor::View secondState(second);
    const Reception reception = library->isOfFiles || other->isOfFiles ? Reception::ignored : Reception::compared;
    std::string lines;
    const Comparison comparison = compareLibraries(editor, second, reception, [&](const Difference& difference) {
      for (const nlohmann::ordered_json& object : toJson(difference, library->names)) lines += jsonLine(object) + '\n';
    });
    lines += jsonLine(toJson(comparison)) + '\n';
    if (!comparison.isEqual()) doubts.add("they differ");
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_explain(bda_library* library, const char* place, const char* path, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const std::vector<std::string> words = joinAddresses(wordsOf(place, "place"));
    if (words.size() != 1) throw CallFailure{BDA_UNUSABLE, "place names several"};
    const ParameterPlace asked = parseParameterPlace(words.front());
    const std::string found = parsePath(asked, std::string(textOf(path, "path")), library->names);
    const LeavingOut leavingOut(editor, doubts);
    std::string lines;
    for (const CarryingByte& byte : bytesOf(editor, asked, found, [&](BulkAddress address, const std::string&why) {
           doubts.add(nameAndBytes(address) + ": no answer: " + why);
         }))
      lines += jsonLine(toJson(byte)) + '\n';
    if (lines.empty() && doubts.areNone()) refuseUncarried(asked, found);
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_check(bda_library* library, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const LeavingOut leavingOut(editor, doubts);
    std::string lines;
    checkLibrary(editor.library(), [&](const Checked& checked) {
      lines += jsonLine(toJson(checked)) + '\n';
      if (checked.state != Checked::State::damaged) return;
      doubts.add((checked.kind == Checked::Kind::table ? "table " : "") + checked.name + ": " + checked.reason);
    });
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_history(bda_library* library, size_t most, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const LeavingOut leavingOut(editor, doubts);
    Library& read = editor.library();
    const Library::Transaction oneState(read, Library::Transaction::Access::Read);
    std::vector<HistoryEntry> entries = entriesOf(read);
    if (most != 0 && most < entries.size()) entries.resize(most);
    std::string lines;
    for (const HistoryEntry& entry : entries) lines += jsonLine(toJson(entry, changesOf(read, entry.number))) + '\n';
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_settings(bda_library* library, const char* name, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const std::vector<Setting> asked = name == nullptr
                                           ? std::vector<Setting>(Settings::kAll.begin(), Settings::kAll.end())
                                           : std::vector<Setting>{settingNamed(std::string(textOf(name, "name")))};
    const LeavingOut leavingOut(editor, doubts);
    const EmbeddedEditor::View oneState(editor);
    std::string lines;
    for (const Setting& setting : asked) {
      const std::optional<std::int64_t> number = valueOf(setting, editor);
      if (!number) {
        doubts.add(std::string(setting.name) + ": " + kItIsDamaged);
        continue;
      }
      lines += jsonLine(toJson(setting, *number)) + '\n';
    }
    handOut(copyOf(lines), json);
  });
}

bda_result bda_library_backup(bda_library* library, uint8_t** bytes, size_t* size, char** manifest) {
  if (bytes != nullptr) *bytes = nullptr;
  if (manifest != nullptr) *manifest = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    if (bytes != nullptr) require(size, "size");
    if (!library->isInMemory && editor.library().isYetEmpty())
      throw CallFailure{BDA_UNUSABLE, "a backup of nothing: there is no library yet"};
    const LeavingOut leavingOut(editor, doubts);
    Backup backup(editor);
    std::string messages;
    backup.run(
        {.message = [&](std::span<const std::uint8_t> message) { messages.append(message.begin(), message.end()); },
         .asked = [](std::uint64_t) {},
         .leftOut = [&](const std::string& name,
                        const std::string& why) { doubts.add(name + ": not in the backup: " + why); }});
    if (messages.empty()) throw CallFailure{BDA_REFUSED, "nothing could be backed up"};
    try {
      backup.visitLost([&](const Difference& lost) { doubts.add(wordsOfLoss(lost)); });
    } catch (const LibraryError& error) {
      doubts.add(std::string("the backup could not be compared with the library: ") + error.what());
    }
    Copy whole = copyOf(messages);
    handOut(copyOf(jsonLine(backup.manifest()) + '\n'), manifest);
    handOut(std::move(whole), bytes);
    if (bytes != nullptr) *size = messages.size();
  });
}
