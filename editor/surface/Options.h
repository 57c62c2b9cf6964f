#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Editor {

// The options of a call: a JSON object, or null, which is as one without members. Each member is asked for once, by its
// name; then finish() refuses those that nobody has asked for. All throw CallFailure (BDA_UNUSABLE).
class Options {
 public:
  explicit Options(const char* text);

  bool flag(const char* name);  // false where it is not there
  std::optional<std::string> text(const char* name);
  std::optional<std::string> word(const char* name);  // a text, or a number as it is written
  std::vector<std::string> texts(const char* name);   // one text is a list of one
  std::optional<double> number(const char* name, double least, double most);
  std::optional<std::int64_t> integer(const char* name, std::int64_t least, std::int64_t most);
  void finish() const;

 private:
  const nlohmann::json* find(const char* name);

  nlohmann::json object_ = nlohmann::json::object();
  std::set<std::string> asked_;
};

}  // namespace Editor
