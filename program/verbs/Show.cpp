// The verb show: the parameters of targets.

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "input/FileEditor.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/NamedValues.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Prints one line for each group and name, its path and its values; below a group each parameter that has a name.
class Lines {
 public:
  Lines(std::string path, const ParameterNames& names, Console& console)
      : path_(std::move(path)), names_(names), console_(console) {}

  void group(const char* key, const ArrayGroup& group) {
    console_.line(fmt::format("{}.{}: {}", path_, key, fmt::join(group.values(), " ")));
    for (std::size_t i = 0; i < group.values().size(); ++i) {
      const std::string path = fmt::format("{}.{}[{}]", path_, key, i);
      const std::int64_t value = group.values()[i];
      if (!names_.nameOf(path).empty() || !names_.nameOf(path, value).empty())
        console_.line(fmt::format("  {}: {}", showPath(path, names_), showValue(path, value, names_)));
    }
  }
  void name(const char* key, const NameText& name) {
    console_.line(fmt::format("{}.{}: \"{}\"", path_, key, showName(name.text())));
  }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    const std::string outer = path_;
    for (std::size_t i = 0; i < count; ++i) {
      path_ = fmt::format("{}.{}[{}]", outer, key, i);
      visit(i);
    }
    path_ = outer;
  }

 private:
  std::string path_;
  const ParameterNames& names_;
  Console& console_;
};

void printLines(const ModelSet& models, const ParameterNames& names, Console& console) {
  forEachModel(models, [&](const char* key, const auto& model) {
    Lines lines(key, names, console);
    visitFields(model, lines);
  });
}

// What all targets are printed by.
struct Form {
  bool json;
  ParameterNames names;
};

// `heading` says which target it is, where there are several.
void print(const ModelSet& models, const std::optional<std::string>& heading, const Form& form, Console& console) {
  if (!form.json) {
    if (heading) console.line(*heading + ":");
    printLines(models, form.names, console);
    return;
  }
  nlohmann::ordered_json object;
  if (heading) object["target"] = *heading;
  object.update(toJson(models));
  console.line(jsonLine(object));
}

// Shows the targets of one word; what cannot be shown is told, and keeps none from the others. Empty places of a bank
// or a range are left out.
void showAll(const Places<Target>& places, const Form& form, EmbeddedEditor& editor, Program& program) {
  std::size_t leftOut = 0;
  for (const Target& target : places.list) {
    const bool isContent = target.kind == Target::Kind::content;
    try {
      if (!places.isOne && isContent && !editor.library().contentName(target.content)) {
        ++leftOut;
        continue;
      }
      print(loadTarget(editor, target), target.name, form, program.console);
    } catch (const TargetError& error) {
      program.console.problem(fmt::format("bda: {}", error.what()));
      program.refuse();
    } catch (const LibraryError& error) {
      if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
      program.leaveOutDamaged(target.name);
    }
  }
  if (leftOut == 0) return;
  const std::string empty = fmt::format("{}: {} nothing", places.name, counted(leftOut, "place holds", "places hold"));
  if (leftOut < places.list.size()) {
    program.console.note(empty);
  } else {
    program.console.problem(fmt::format("bda: {}", empty));
    program.refuse();
  }
}

// An edit buffer of the library is as new where nothing was ever stored; one that a file does not have is none.
void keepWhatIsStored(std::vector<Places<Target>>& asked, EmbeddedEditor& editor, const std::string& file) {
  const std::vector<Target> live = storedLive(editor);
  const auto isMissing = [&](const Target& target) {
    return target.kind != Target::Kind::content &&
           std::none_of(live.begin(), live.end(), [&](const Target& one) { return one.name == placeNameOf(target); });
  };
  for (Places<Target>& places : asked) {
    const auto kept = std::remove_if(places.list.begin(), places.list.end(), isMissing);
    if (kept == places.list.begin()) throw Failure(kRefused, fmt::format("{}: {} is not in it", file, places.name));
    places.list.erase(kept, places.list.end());
  }
}

}  // namespace

void show(const Words& words, const ShowOptions& options, Program& program) {
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(words)) asked.push_back(parseTargets(word));
  const Form form{options.json, program.parameterNames()};
  const bool isOfFile = !options.from.empty();
  const std::unique_ptr<EmbeddedEditor> editor =
      isOfFile ? editorOf(InputFile(options.from, program.console), "show", program) : program.openToRead();
  const EmbeddedEditor::View oneState(*editor);
  if (isOfFile) keepWhatIsStored(asked, *editor, displayName(options.from));
  if (asked.size() == 1 && asked.front().isOne) {
    print(loadTarget(*editor, asked.front().list.front()), std::nullopt, form, program.console);
    return;
  }
  for (const Places<Target>& places : asked) showAll(places, form, *editor, program);
}

}  // namespace Editor
