#pragma once

// A program that goes on beside the test, and says first where.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

// Until it is stopped, as by Ctrl-C.
class Serving {
 public:
  explicit Serving(const std::string& command) : pipe_(::popen(("echo $$; exec " + command).c_str(), "r"), ::pclose) {
    child_ = pid_t(std::stol(line()));
    path = line();
  }
  ~Serving() { stop(); }
  int stop() {
    if (pipe_ == nullptr) return -1;
    ::kill(child_, SIGINT);
    return wait();
  }
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
