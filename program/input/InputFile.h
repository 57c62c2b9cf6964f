#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "input/InputStream.h"
#include "output/Console.h"

namespace Editor {

// A message file, read whole before anything is done with it.
class InputFile {
 public:
  // Tells the console which bytes became no message, and why. "-" is standard input. Throws Failure (kUnusableInput)
  // when it cannot be read or holds no messages.
  InputFile(const std::string& path, Console& console);

  // False when a message or the file is broken; stray bytes and real-time messages do not count.
  bool isWhole() const { return isWhole_; }
  // False when the file is not built as it must be: nobody knows what else was in it.
  bool isReadInFull() const { return isReadInFull_; }

  template <typename Visit>
  void forEachMessage(Visit visit) const {
    for (std::uint64_t number = 1; number <= messages_.size(); ++number) visit(message(number));
  }
  // Where the message of that number stands, as placeOf says it.
  std::string place(std::uint64_t number) const { return placeOf(message(number)); }
  std::uint64_t countMessages() const { return messages_.size(); }

 private:
  struct Place {
    std::uint64_t offset;
    std::size_t begin;  // of its bytes
    std::size_t end;
  };
  InputMessage message(std::uint64_t number) const;

  std::string name_;
  std::vector<std::uint8_t> bytes_;  // of all messages
  std::vector<Place> messages_;
  bool isWhole_ = true;
  bool isReadInFull_ = true;
};

}  // namespace Editor
