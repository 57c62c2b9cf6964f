#include "surface/Options.h"

#include <fmt/format.h>

#include <algorithm>

#include "messages/Nearest.h"
#include "messages/Text.h"
#include "surface/Call.h"

namespace Editor {

namespace {

[[noreturn]] void refuse(const std::string& text) { throw CallFailure{BDA_UNUSABLE, text}; }

[[noreturn]] void refuseMember(const char* name, const std::string& expected) {
  refuse(fmt::format("option \"{}\": expected {}", name, expected));
}

}  // namespace

Options::Options(const char* text) {
  if (text == nullptr) return;
  object_ = nlohmann::json::parse(textOf(text, "options"), nullptr, false);
  if (!object_.is_object()) refuse("options are not a JSON object");
}

const nlohmann::json* Options::find(const char* name) {
  asked_.insert(name);
  const auto member = object_.find(name);
  return member == object_.end() || member->is_null() ? nullptr : &*member;
}

bool Options::flag(const char* name) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return false;
  if (!member->is_boolean()) refuseMember(name, "true or false");
  return member->get<bool>();
}

std::optional<std::string> Options::text(const char* name) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return std::nullopt;
  if (!member->is_string()) refuseMember(name, "a string");
  return member->get<std::string>();
}

std::optional<std::string> Options::word(const char* name) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return std::nullopt;
  if (!member->is_string() && !member->is_number()) refuseMember(name, "a string or a number");
  return member->is_string() ? member->get<std::string>() : member->dump();
}

std::vector<std::string> Options::texts(const char* name) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return {};
  if (member->is_string()) return {member->get<std::string>()};
  const auto isText = [](const nlohmann::json& one) { return one.is_string(); };
  if (!member->is_array() || !std::all_of(member->begin(), member->end(), isText)) refuseMember(name, "strings");
  return member->get<std::vector<std::string>>();
}

std::optional<double> Options::number(const char* name, double least, double most) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return std::nullopt;
  const double number = member->is_number() ? member->get<double>() : least - 1;
  if (number < least || number > most) refuseMember(name, fmt::format("a number from {} to {}", least, most));
  return number;
}

std::optional<std::int64_t> Options::integer(const char* name, std::int64_t least, std::int64_t most) {
  const nlohmann::json* const member = find(name);
  if (member == nullptr) return std::nullopt;
  // One above the largest there is would be read as a negative one.
  const bool isTooLarge = member->is_number_unsigned() && member->get<std::uint64_t>() > std::uint64_t(most);
  if (!member->is_number_integer() || isTooLarge || member->get<std::int64_t>() < least ||
      member->get<std::int64_t>() > most)
    refuseMember(name, fmt::format("an integer from {} to {}", least, most));
  return member->get<std::int64_t>();
}

void Options::finish() const {
  for (const auto& [name, value] : object_.items())
    if (!asked_.contains(name))
      refuse(fmt::format("there is no option \"{}\"{}", escape(name),
                         didYouMean(name, std::vector<std::string>(asked_.begin(), asked_.end()))));
}

}  // namespace Editor
