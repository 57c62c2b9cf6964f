// The verb convert: messages from files into files, whole or one file a unit, on the way chosen and addressed anew.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "convert/Conversion.h"
#include "convert/FileFormat.h"
#include "convert/UnitFileJson.h"
#include "convert/UnitFiles.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/MidiFile.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "targets/TargetJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

using Form = Batch::Unit::Form;

// CLI11 takes all words behind --select for its own: the files among them are the first that is no address but a file,
// and all behind it.
void takeFilesFrom(Words& select, Words& files) {
  const auto isFile = [](const std::string& word) {
    std::error_code unknown;
    if (word != "-" && !std::filesystem::exists(word, unknown)) return false;
    try {
      parsePlaces(word);
      return false;
    } catch (const TargetError&) {
      return true;
    }
  };
  Words joined = joinAddresses(select);
  const auto first = std::find_if(joined.begin(), joined.end(), isFile);
  files.insert(files.end(), first, joined.end());
  joined.erase(first, joined.end());
  select = std::move(joined);
}

class Converting final : private Conversion::Listener {
 public:
  Converting(const Words& files, const ConvertOptions& options, Program& program)
      : options_(options), program_(program), console_(program.console), input_(files, InputStream::Takes::jsonToo) {}

  void run() {
    const Conversion conversion({options_.select, options_.place, options_.device});
    read();
    try {
      conversion.apply(batch_, models_, *this);
    } catch (const ConversionError& error) {
      throw failureOf(error);
    }
    options_.directory.empty() ? writeOne() : split();
  }

 private:
  void read() {
    BatchBuilder builder;
    LossReport losses(console_);
    const std::vector<std::string> problems =
        input_.read([&](const InputMessage& message) { builder.add(message.bytes); },
                    [&](const InputLoss& loss) { losses.add(loss); },
                    [&](const std::string& file, std::string_view text) { readJson(builder, file, text); });
    losses.finish();
    if (!losses.areAllWhole()) program_.refuse();
    if (!problems.empty()) throw Failure(kUnusableInput, problems.front());
    batch_ = builder.finish();
  }

  static void readJson(BatchBuilder& builder, const std::string& file, std::string_view text) {
    std::string source = displayName(file);
    try {
      for (TargetObject& object : parseTargetJson(text)) {
        source = displayName(file) + (object.line == 0 ? "" : fmt::format(": line {}", object.line));
        builder.addJson(std::move(object.json), source);
      }
    } catch (const TargetJsonError& error) {
      throw Failure(kUnusableInput, fmt::format("{}: {}", source, escape(error.what())));
    }
  }

  static Failure failureOf(const ConversionError& error) {
    switch (error.kind()) {
      case ConversionError::Kind::refused:
        return {kRefused, error.what()};
      case ConversionError::Kind::unusable:
        return {kUnusableInput, error.what()};
      case ConversionError::Kind::noPlace:
        break;
    }
    return {kWrongUsage, fmt::format("{}: --place says where it goes", error.what())};
  }

  void missing(const std::string& text) override {
    console_.problem(text);
    program_.refuse();
  }
  // Nothing is written of units where they count; else all go along like any other.
  void broken(const std::vector<MessageFault>& faults) override {
    Complaints complaints(console_);
    for (const MessageFault& fault : faults) complaints.tell(fault.kind, fault.text);
    complaints.finish();
    if (!faults.empty()) program_.refuse();
  }
  void note(const std::string& text) override { console_.note(text); }
  void placing() override { Interruptible::check(); }

  void writeOne() {
    const std::optional<WrittenFile> file =
        writeFile(batch_, options_.output == "-" ? FileFormat::stream : *formatOf(options_.output), options_.pause);
    if (!file)
      throw Failure(kRefused,
                    fmt::format("a .mid of more than {} MB, nothing is written", kLargestMidiFile / 1'000'000));
    if (options_.output == "-") console_.keepOutputForBytes();
    OutputFile output(options_.output);
    output.write(file->bytes);
    const std::vector<std::string> units = options_.json ? linesOfUnits() : std::vector<std::string>();
    Interruptible::check();
    output.commit();
    for (const std::string& line : units) console_.line(line);
    tellMoved();
    console_.note(
        fmt::format("{}, {}: {} written{}", counted(batch_.messages.size(), "message"),
                    counted(batch_.units.size(), "unit"), counted(file->bytes.size(), "byte"),
                    file->duration ? fmt::format(", {:.1f} s to play", double(file->duration->count()) / 1e6) : ""));
  }

