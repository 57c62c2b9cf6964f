// The verb explain: what the bytes of a message file are, and where a parameter travels.

#include "explain/Explain.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

#include "exchange/Answers.h"
#include "input/InputStream.h"
#include "input/Sources.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/MidiFile.h"
#include "output/ExplainLines.h"
#include "output/LossReport.h"
#include "output/Progress.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// A number in decimal or with 0x before it; the largest there is stands for any that is larger, behind the end of all.
std::optional<std::uint64_t> parseOffset(const std::string& word) {
  const bool isHex = word.starts_with("0x") || word.starts_with("0X");
  const char* const first = word.data() + (isHex ? 2 : 0);
  const char* const end = word.data() + word.size();
  std::uint64_t number = 0;
  const auto [last, error] = std::from_chars(first, end, number, isHex ? 16 : 10);
  if (first == end || last != end || error == std::errc::invalid_argument) return std::nullopt;
  return error == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max() : number;
}

bool isAddress(const std::string& word) {
  try {
    return !parsePlaces(word).list.empty();
  } catch (const TargetError&) {
    return false;
  }
}

MessageFile loadMessages(const std::string& path) {
  std::string error;
  std::optional<std::vector<std::uint8_t>> bytes = loadBytes(path, error);
  if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(path), error));
  MessageFile file(std::move(*bytes));
  if (!file.isUsable()) throw Failure(kUnusableInput, whyNoMessages(path, file.countMessages() != 0, file.describe()));
  return file;
}

// `word` is the offset as it was written.
void explainOffset(const std::string& path, std::uint64_t offset, const std::string& word, bool json,
                   Program& program) {
  const ParameterNames names = program.parameterNames();
  const MessageFile file = loadMessages(path);
  if (offset >= file.size())
    throw Failure(kUnusableInput, fmt::format("{}: offset {} lies behind the end: it has {}", displayName(path), word,
                                              counted(file.size(), "byte")));
  const MessageFile::Byte between{.offset = offset, .value = file.raw(offset)};
  const MessageFile::Byte byte = file.find(offset).value_or(between);
  const ByteMeaning meaning = FileExplainer(file).explain(byte);
  if (json)
    program.console.line(jsonOf(path, byte, meaning, names));
  else
    program.console.text(textOf(byte, meaning, names));
}

// Sixteen bytes a line, fewer where a message ends, under a heading for each.
void annotate(const MessageFile& file, const ParameterNames& names, Console& console) {
  constexpr std::size_t kBytesOfLine = 16;
  FileExplainer explainer(file);
  std::vector<ExplainedByte> line;
  std::uint32_t message = MessageFile::kNone;
  bool isFirst = true;
  const auto end = [&] {
    if (!line.empty()) console.line(lineOf(line, names));
    line.clear();
  };
  file.forEachByte([&](const MessageFile::Byte& byte) {
    Interruptible::check();
    if (isFirst || byte.message != message || line.size() == kBytesOfLine) end();
    ByteMeaning meaning = explainer.explain(byte);
    if (isFirst || byte.message != message) console.line(headingOf(meaning));
    isFirst = false;
    message = byte.message;
    line.push_back({byte, std::move(meaning)});
  });
  end();
}

void explainFile(const std::string& path, bool json, Program& program) {
  const ParameterNames names = program.parameterNames();
  const MessageFile file = loadMessages(path);
  LossReport losses(program.console);
  for (const MidiFile::Error& error : file.errors())
    losses.add({path, error.offset, 0, error.text, InputLoss::Kind::brokenFile});
  losses.finish();
  if (!losses.areAllWhole()) program.refuse();
  const Interruptible interruptible;
  if (!json) return annotate(file, names, program.console);
  FileExplainer explainer(file);
  file.forEachByte([&](const MessageFile::Byte& byte) {
    Interruptible::check();
    program.console.line(jsonOf(path, byte, explainer.explain(byte), names));
  });
}

