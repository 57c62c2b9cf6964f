// The verb explain: what the bytes of a message file are, and where a parameter travels.

#include "explain/Explain.h"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "explain/ExplainJson.h"
#include "explain/ParameterBytes.h"
#include "input/InputStream.h"
#include "input/Sources.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/MidiFile.h"
#include "models/ModelJson.h"
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
  if (!file.isUsable()) throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(path), file.whyUnusable()));
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
    program.console.line(jsonLine(toJson(path, byte, meaning, names)));
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
    program.console.line(jsonLine(toJson(path, byte, explainer.explain(byte), names)));
  });
}

void explainParameter(const std::string& word, const std::string& parameter, bool json, Program& program) {
  const ParameterPlace place = parseParameterPlace(word);
  const std::string path = parsePath(place, parameter, program.parameterNames());
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  const auto complain = [&](BulkAddress address, const std::string& why) {
    program.console.problem(fmt::format("{}: no answer: {}", nameAndBytes(address), escape(why)));
    program.refuse();
  };
  const std::vector<CarryingByte> bytes = bytesOf(*editor, place, path, complain);
  for (const CarryingByte& byte : bytes) program.console.line(json ? jsonLine(toJson(byte)) : lineOf(byte));
  if (bytes.empty() && program.exitCode() == kAllGood) refuseUncarried(place, path);
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
