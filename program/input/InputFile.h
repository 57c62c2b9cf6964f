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
  // "-" is standard input. Throws Failure (kUnusableInput) when it cannot be read or holds no messages.
  explicit InputFile(const std::string& path);

  // Tells which bytes became no message, and why. False when that broke a message or the file; stray bytes and
  // real-time messages are only told.
  bool reportLosses(Console& console) const;

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
  struct Loss {
    std::uint64_t offset;
    std::uint64_t dropped;
    std::string reason;
    InputLoss::Kind kind;
  };
  InputMessage message(std::uint64_t number) const;

  std::string name_;
  std::vector<std::uint8_t> bytes_;  // of all messages
  std::vector<Place> messages_;
  std::vector<Loss> losses_;
};

}  // namespace Editor
