#include "output/ExplainLines.h"

#include <fmt/format.h>

#include "midi/Hex.h"
#include "output/NamedValues.h"

namespace Editor {

namespace {

std::string numbersOf(const PackedBytes& bytes) {
  if (!bytes.areHighBits) return fmt::format("byte {}", bytes.numbers.front());
  return fmt::format("the high bits of bytes {}", fmt::join(bytes.numbers, ", "));
}

const char* wordsOf(Part part) {
  return part == Part::byteCount ? "byte count" : part == Part::device ? "type and device" : wordOf(part);
}

// What a byte of a file dump carries.
std::string packedWords(const ByteMeaning& meaning) {
  const std::string content = nameOf(*meaning.content);
  if (meaning.nameBytes) return fmt::format("name of {}: {}", content, numbersOf(*meaning.nameBytes));
  if (meaning.contentBytes) return fmt::format("{}: {}", content, numbersOf(*meaning.contentBytes));
  return fmt::format("{}: frame of its file dump", content);
}

// Puts what bytes mean into few words: "frame, maker", "voice.common[5-12], unused 39".
class Words {
 public:
  explicit Words(const ParameterNames& names) : names_(names) {}

  void add(const ByteMeaning& meaning) {
    if (meaning.content) return addPacked(meaning);
    if (!meaning.dataByte) return add(meaning.reason.empty() ? wordsOf(meaning.part) : meaning.reason);
    if (meaning.parameters.empty()) return add(meaning.unused ? "unused " : "data ", *meaning.dataByte);
    for (const CarriedParameter& parameter : meaning.parameters) {
      const std::size_t number = parameter.path.rfind('[') + 1;
      if (!names_.nameOf(parameter.path).empty())
        add(showPath(parameter.path, names_));
      else if (parameter.path.back() == ']')
        add(parameter.path.substr(0, number), std::stoul(parameter.path.substr(number)), "]");
      else
        add(parameter.path);
    }
  }

  std::string text() const {
    std::string text;
    for (const Run& run : runs_) {
      if (!text.empty()) text += ", ";
      text += run.before;
      if (run.isNumbered) text += std::to_string(run.first);
      if (run.first != run.last) text += fmt::format("-{}", run.last);
      text += run.after;
    }
    return text;
  }

 private:
  struct Run {
    std::string before;
    const char* after;
    bool isNumbered;
    std::size_t first;
    std::size_t last;
  };

  // High bits belong to the bytes behind them.
  void addPacked(const ByteMeaning& meaning) {
    const std::string content = nameOf(*meaning.content);
    if (meaning.nameBytes && !meaning.nameBytes->areHighBits)
      add("name of " + content + " byte ", meaning.nameBytes->numbers.front());
    else if (meaning.contentBytes && !meaning.contentBytes->areHighBits)
      add(content + " byte ", meaning.contentBytes->numbers.front());
    else if (!meaning.nameBytes && !meaning.contentBytes)
      add("length");
  }

  void add(const std::string& word) {
    if (runs_.empty() || runs_.back().isNumbered || runs_.back().before != word)
      runs_.push_back({word, "", false, 0, 0});
  }
  void add(const std::string& before, std::size_t number, const char* after = "") {
    const bool isLike = !runs_.empty() && runs_.back().isNumbered && runs_.back().before == before;
    if (isLike && (runs_.back().last == number || runs_.back().last + 1 == number))
      runs_.back().last = number;
    else
      runs_.push_back({before, after, true, number, number});
  }

  const ParameterNames& names_;
  std::vector<Run> runs_;
};

}  // namespace

std::string textOf(const MessageFile::Byte& byte, const ByteMeaning& meaning, const ParameterNames& names) {
  std::string text = fmt::format(
      "offset {} ({:#x}): {:02X}, {}", byte.offset, byte.offset, byte.value,
      meaning.dataByte ? fmt::format("data byte {}", *meaning.dataByte) : std::string(wordsOf(meaning.part)));
  if (!meaning.reason.empty()) text += ": " + meaning.reason;
  if (meaning.part == Part::device && meaning.device)
    text += fmt::format(": {}, device {}", wordOf(meaning.kind), *meaning.device);
  text += '\n' + headingOf(meaning) + '\n';
  if (meaning.content) text += packedWords(meaning) + '\n';
  for (const CarriedParameter& parameter : meaning.parameters)
    text += fmt::format("{} = {}: bits {:02X}: {}\n", showPath(parameter.path, names),
                        showValue(parameter.path, parameter.value, names), parameter.bits, parameter.how);
  if (meaning.unused && *meaning.unused != 0)
    text += fmt::format("bits {:02X}: a gap, they carry nothing\n", *meaning.unused);
  return text;
}

std::string lineOf(const CarryingByte& byte) {
  return fmt::format("message {}, {} ({}): data byte {}: {:02X}, bits {:02X}: {}", byte.message,
                     formatAddress(byte.address), describeAddress(byte.address), byte.dataByte, byte.value, byte.bits,
                     byte.how);
}

std::string headingOf(const ByteMeaning& meaning) {
  if (meaning.message == MessageFile::kNone) return "in no message";
  std::string heading = fmt::format("message {}: {}", meaning.message, wordOf(meaning.kind));
  if (meaning.address)
    heading += fmt::format(" of {} ({})", describeAddress(*meaning.address), formatAddress(*meaning.address));
  return heading;
}

std::string lineOf(std::span<const ExplainedByte> bytes, const ParameterNames& names) {
  std::vector<std::uint8_t> values;
  Words words(names);
  for (const ExplainedByte& one : bytes) {
    values.push_back(one.byte.value);
    words.add(one.meaning);
  }
  return fmt::format("{:>8}  {:<47}  {}", bytes.front().byte.offset, formatHex(values), words.text());
}

}  // namespace Editor
