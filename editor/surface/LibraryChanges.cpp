// The functions of the C surface that change a library by its user's hand, not by a message.

#include <fmt/format.h>

#include <array>
#include <string>
#include <vector>

#include "arrange/Arrange.h"
#include "history/ChangeJson.h"
#include "history/Restore.h"
#include "history/Undo.h"
#include "models/ModelJson.h"
#include "surface/FilesReading.h"
#include "surface/Options.h"
#include "targets/SettingChanges.h"
#include "targets/TargetChanges.h"
#include "targets/TargetJson.h"

namespace Editor {

namespace {

std::string linesOf(const std::vector<PlaceChange>& changes) {
  std::string lines;
  for (const PlaceChange& change : changes) lines += jsonLine(toJson(change)) + '\n';
  return lines;
}

// Makes what `act` does one transaction of the library and an entry of its history, of that run. `act` returns what
// has changed; what it throws takes back all of it.
template <typename Act>
bda_result changeWith(bda_library* library, const LibraryRun& run, char** json, Act act) noexcept {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    requireChangeable(*library);
    library->isReceiving = false;
    editor.library().beginRun(run);
    const auto change = [&] {
      Library::Transaction transaction(editor.library());
      editor.tools().reload();
      Copy lines = copyOf(linesOf(act(editor, doubts)));
      transaction.commit();
      return lines;
    };
    try {
      handOut(change(), json);
    } catch (...) {
      editor.rereadLive();
      throw;
    }
    editor.library().takeChanges();  // or the next message would be told to have made them
  });
}

// The one place, bank or range that a caller names.
std::string oneWordOf(const char* places, const char* what) {
  std::vector<std::string> words = joinAddresses(wordsOf(places, what));
  if (words.size() != 1) throw CallFailure{BDA_UNUSABLE, fmt::format("{} names several places", what)};
  return std::move(words.front());
}

bda_result arrangeWith(bda_library* library, Arrangement::Kind kind, const char* from, const char* to,
                       char** json) noexcept {
  constexpr std::array kVerbs{"copy", "move", "swap"};
  return changeWith(library, {kVerbs.at(std::size_t(kind))}, json, [&](EmbeddedEditor& editor, Doubts& doubts) {
    for (const Arranged::Damage& damage :
         arrange(editor, parseArrangement(kind, oneWordOf(from, "from"), oneWordOf(to, "to"))).damaged)
      doubts.add(fmt::format("{}: left out: {}", damage.place, damage.why));
    return changesOfRun(editor.library());
  });
}

// Judges files by themselves. Throws CallFailure unless all is whole, and something is for this instrument.
void requireWhole(const bda_files& files) {
  Doubts doubts;
  Verification verification;
  readAll(
      files,
      [&](const InputMessage& message, std::size_t) {
        const Reading reading = readMessage(message.bytes);
        doubt(faultsIn(reading), placeOf(message), doubts);
        doubt(faultsIn(verification.next(reading, message.number)), placeOf(message), doubts);
      },
      [&](const InputLoss& loss, std::size_t) { doubtLoss(loss, doubts); });
  for (const MessageFault& fault : faultsIn(verification.finish())) doubts.add(fault.text);
  doubts.refuse();
  if (!verification.isAnyOurs()) throw CallFailure{BDA_UNUSABLE, "no message is for this instrument"};
}

void requireNoOpenUnit(const EmbeddedEditor& editor) {
  Doubts doubts;
  for (const UnitReport& unit : editor.openUnits()) doubts.add(describeUnit(unit));
  doubts.refuse();
}

LibraryRun runOf(const bda_files* files) {
  LibraryRun run{"restore"};
  if (files != nullptr)
    for (const bda_files::File& file : files->list) run.sources.push_back(file.name);
  return run;
}

}  // namespace

}  // namespace Editor

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

bda_result bda_library_apply(bda_library* library, const char* place, const char* object, char** json) {
  return changeWith(library, {"apply"}, json, [&](EmbeddedEditor& editor, Doubts&) {
    const Target target = parseOneTarget(wordsOf(place, "place"));
    applyTarget(editor, target, modelsFromText(textOf(object, "object"), target));
    return changesOfRun(editor.library());
  });
}

