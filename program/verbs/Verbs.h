#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
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

// Messages into other files, without a library. The files may also stand behind the addresses of `select`.
struct ConvertOptions {
  std::string output;     // one file; "": none
  std::string directory;  // one file a unit; "": none
  std::string place;      // where units are addressed to; "": they stay
  Words select;           // which units are taken; none: all messages
  std::optional<unsigned> device;
  std::chrono::milliseconds pause{20};  // between the messages of a .mid
  bool pauses = false;                  // it was asked for
  bool json = false;
};
void convert(Words files, ConvertOptions options, Program& program);

// Handing messages to the library's instrument.
struct ExchangeOptions {
  unsigned port = 1;       // on which the messages arrive: 1, 4, 5 or 6
  std::string output;      // where the answers go; "": nowhere for received requests, to standard output for our own
  std::string trace;       // "": none
  bool anyDevice = false;  // messages for other device numbers are taken too
};
void receive(const Words& files, const ExchangeOptions& options, Program& program);
void request(const Words& words, const ExchangeOptions& options, Program& program);

// The parameters of targets, whose addresses can be three words each; apply takes one, and a file of them behind it.
void show(const Words& words, bool json, Program& program);
void apply(Words words, Program& program);

// The library itself. No name: all settings; no value: what it is.
void settings(const std::string& name, const std::optional<std::string>& value, Program& program);
struct ContentsOptions {  // one of them at most; none: a grid on a terminal, else lines
  bool json = false;
  bool grid = false;
  bool lines = false;
};
void contents(const Words& words, const ContentsOptions& options, Program& program);  // no words: all

// Single contents: their addresses, then the new name of one, or on or off.
void rename(const Words& words, Program& program);
void favourite(const Words& words, Program& program);
void remove(const Words& words, Program& program);

// What changed the library, and taking that back.
struct HistoryOptions {
  std::size_t most = std::numeric_limits<std::size_t>::max();  // entries
  bool json = false;
};
void history(const HistoryOptions& options, Program& program);
struct UndoOptions {
  bool force = false;  // also where places changed since
  bool dryRun = false;
  bool json = false;
};
void undo(std::optional<std::int64_t> entry, const UndoOptions& options, Program& program);  // nothing: the newest

// Whole libraries.
void check(bool json, Program& program);
void backup(const std::string& output, Program& program);
struct RestoreOptions {
  bool dryRun = false;
  bool anyDevice = false;  // as above
};
void restore(const std::string& file, const RestoreOptions& options, Program& program);
enum class DiffForm : std::uint8_t { words, brief, json };
void diff(const std::string& first, const std::string& second, DiffForm form, Program& program);

void screen(const std::string& output, Program& program);

}  // namespace Editor
