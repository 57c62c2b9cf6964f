// The functions of the C surface that take files of messages.

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <new>

#include "convert/Conversion.h"
#include "convert/FileFormat.h"
#include "convert/UnitFileJson.h"
#include "convert/UnitFiles.h"
#include "explain/ExplainJson.h"
#include "messages/ReadingJson.h"
#include "messages/Text.h"
#include "messages/Verification.h"
#include "midi/MidiFile.h"
#include "models/ModelJson.h"
#include "salvage/Salvage.h"
#include "salvage/SalvageJson.h"
#include "surface/FilesReading.h"
#include "surface/Options.h"

namespace Editor {

namespace {

// Those who call with a handle. `act` gets what is wrong with its answer.
template <typename Act>
bda_result callWith(bda_files* files, Act act) noexcept {
  if (files == nullptr) return BDA_MISUSED;
  return call(files->error, [&] {
    Doubts doubts;
    act(doubts);
    return doubts.end(files->error);
  });
}

const MessageFile& explainedFile(bda_files& files, std::size_t number) {
  if (number >= files.list.size())
    throw CallFailure{BDA_UNUSABLE, fmt::format("there is no file {}: there are {}", number, files.list.size())};
  bda_files::File& file = files.list[number];
  if (file.explained == nullptr) file.explained = std::make_unique<MessageFile>(file.bytes);
  return *file.explained;
}

std::vector<std::string> namesOf(const bda_files& files) {
  std::vector<std::string> names;
  for (const bda_files::File& file : files.list) names.push_back(file.name);
  return names;
}

Salvage::Options salvageOptions(const bda_files& files, const char* text) {
  Options options(text);
  const std::optional<std::string> preferred = options.text("prefer");
  Salvage::Options salvage{options.flag("fix-checksums"), options.flag("merge"), std::nullopt};
  options.finish();
  if (!preferred) return salvage;
  const auto file = std::ranges::find(files.list, *preferred, &bda_files::File::name);
  if (file == files.list.end())
    throw CallFailure{BDA_UNUSABLE, fmt::format("option \"prefer\": \"{}\" is none of the files", escape(*preferred))};
  salvage.preferred = std::size_t(file - files.list.begin());
  return salvage;
}

// What is asked of files that are converted.
struct Converted {
  explicit Converted(Options options);

  Conversion conversion;
  FileFormat format;
  std::chrono::milliseconds pause{20};
};

Conversion conversionBy(Options& options) {
  Conversion::Options asked;
  for (const std::string& places : options.texts("select"))
    for (std::string& word : wordsOf(places.c_str(), "option \"select\"")) asked.select.push_back(std::move(word));
  asked.place = options.text("place").value_or("");
  if (const std::optional<std::int64_t> device = options.integer("device", 1, 16)) asked.device = unsigned(*device);
  return Conversion(std::move(asked));
}

FileFormat formatBy(Options& options) {
  const std::string name = options.text("format").value_or("syx");
  const std::optional<FileFormat> format = formatOf("." + name);
  if (!format || name.size() != 3)
    throw CallFailure{BDA_UNUSABLE, fmt::format("option \"format\": \"{}\": expected syx, mid or txt", escape(name))};
  return *format;
}

Converted::Converted(Options options) : conversion(conversionBy(options)), format(formatBy(options)) {
  constexpr std::int64_t kLongest = 60'000;
  const std::optional<std::int64_t> asked = options.integer("pause", 0, kLongest);
  options.finish();
  if (asked && format != FileFormat::standard)
    throw CallFailure{BDA_UNUSABLE, "option \"pause\": only a .mid says when a message is sent"};
  if (asked) pause = std::chrono::milliseconds(*asked);
}

// What is missing or broken of files that are converted, as doubts.
class ConversionDoubts final : public Conversion::Listener {
 public:
  explicit ConversionDoubts(Doubts& doubts) : doubts_(doubts) {}
  void missing(const std::string& text) override { doubts_.add(text); }
  void broken(const std::vector<MessageFault>& faults) override {
    for (const MessageFault& fault : faults) doubts_.add(fault.text);
  }
  void note(const std::string& /*text*/) override {}

