#pragma once

#include <sys/types.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

// A command of the shell that runs beside the test until it is stopped, as by Ctrl-C, or ends by itself.
class Serving {
 public:
  // Once it has said its first line.
  explicit Serving(const std::string& command) : pipe_(::popen(("echo $$; exec " + command).c_str(), "r"), ::pclose) {
    child_ = pid_t(std::stol(line()));
    path = line();
  }
  ~Serving() { stop(); }
  // How it ended; -1: not by itself.
  int stop() {
    if (pipe_ == nullptr) return -1;
    interrupt();
    return wait();
  }
  void interrupt() const { ::kill(child_, SIGINT); }
  int wait() {
    std::string rest;
    for (std::string next = line(); !next.empty(); next = line()) rest += next + "\n";
    told = rest;
    const int status = ::pclose(pipe_.release());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string path;  // that line
  std::string told;  // once it has ended: behind it

 private:
  std::string line() {
    std::string text;
    for (int c = std::fgetc(pipe_.get()); c != EOF && c != '\n'; c = std::fgetc(pipe_.get())) text += char(c);
    return text;
  }

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe_;
  pid_t child_ = 0;
};
