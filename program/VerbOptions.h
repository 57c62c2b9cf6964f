#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "verbs/Verbs.h"

namespace CLI {
class App;
}

namespace Editor {

// The words of the command line, whichever verb they are for: only one runs.
struct Given {
  Words words;
  std::string never;
  std::string file;
  std::string secondFile;
  std::string output;
  std::string setting;
  std::optional<std::string> value;
  ExchangeOptions exchange;
  ConvertOptions convert;
  ShowOptions show;
  ReceiveOptions receive;
  ContentsOptions contents;
  std::string manifest;
  FindOptions find;
  bool json = false;
  RestoreOptions restore;
  ChangeOptions change;
  std::string table;
  std::string otherLibrary;
  SalvageOptions salvage;
  RecordOptions record;
  FetchOptions fetch;
  SendOptions send;
  InstrumentOptions instrument;
  bool brief = false;
  HistoryOptions history;
  std::optional<std::int64_t> entry;
  bool force = false;
  bool manual = false;
  std::function<void()> verb;  // what to do with them
};

// As CLI11 checks values: what is wrong with it, or nothing.
std::string checkFileName(const std::string& name);

// The verbs with their options, each of which puts what is to be done into `given`, which outlives the command line as
// the program does.
void addVerbs(CLI::App& app, Given& given, Program& program);

}  // namespace Editor