 private:
  Doubts& doubts_;
};

template <typename Messages>
std::string joined(const Messages& messages) {
  std::string bytes;
  for (const std::vector<std::uint8_t>& message : messages) bytes.append(message.begin(), message.end());
  return bytes;
}

}  // namespace

}  // namespace Editor

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

bda_result bda_files_new(bda_files** files) {
  if (files == nullptr) return BDA_MISUSED;
  *files = new (std::nothrow) bda_files;
  return *files == nullptr ? BDA_FAILED : BDA_OK;
}

void bda_files_close(bda_files* files) { delete files; }

const char* bda_files_error(const bda_files* files) {
  return files == nullptr ? "files is NULL" : files->error.c_str();
}

bda_result bda_files_add(bda_files* files, const char* name, const uint8_t* bytes, size_t size) {
  return callWith(files, [&](Doubts&) {
    bda_files::File file{std::string(textOf(name, "name")), {}};
    if (size > 0) require(bytes, "bytes");
    BytesInMemory source({bytes, size});
    if (const FileJudgement judgement = judgeFile(source); !judgement.isUsable())
      throw CallFailure{BDA_UNUSABLE, fmt::format("{}: {}", escape(file.name), judgement.whyUnusable())};
    file.bytes.assign(bytes, bytes + size);
    files->list.push_back(std::move(file));
  });
}

bda_result bda_files_name_parameters(bda_files* files, const char* names) {
  return callWith(files, [&](Doubts&) { files->names = parameterNamesIn(names); });
}

bda_result bda_files_each(bda_files* files, bda_visit visit, void* context) {
  return callWith(files, [&](Doubts& doubts) {
    if (visit == nullptr) throw CallFailure{BDA_MISUSED, "visit is NULL"};
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t) {
          visit(context, message.number, message.offset, message.bytes.data(), message.bytes.size());
        },
        [&](const InputLoss& loss, std::size_t) { doubtLoss(loss, doubts); });
  });
}

bda_result bda_files_list(bda_files* files, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    std::string lines;
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t) {
          const Reading reading = readMessage(message.bytes);
          lines += jsonLine(toJson(message, reading)) + '\n';
          doubt(faultsIn(reading), placeOf(message), doubts);
        },
        [&](const InputLoss& loss, std::size_t) {
          lines += jsonLine(toJson(loss)) + '\n';
          doubtLoss(loss, doubts);
        });
    handOut(copyOf(lines), json);
  });
}

bda_result bda_files_verify(bda_files* files, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    std::string lines;
    Verification verification;
    const auto tell = [&](const std::vector<UnitReport>& ended) {
      for (const UnitReport& unit : ended) {
        lines += jsonLine(toJson(unit)) + '\n';
        if (isBroken(unit)) doubts.add(describeUnit(unit));
      }
    };
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t) {
          const Reading reading = readMessage(message.bytes);
          lines += jsonLine(toJson(message, reading)) + '\n';
          doubt(faultsIn(reading), placeOf(message), doubts);
          tell(verification.next(reading, message.number));
        },
        [&](const InputLoss& loss, std::size_t) {
          lines += jsonLine(toJson(loss)) + '\n';
          doubtLoss(loss, doubts);
        });
    tell(verification.finish());
    handOut(copyOf(lines), json);
  });
}

bda_result bda_files_explain(bda_files* files, size_t number, uint64_t offset, uint64_t count, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    const MessageFile& file = explainedFile(*files, number);
    const std::string& name = files->list[number].name;
    const std::uint64_t end = count < file.size() ? std::min(offset + count, file.size()) : file.size();
    FileExplainer explainer(file);
    std::string lines;
    for (std::uint64_t at = offset; at < end; ++at)
      if (const std::optional<MessageFile::Byte> byte = file.find(at); byte && byte->offset == at)
        lines += jsonLine(toJson(name, *byte, explainer.explain(*byte), files->names)) + '\n';
    for (const MidiFile::Error& error : file.errors())
      doubts.add(fmt::format("{}: at offset {}: {}", escape(name), error.offset, error.text));
    handOut(copyOf(lines), json);
  });
}

