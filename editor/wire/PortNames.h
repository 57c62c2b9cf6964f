#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// Those of which there are several get their number: "Piano", "Piano (2)".
std::vector<std::string> toldApart(std::vector<std::string> names);

// Which of the names is meant: the whole of it, or else without regard to the case of ASCII letters, or else the only
// one of which the word is a part. Nothing: none is. Throws PortError (cannotOpen), with their names, where several may
// be meant.
std::optional<std::size_t> findPort(std::string_view word, const std::vector<std::string>& names);

// "port Pinao: there is none of that name: did you mean Piano?", or else which there are, and what else names a port.
std::string describeNoPort(const std::string& word, const std::vector<std::string>& names);

}  // namespace Editor