bda_result bda_library_rename(bda_library* library, const char* place, const char* name, char** json) {
  return changeWith(library, {"rename", {}, {}, true}, json, [&](EmbeddedEditor& editor, Doubts&) {
    const Target target = parseOneTarget(wordsOf(place, "place"));
    requireNamed(target);
    renameTarget(editor, target, std::string(textOf(name, "name")));
    return changesOfRun(editor.library());
  });
}

bda_result bda_library_favourite(bda_library* library, const char* places, int on, char** json) {
  return changeWith(library, {"favourite"}, json, [&](EmbeddedEditor& editor, Doubts&) {
    std::vector<Places<Target>> asked;
    for (const std::string& word : joinAddresses(wordsOf(places, "places"))) asked.push_back(parseContents(word));
    for (const Places<Target>& one : asked) requireFlags(one);
    for (const Places<Target>& one : asked) setFavourites(editor.library(), one, on != 0);
    return changesOfRun(editor.library());
  });
}

bda_result bda_library_copy_places(bda_library* library, const char* from, const char* to, char** json) {
  return arrangeWith(library, Arrangement::Kind::copy, from, to, json);
}

bda_result bda_library_move_places(bda_library* library, const char* from, const char* to, char** json) {
  return arrangeWith(library, Arrangement::Kind::move, from, to, json);
}

bda_result bda_library_swap_places(bda_library* library, const char* from, const char* to, char** json) {
  return arrangeWith(library, Arrangement::Kind::swap, from, to, json);
}

bda_result bda_library_remove(bda_library* library, const char* places, char** json) {
  return changeWith(library, {"remove"}, json, [&](EmbeddedEditor& editor, Doubts&) {
    std::vector<Removal> asked;
    for (const std::string& word : joinAddresses(wordsOf(places, "places"))) asked.push_back(parseRemoval(word));
    for (const Removal& one : asked) requireRemovable(one, editor.tools());
    Removing removing(editor.library());
    for (const Removal& one : asked) removing.take(one.places);
    return changesOfRun(editor.library());
  });
}

bda_result bda_library_undo(bda_library* library, int64_t entry, int force, char** json) {
  return changeWith(library, {"undo"}, json, [&](EmbeddedEditor& editor, Doubts&) {
    Undone undone = undo(editor, entry == 0 ? std::nullopt : std::optional(entry), force != 0 ? Force::yes : Force::no);
    if (undone.state == Undone::State::done) return std::move(undone.changes);
    std::string why = whyNotDone(undone);
    for (const std::string& line : damageIn(undone)) why += '\n' + line;
    for (const std::string& place : undone.conflicts) why += fmt::format("\n{}: {}", place, wordsOfConflict(undone));
    throw CallFailure{BDA_REFUSED, std::move(why)};
  });
}

bda_result bda_library_set(bda_library* library, const char* name, const char* value, char** json) {
  return changeWith(library, {"settings"}, json, [&](EmbeddedEditor& editor, Doubts&) {
    const Setting& setting = settingNamed(std::string(textOf(name, "name")));
    return set(setting, numberNamed(setting, std::string(textOf(value, "value"))), editor);
  });
}

bda_result bda_library_restore(bda_library* library, bda_files* files, const char* options, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts&) {
    requireChangeable(*library);
    library->isReceiving = false;
    editor.library().beginRun(runOf(files));
    require(files, "files");
    Options given(options);
    const auto devices =
        given.flag("any-device") ? EmbeddedEditor::Run::Devices::any : EmbeddedEditor::Run::Devices::asSet;
    given.finish();
    requireWhole(*files);
    requireNoOpenUnit(editor);
    Restore restore(editor, devices);
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t) {
          const std::optional<Record> record = restore.take(readMessage(message.bytes), message);
          if (record && record->outcome == Outcome::refused)
            throw CallFailure{record->libraryFailed ? BDA_FAILED : BDA_REFUSED,
                              fmt::format("{}: refused: {}: {}", placeOf(message), describeContent(record->reading),
                                          escape(record->reason))};
        },
        [](const InputLoss&, std::size_t) {});
    requireNoOpenUnit(editor);
    Copy lines = copyOf(linesOf(restore.settle()));
    restore.commit();
    editor.library().takeChanges();  // or the next message would be told to have made them
    handOut(std::move(lines), json);
  });
}
