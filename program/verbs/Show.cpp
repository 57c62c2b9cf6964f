// The verb show: the parameters of a target.

#include <fmt/format.h>

#include <memory>

#include "messages/Text.h"
#include "models/ModelJson.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Prints one line for each group and name: its path and its values.
class Lines {
 public:
  Lines(Console& console, std::string path) : console_(console), path_(std::move(path)) {}

  void group(const char* key, const ArrayGroup& group) {
    console_.line(fmt::format("{}.{}: {}", path_, key, fmt::join(group.values(), " ")));
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
  Console& console_;
  std::string path_;
};

}  // namespace

void show(const Words& words, bool json, Program& program) {
  const Target target = parseOneTarget(words);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  const ModelSet models = loadTarget(*editor, target);
  if (json) {
    program.console.line(toJson(models).dump(-1, ' ', true));  // a terminal would obey U+0080 to U+009F
    return;
  }
  forEachModel(models, [&](const char* key, const auto& model) {
    Lines lines(program.console, key);
    visitFields(model, lines);
  });
}

}  // namespace Editor
