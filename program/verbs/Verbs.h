#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Program.h"

namespace Editor {

// The verbs of the program, each with the words of its command line. What they refuse or find broken is told on the
// console and makes the exit code; what ends them early is thrown as Failure. "-" is standard input or output.

using Words = std::vector<std::string>;

// Judging messages, without a library.
void list(const Words& files, bool json, Program& program);
void verify(const Words& files, bool json, Program& program);

// Handing messages to the library's instrument.
struct ExchangeOptions {
  unsigned port = 1;   // on which the messages arrive: 1, 4, 5 or 6
  std::string output;  // where the answers go; "": nowhere for received requests, to standard output for our own
  std::string trace;   // "": none
};
void receive(const Words& files, const ExchangeOptions& options, Program& program);
void request(const Words& words, const ExchangeOptions& options, Program& program);

// The parameters of a target, whose address can be three words; apply takes a file of them behind it.
void show(const Words& words, bool json, Program& program);
void apply(Words words, Program& program);

// The library itself. No name: all settings; no value: what it is.
void settings(const std::string& name, const std::optional<std::string>& value, Program& program);
void contents(bool json, Program& program);

// Single contents: their addresses, then the new name of one, or on or off.
void rename(const Words& words, Program& program);
void favourite(const Words& words, Program& program);
void remove(const Words& words, Program& program);

// Whole libraries.
void backup(const std::string& output, Program& program);
void restore(const std::string& file, bool dryRun, Program& program);
enum class DiffForm : std::uint8_t { words, brief, json };
void diff(const std::string& first, const std::string& second, DiffForm form, Program& program);

void screen(const std::string& output, Program& program);

}  // namespace Editor
