#pragma once

// The program at a port: an instrument at a pseudo terminal, and whoever speaks with it.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "Library.h"
#include "Program.h"

class Wire : public Program {
 protected:
  // `bda instrument` on a library of its own, until it is stopped.
  class Serving {
   public:
    explicit Serving(const std::string& command) : pipe_(::popen(("echo $$; exec " + command).c_str(), "r"), ::pclose) {
      child_ = pid_t(std::stol(line()));
      path = line();
    }
    ~Serving() { stop(); }
    int stop() {
      if (pipe_ == nullptr) return -1;
      interrupt();
      return wait();
    }
    void interrupt() const { ::kill(child_, SIGINT); }
    // Until it ends by itself. The code.
    int wait() {
      std::string rest;
      for (std::string next = line(); !next.empty(); next = line()) rest += next + "\n";
      told = rest;
      const int status = ::pclose(pipe_.release());
      return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string path;
    std::string told;  // once it is stopped: behind the path

   private:
    std::string line() {
      std::string text;
      for (int c = std::fgetc(pipe_.get()); c != EOF && c != '\n'; c = std::fgetc(pipe_.get())) text += char(c);
      return text;
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe_;
    pid_t child_ = 0;
  };

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
