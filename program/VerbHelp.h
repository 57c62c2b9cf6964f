#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace Editor {

// What the program says of its verbs, as data: whoever tells it, in whatever form, has it from here. What a verb's
// options are, the command line says where it declares them.

enum class VerbGroup : std::uint8_t { files, receiving, instrument, library, help };
// In the order in which they are told.
inline constexpr std::array kVerbGroups{VerbGroup::files, VerbGroup::receiving, VerbGroup::instrument,
                                        VerbGroup::library, VerbGroup::help};
const char* titleOf(VerbGroup group);

struct Example {
  const char* command;
  const char* what;
};

// Which of the common options a verb heeds, beside --help and --quiet.
struct Heeds {
  bool library = false;
  enum class Names : std::uint8_t { none, lists, parameters } names = Names::none;  // of the file of names
  bool verbose = false;
};

struct VerbHelp {
  const char* name;
  const char* arguments;  // as the usage line has them
  const char* summary;
  VerbGroup group;
  Heeds heeds;
  std::array<Example, 2> examples;
};

// Group by group.
std::span<const VerbHelp> verbHelps();
const VerbHelp* findVerb(const std::string& name);  // null: there is none

// How places are named: paragraphs of lines that fit 80 columns; lists in them are indented.
const char* addressHelp();

struct ExitCodeHelp {
  int code;
  const char* what;
};
std::span<const ExitCodeHelp> exitCodeHelps();

}  // namespace Editor
