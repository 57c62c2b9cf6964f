// The verb diff: what two libraries, or files of messages, do not have in common.

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "compare/Compare.h"
#include "compare/DifferenceJson.h"
#include "input/FileEditor.h"
#include "input/Sources.h"
#include "messages/Text.h"
#include "models/ModelJson.h"
#include "output/DifferenceLines.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Says what differs, in one of three forms.
class Telling {
 public:
  Telling(const std::string& firstPath, const std::string& secondPath, DiffForm form, ParameterNames names,
          Console& console)
      : first_(escape(firstPath)),
        second_(escape(secondPath)),
        form_(form),
        names_(std::move(names)),
        console_(console) {}

  void tell(const Difference& difference) const {
    if (form_ != DiffForm::json) return tellInWords(difference);
    for (const nlohmann::ordered_json& object : toJson(difference, names_)) console_.line(jsonLine(object));
  }

  // `isAll`: nothing that a file holds is missing from the comparison.
  void summarise(const Comparison& comparison, bool isAll) const {
    if (form_ == DiffForm::json) return console_.line(jsonLine(toJson(comparison)));
    std::string counts;
    for (const auto& [count, what] : {std::pair(comparison.equal, std::string("equal")),
                                      {comparison.different, "different"},
                                      {comparison.onlyInFirst, "only in " + first_},
                                      {comparison.onlyInSecond, "only in " + second_},
                                      {comparison.renamed, "renamed"}})
      if (count != 0) counts += fmt::format("{}{} {}", counts.empty() ? "" : ", ", count, what);
    if (counts.empty()) counts = "none";
    if (comparison.others != 0) counts += fmt::format("; besides contents: {} different", comparison.others);
    console_.note(fmt::format("{}contents: {}", comparison.isEqual() && isAll ? "no difference; " : "", counts));
  }

 private:
  void tellInWords(const Difference& difference) const {
    const auto line = [&](const std::string& text) { console_.line(fmt::format("{}: {}", difference.target, text)); };
    switch (difference.kind) {
      case Difference::Kind::onlyInFirst:
        return line(fmt::format("only in {}: {}", first_, contentOf(difference)));
      case Difference::Kind::onlyInSecond:
        return line(fmt::format("only in {}: {}", second_, contentOf(difference)));
      case Difference::Kind::renamed:
        return line("renamed: " + namesOf(difference));
      case Difference::Kind::different:
        if (form_ == DiffForm::brief) return line("different");
        for (const std::string& detail : detailsOf(difference, names_)) line(detail);
    }
  }

  const std::string first_;
  const std::string second_;
  const DiffForm form_;
  const ParameterNames names_;
  Console& console_;
};

}  // namespace

void diff(const std::string& firstPath, const std::string& secondPath, DiffForm form, Program& program) {
  if (firstPath == "-" && secondPath == "-") throw Failure(kWrongUsage, "standard input cannot be both");
  for (const std::string& path : {firstPath, secondPath})
    if (path != "-" && !isThere(path))
      throw Failure(kUnusableInput, fmt::format("{}: No such file or directory", escape(path)));
  const auto read = [&](const std::string& path) {
    return isLibrary(path) ? std::nullopt : std::optional<InputFile>(std::in_place, path, program.console);
  };
  std::vector<std::string> libraries;
  for (const std::string& path : {firstPath, secondPath})
    if (isLibrary(path)) libraries.push_back(path);
  ParameterNames names = program.parameterNames(std::move(libraries));
  const std::optional<InputFile> firstInput = read(firstPath);
  const std::optional<InputFile> secondInput = read(secondPath);
  const auto open = [&](const std::string& path, const std::optional<InputFile>& input) {
    return input ? editorOf(*input, "diff", program) : program.openToRead(path);
  };
  const std::unique_ptr<EmbeddedEditor> first = open(firstPath, firstInput);
  const std::unique_ptr<EmbeddedEditor> second = open(secondPath, secondInput);
  const EmbeddedEditor::View firstState(*first);
  const EmbeddedEditor::View secondState(*second);
  const Reception reception = firstInput || secondInput ? Reception::ignored : Reception::compared;
  const Telling telling(firstPath, secondPath, form, std::move(names), program.console);
  const Comparison comparison =
      compareLibraries(*first, *second, reception, [&](const Difference& difference) { telling.tell(difference); });
  telling.summarise(comparison, program.exitCode() == kAllGood);
  if (!comparison.isEqual()) program.refuse();
}

}  // namespace Editor
