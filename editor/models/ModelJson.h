#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "models/ModelSet.h"

// The published JSON of the models: one object with a key for each model of a set; a group is an array of integers, a
// name a string whose code points U+0001 to U+00FF are the name's bytes, a list an array of objects.
namespace Editor {

nlohmann::ordered_json toJson(const ModelSet& models);

// One value by itself: a number, a name, bytes as hex; null where it is not known.
nlohmann::ordered_json valueToJson(const ParameterValue& value);

// The exact inverse: `models` comes in with the expected shape, and every model in it is replaced whole. Unless the
// JSON has just these keys and lengths, and values that fit, `models` is untouched and the answer is a line that begins
// with the path: "voice.element[3].params[12]: 256 is no integer from 0 to 255".
[[nodiscard]] std::optional<std::string> fromJson(const nlohmann::ordered_json& json, ModelSet& models);

// Parses JSON text, refusing what a parser would settle in silence: a key that occurs twice in an object. The answer is
// what is wrong with the text; `json` is then untouched.
[[nodiscard]] std::optional<std::string> parseJson(std::string_view text, nlohmann::ordered_json& json);

// The text of JSON, of any kind, as it is printed: one line of ASCII, for a terminal would obey U+0080 to U+009F. Of a
// text that is no UTF-8 each wrong byte is U+FFFD.
std::string jsonLine(const nlohmann::ordered_json& json);

}  // namespace Editor