bda_result bda_files_salvage(bda_files* files, const char* options, uint8_t** whole, size_t* wholeSize,
                             uint8_t** requests, size_t* requestsSize, char** json) {
  if (json != nullptr) *json = nullptr;
  if (whole != nullptr) *whole = nullptr;
  if (requests != nullptr) *requests = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    if (whole != nullptr) require(wholeSize, "wholeSize");
    if (requests != nullptr) require(requestsSize, "requestsSize");
    Salvage salvage(salvageOptions(*files, options));
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t source) {
          salvage.add({source, message.number, message.offset, {message.bytes.begin(), message.bytes.end()}, {}});
        },
        [&](const InputLoss& loss, std::size_t source) { salvage.lose(source, loss); });
    const SalvageResult result = salvage.finish();
    const std::vector<std::string> names = namesOf(*files);
    std::string lines;
    for (const Salvaged& unit : result.units) lines += jsonLine(toJson(unit, names)) + '\n';
    std::string kept;
    for (const Piece& piece : result.messages) kept.append(piece.bytes.begin(), piece.bytes.end());
    if (!result.isNothingLost()) doubts.add("not everything is whole");
    if (kept.empty()) doubts.add("nothing is whole");
    const std::string asked = joined(result.requests);
    Copy text = copyOf(lines);
    Copy keptBytes = copyOf(kept);
    Copy askedBytes = copyOf(asked);
    handOut(std::move(text), json);
    handOut(std::move(keptBytes), whole);
    handOut(std::move(askedBytes), requests);
    if (whole != nullptr) *wholeSize = kept.size();
    if (requests != nullptr) *requestsSize = asked.size();
  });
}

bda_result bda_files_convert(bda_files* files, const char* options, uint8_t** bytes, size_t* size, char** json) {
  if (json != nullptr) *json = nullptr;
  if (bytes != nullptr) *bytes = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    if (bytes != nullptr) require(size, "size");
    const Converted asked{Options(options)};
    BatchBuilder builder;
    readAll(
        *files, [&](const InputMessage& message, std::size_t) { builder.add(message.bytes); },
        [&](const InputLoss& loss, std::size_t) { doubtLoss(loss, doubts); });
    Batch batch = builder.finish();
    UnitModels models;
    ConversionDoubts listener(doubts);
    try {
      asked.conversion.apply(batch, models, listener);
    } catch (const ConversionError& error) {
      doubts.add(error.what());
      doubts.fail(error.kind() == ConversionError::Kind::refused ? BDA_REFUSED : BDA_UNUSABLE);
    }
    const std::optional<WrittenFile> file = writeFile(batch, asked.format, asked.pause);
    if (!file)
      throw CallFailure{BDA_REFUSED,
                        fmt::format("a .mid of more than {} MB, nothing is written", kLargestMidiFile / 1'000'000)};
    std::string lines;
    forEachUnitFile(batch, Sharing::together, models,
                    [&](const UnitFile& unit) { lines += jsonLine(toJson(unit, batch, "-")) + '\n'; });
    Copy text = copyOf(lines);
    Copy whole = copyOf({reinterpret_cast<const char*>(file->bytes.data()), file->bytes.size()});
    handOut(std::move(text), json);
    handOut(std::move(whole), bytes);
    if (bytes != nullptr) *size = file->bytes.size();
  });
}

bda_result bda_library_of_files(bda_files* files, bda_library** library) {
  if (library != nullptr) *library = nullptr;
  return callWith(files, [&](Doubts& doubts) {
    require(library, "library");
    auto made = std::make_unique<bda_library>();
    made->editor = std::make_unique<EmbeddedEditor>();
    made->isOfFiles = true;
    made->names = files->names;
    EmbeddedEditor& editor = *made->editor;
    EmbeddedEditor::Run run(editor, Library::Transaction::Access::Write, EmbeddedEditor::Run::Devices::any);
    readAll(
        *files,
        [&](const InputMessage& message, std::size_t) {
          const Reading reading = readMessage(message.bytes);
          if (reading.kind == Reading::Kind::foreign) return;
          doubt(faultsOf(editor.handle(reading, message.bytes, BDA::DevicePort_Main, message.number)), placeOf(message),
                doubts);
        },
        [&](const InputLoss& loss, std::size_t) { doubtLoss(loss, doubts); });
    for (const UnitReport& unit : editor.openUnits()) doubts.add(describeUnit(unit));
    run.commit();
    editor.library().takeChanges();  // or the first message would be told to have made them
    *library = made.release();
  });
}
