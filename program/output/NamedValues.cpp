#include "output/NamedValues.h"

#include <fmt/format.h>

#include "messages/Text.h"

namespace Editor {

namespace {

std::string called(const std::string& what, const std::string& name) {
  return name.empty() ? what : fmt::format("{} ({})", what, name);
}

}  // namespace

std::string showPath(const std::string& path, const ParameterNames& names) { return called(path, names.nameOf(path)); }

std::string showValue(const std::string& path, const ParameterValue& value, const ParameterNames& names) {
  return called(showValue(value), names.nameOf(path, value));
}

}  // namespace Editor
