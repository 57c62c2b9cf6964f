#pragma once

// The program `bda` as its user runs it: a process, a library of its own without contents, files in a directory of its
// own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "contents/Library.h"
#include "editor/messages/BulkMessages.h"

using Json = nlohmann::ordered_json;

struct Result {
  int code = -1;  // -1: it did not end by itself
  std::string out;
  std::string err;
};

class Program : public testing::Test {
 protected:
  Program();
  ~Program() override;

  // In the test's directory, with its library.
  Result bda(const std::vector<std::string>& arguments, const std::string& input = "");
  Result bdaWithout(const std::string& variable, const std::vector<std::string>& arguments);

  std::filesystem::path libraryFile() const { return directory / "library.db"; }
  // That one, or another of the directory.
  Editor::Library library(const std::string& name = "library.db") const { return Editor::Library(directory / name); }
  // As on the first day: there is no library yet.
  void removeLibrary() { std::filesystem::remove(libraryFile()); }

  // A file of the test's directory, by its name.
  void write(const std::string& name, const std::string& bytes);
  void write(const std::string& name, std::initializer_list<Bytes> messages);
  std::string read(const std::string& name) const;
  bool exists(const std::string& name) const;
  std::vector<std::string> files() const;  // without the library's

  // A whole unit: header, all blocks of the list filled with `value`, footer.
  static Bytes unit(Editor::BulkAddress header, BDA::List list, std::uint8_t value = 0);
  // All system blocks.
  static Bytes systemDump(std::uint8_t value);

  // The object, or the objects a line, that it says: it ends with 0.
  Json json(const std::vector<std::string>& arguments);
  std::vector<Json> objects(const std::vector<std::string>& arguments);
  // The trace that `name` holds, one object for each message.
  std::vector<Json> trace(const std::string& name) const;
  // A change as the verbs and the history say it.
  static Json change(const std::string& place, const char* what, const Json& before, const Json& after);

  std::filesystem::path directory;
};

// Lines of a text.
std::vector<std::string> lines(const std::string& text);
std::vector<Json> objectsOf(const std::string& lines);
std::string text(const Bytes& bytes);

MATCHER_P(Exits, code, "") {
  *result_listener << "code " << arg.code << "\n-- out:\n" << arg.out << "-- err:\n" << arg.err;
  return arg.code == code;
}
