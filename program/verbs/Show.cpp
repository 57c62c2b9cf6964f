// The verb show: the parameters of targets.

#include <fmt/format.h>

#include <memory>

#include "input/FileEditor.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/NamedValues.h"
#include "targets/TargetJson.h"
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

// Under a heading, for there are several.
void print(const Target& target, const ModelSet& models, const Form& form, Console& console) {
  if (form.json) return console.line(jsonLine(toJson(target, models)));
  console.line(target.name + ":");
  printLines(models, form.names, console);
}

// Shows the targets of one word; what cannot be shown is told, and keeps none from the others.
void showAll(const Places<Target>& places, const Form& form, EmbeddedEditor& editor, Program& program) {
  const auto complain = [&](const std::string& text) {
    program.console.problem(fmt::format("bda: {}", text));
    program.refuse();
  };
  const std::size_t leftOut = loadTargets(
      editor, places,
      {.loaded = [&](const Target& target, const ModelSet& models) { print(target, models, form, program.console); },
       .refused = [&](const TargetError& error) { complain(error.what()); },
       .damaged = [&](const Target& target) { program.leaveOutDamaged(target.name); }});
  if (leftOut == 0) return;
  const std::string empty = fmt::format("{}: {} nothing", places.name, counted(leftOut, "place holds", "places hold"));
  leftOut < places.list.size() ? program.console.note(empty) : complain(empty);
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
  for (Places<Target>& places : asked) {
    if (isOfFile) dropUnstored(*editor, places.list);
    if (places.list.empty())
      throw Failure(kRefused, fmt::format("{}: {} is not in it", displayName(options.from), places.name));
  }
  if (asked.size() == 1 && asked.front().isOne) {
    const ModelSet models = loadTarget(*editor, asked.front().list.front());
    if (options.json)
      program.console.line(jsonLine(toJson(models)));
    else
      printLines(models, form.names, program.console);
    return;
  }
  for (const Places<Target>& places : asked) showAll(places, form, *editor, program);
}

}  // namespace Editor
