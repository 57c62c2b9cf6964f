#pragma once

// The program at a port: an instrument at a pseudo terminal, and whoever speaks with it.

#include <string>
#include <vector>

#include "Library.h"
#include "Program.h"
#include "Serving.h"

class Wire : public Program {
 protected:
  Serving serve(const std::string& options = "") {
    return Serving(std::string(BDA_PROGRAM) + " instrument --on pty: --pace none --library '" +
                   (directory / "instrument.db").string() + "' " + options + " 2>/dev/null");
  }
  Result fetch(const Serving& instrument, std::vector<std::string> words) {
    words.insert(words.begin(), "fetch");
    words.insert(words.end(), {"--from", instrument.path, "--timeout", "0.3"});
    return bda(words);
  }
  void fillInstrument() {
    write("all.syx",
          {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41), unit({0x0E, 0x70, 0x03}, BDA::List::master),
           unit({0x0E, 0x5F, 0x00}, BDA::List::multi), systemDump(1)});
    EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", directory / "instrument.db"}), Exits(0));
  }
};
