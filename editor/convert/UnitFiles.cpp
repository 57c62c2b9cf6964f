#include "convert/UnitFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

#include "messages/Messages.h"

namespace Editor {

namespace {

bool isLetterOrDigit(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

// What stands between the dots and blanks at its ends is left; anything strange becomes one "_".
std::string safe(std::string_view name) {
  constexpr std::string_view kHarmless = "-+.";
  std::string text;
  for (const char c : name) {
    const bool isSafe = isLetterOrDigit(c) || (!text.empty() && kHarmless.find(c) != std::string_view::npos);
    if (isSafe)
      text += c;
    else if (!text.empty() && text.back() != '_')
      text += '_';
  }
  while (!text.empty() && !isLetterOrDigit(text.back()) && text.back() != '+') text.pop_back();
  return text;
}

// "voice:user1:6" becomes "voice-user1-006", so that files stand in the order of the numbers.
std::string stemOfPlace(std::string_view place) {
  constexpr std::string_view kFile = "file:";
  if (place.substr(0, kFile.size()) == kFile) place.remove_prefix(kFile.size());
  std::string stem;
  while (!place.empty()) {
    const std::string_view part = place.substr(0, place.find(':'));
    place.remove_prefix(std::min(part.size() + 1, place.size()));
    const bool isNumber = std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
    stem += (stem.empty() ? "" : "-") + (isNumber ? fmt::format("{:0>3}", part) : safe(part));
  }
  return stem;
}

std::string inLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
  return text;
}

}  // namespace

std::size_t UnitFile::size() const {
  std::size_t size = 0;
  for (const std::vector<std::uint8_t>& message : messages) size += message.size();
  return size;
}

std::string fileStemOf(const Batch::Unit& unit, const std::string& name) {
  constexpr std::size_t kLongestName = 200;  // leaves room for place, number and ending, also while it is written
  std::string stem = stemOfPlace(unit.place);
  if (const std::string text = safe(std::string_view(name).substr(0, kLongestName)); !text.empty()) stem += "-" + text;
  return unit.removes ? stem + "-removes" : stem;
}

void forEachUnitFile(const Batch& batch, Sharing sharing, UnitModels& models,
                     const std::function<void(const UnitFile&)>& visit) {
  const bool isApart = sharing == Sharing::apart;
  const std::vector<std::vector<std::size_t>> messages = batch.messagesByUnit();
  for (std::size_t i = 0; i < batch.units.size(); ++i) {
    const Batch::Unit& unit = batch.units[i];
    UnitFile file{i, {}, {}, {}};
    for (const std::size_t message : messages[i]) file.messages.push_back(batch.messages[message].bytes);
    file.name = unit.place == "system" ? "" : models.read(unit, file.messages).name;
    file.stem = fileStemOf(unit, file.name);
    if (isApart && unit.form == Batch::Unit::Form::fileDump && isWritableFileDump(*unit.address))
      file.messages.push_back(triggerFor(file.messages.front()));
    visit(file);
  }
  UnitFile others{std::nullopt, "other", {}, {}};
  for (const Batch::Message& message : batch.messages)
    if (!message.unit && !(isApart && !message.writes.empty())) others.messages.push_back(message.bytes);
  if (!others.messages.empty()) visit(others);
}

std::string FileNames::next(const std::string& stem, const std::function<bool(const std::string&)>& isFree) {
  const auto nameOf = [&](unsigned number) {
    return number == 1 ? stem + ".syx" : fmt::format("{}-{}.syx", stem, number);
  };
  unsigned& first = upTo_.emplace(inLowerCase(stem), 1).first->second;
  while (given_.contains(inLowerCase(nameOf(first)))) ++first;
  for (unsigned number = first;; ++number) {
    std::string name = nameOf(number);
    std::string key = inLowerCase(name);
    if (given_.contains(key) || !isFree(name)) continue;
    given_.insert(std::move(key));
    return name;
  }
}

}  // namespace Editor