// What `request` of the places sends; what is not answered is told.
std::vector<std::vector<std::uint8_t>> dumpsOf(const std::vector<BulkAddress>& places, Program& program) {
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  std::vector<std::vector<std::uint8_t>> dumps;
  std::uint64_t number = 0;
  for (const BulkAddress place : places) {
    const Record record = editor->handle(editor->requestFor(place), BDA::DevicePort_Main, ++number);
    if (const std::string why = whyUnanswered(record); !why.empty()) {
      program.console.problem(fmt::format("{}: no answer: {}", nameAndBytes(place), escape(why)));
      program.refuse();
      continue;
    }
    for (const AssistantHost::Sent& sent : record.sent) dumps.push_back(sent.bytes);
  }
  return dumps;
}

// A file dump carries the whole content in a form of the editor's own.
[[noreturn]] void refuseFileDump(BulkAddress dump) {
  const std::string name = nameOrBytes(dump);
  const std::string place = placeNameOf(dump);
  throw Failure(kRefused, fmt::format("{}: in a file dump no parameter has bytes of its own{}", name,
                                      place == name ? "" : fmt::format(": see {}", place)));
}

// Why none of the blocks that the places send carries it: another block of the system may.
[[noreturn]] void refuseUncarried(const Places<BulkAddress>& places, const std::string& path) {
  std::string others;
  for (const BulkAddress block : systemAddresses())
    if (carries(block, path)) others += (others.empty() ? "" : ", ") + nameOrBytes(block);
  if (others.empty()) throw Failure(kRefused, fmt::format("{}: no block carries {}", places.name, path));
  throw Failure(kRefused, fmt::format("{}: it does not carry {}: see {}", places.name, path, others));
}

// What may have been meant by a word that is none of the paths of a place, nor a name of one.
std::string meantBy(const std::string& word, std::vector<std::string> paths, const ParameterNames& names) {
  const std::set<std::string> known(paths.begin(), paths.end());
  for (const auto& [name, count] : names.namesAmong([&](const std::string& path) { return known.contains(path); }))
    if (count == 1) paths.push_back(name);
  return didYouMean(word, paths);
}

void explainParameter(const std::string& word, const std::string& parameter, bool json, Program& program) {
  const Places<BulkAddress> places = parsePlaces(word);
  if (!places.isOne && word != "system")
    throw Failure(kWrongUsage, fmt::format("{}: expected one place, not a bank or a range", places.name));
  if (const auto block = findBlock(places.list.front()); block && block->role == Role::fileDump)
    refuseFileDump(places.list.front());
  const std::vector<std::string> paths = pathsOf(places.list);
  if (paths.empty()) throw Failure(kRefused, fmt::format("{}: it is not made of parameters", places.name));
  const ParameterNames names = program.parameterNames();
  const std::string path = names.pathOf(
      parameter, [&](const std::string& one) { return std::find(paths.begin(), paths.end(), one) != paths.end(); });
  if (path.empty())
    throw Failure(kWrongUsage, fmt::format("{}: it has no parameter \"{}\"{}", places.name, escape(parameter),
                                           meantBy(parameter, paths, names)));
  const std::vector<std::vector<std::uint8_t>> dumps = dumpsOf(places.list, program);
  const std::vector<CarryingByte> bytes = bytesByPath(dumps)[path];
  for (const CarryingByte& byte : bytes) program.console.line(json ? jsonOf(byte) : lineOf(byte));
  if (bytes.empty() && program.exitCode() == kAllGood) refuseUncarried(places, path);
}

}  // namespace

void explain(const Words& words, bool json, Program& program) {
  const Words joined = joinAddresses(words);
  const std::string& first = joined.front();
  if (joined.size() > 2)
    throw Failure(kWrongUsage, "expected a file, a file and an offset, or an address and the path of a parameter");
  if (joined.size() == 1) {
    if (isAddress(first))
      throw Failure(kWrongUsage, fmt::format("{}: an address needs the path of a parameter, such as voice.common[3]; "
                                             "a file of that name is ./{}",
                                             escape(first), escape(first)));
    return explainFile(first, json, program);
  }
  if (const std::optional<std::uint64_t> offset = parseOffset(joined[1]))
    return explainOffset(first, *offset, joined[1], json, program);
  if (!isAddress(first) && (first == "-" || isThere(first)))
    throw Failure(kWrongUsage,
                  fmt::format("\"{}\": expected the offset of a byte, such as 1024 or 0x400", escape(joined[1])));
  explainParameter(first, joined[1], json, program);
}

}  // namespace Editor