  // Objects, for each of the units of the one file.
  std::vector<std::string> linesOfUnits() {
    std::vector<std::string> lines;
    forEachUnitFile(batch_, Sharing::together, models_, [&](const UnitFile& unit) {
      Interruptible::check();
      lines.push_back(jsonOf(unit, options_.output));
    });
    return lines;
  }

  void tellMoved() {
    if (options_.json) return;
    for (const Batch::Unit& unit : batch_.units)
      if (!unit.from.empty()) console_.note(fmt::format("{} -> {}", unit.from, unit.place));
  }

  void split() {
    if (!options_.place.empty()) tellMoved();
    if (options_.select.empty() && options_.place.empty()) broken(faultsIn(batch_));
    std::error_code error;
    std::filesystem::create_directories(options_.directory, error);
    if (std::error_code unknown; !std::filesystem::is_directory(options_.directory, unknown))
      throw Failure(kWrongUsage, fmt::format("{}: cannot be made a folder: {}", escape(options_.directory),
                                             error ? error.message() : "it is a file"));
    Progress progress(console_, "convert", "unit", batch_.units.size());
    std::size_t files = 0;
    Complaints complaints(console_);
    forEachUnitFile(batch_, Sharing::apart, models_, [&](const UnitFile& file) {
      progress.step(file.size());
      writeUnit(file);
      ++files;
      if (!file.unit || batch_.units[*file.unit].form != Form::fileDump) return;
      if (const BulkAddress address = *batch_.units[*file.unit].address; !isWritableFileDump(address)) {
        complaints.tell("file dump that cannot be stored",
                        fmt::format("{}: can be requested, but not stored", nameOrBytes(address)));
        program_.refuse();
      }
    });
    progress.end();
    complaints.finish();
    console_.note(fmt::format("{} in {}", counted(files, "file"), escape(options_.directory)));
  }

  // A file that stands there is never written over: one that is equal is taken for this one.
  void writeUnit(const UnitFile& file) {
    std::vector<std::uint8_t> bytes;
    for (const std::vector<std::uint8_t>& message : file.messages)
      bytes.insert(bytes.end(), message.begin(), message.end());
    const std::filesystem::path directory(options_.directory);
    for (bool isWritten = false; !isWritten;) {
      bool isThere = false;
      const std::string name = names_.next(file.stem, [&](const std::string& candidate) {
        std::error_code unknown;
        const std::filesystem::file_status status = std::filesystem::symlink_status(directory / candidate, unknown);
        isThere = std::filesystem::is_regular_file(status);
        if (!std::filesystem::exists(status)) return true;
        std::string why;
        return isThere && loadBytes((directory / candidate).string(), why) == bytes;
      });
      const std::string path = (directory / name).string();
      isWritten = isThere || writeNew(path, bytes);
      if (isWritten) tell(file, path, isThere);
    }
  }

  // False: another program has put a file there meanwhile.
  static bool writeNew(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    OutputFile output(path, OutputFile::Existing::stays);
    output.write(bytes);
    return output.commit();
  }

  void tell(const UnitFile& file, const std::string& path, bool isThere) {
    const Batch::Unit* const unit = file.unit ? &batch_.units[*file.unit] : nullptr;
    if (options_.json) return console_.line(jsonOf(file, path));
    console_.line(fmt::format("{}: {}{}, {}{}", escape(path), unit != nullptr ? unit->place : "of no unit",
                              file.name.empty() ? "" : fmt::format(" \"{}\"", showName(file.name)),
                              counted(file.messages.size(), "message"), isThere ? ", stands there" : ""));
  }

  std::string jsonOf(const UnitFile& file, const std::string& path) const {
    return jsonLine(toJson(file, batch_, path));
  }

  const ConvertOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  InputStream input_;
  UnitModels models_;
  FileNames names_;
  Batch batch_;
};

}  // namespace

void convert(Words files, ConvertOptions options, Program& program) {
  takeFilesFrom(options.select, files);
  if (files.empty()) throw Failure(kWrongUsage, "expected files to convert");
  if (options.output.empty() == options.directory.empty())
    throw Failure(kWrongUsage, "expected -o FILE or --split DIR, one of them");
  const std::optional<FileFormat> format =
      options.output.empty() || options.output == "-" ? FileFormat::stream : formatOf(options.output);
  if (!format)
    throw Failure(kWrongUsage,
                  fmt::format("{}: expected a name that ends with .syx, .mid or .txt", escape(options.output)));
  if (options.pauses && format != FileFormat::standard)
    throw Failure(kWrongUsage, "--pause: only a .mid says when a message is sent");
  Converting(files, options, program).run();
}

}  // namespace Editor
