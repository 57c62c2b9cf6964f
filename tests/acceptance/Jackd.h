#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include "Serving.h"

// A JACK server without a sound card, which only those know who are started by this test: as long as it lives, they
// have MIDI ports. That there is none is a failure of the test.
class Jackd {
 public:
  Jackd() {
    using namespace std::chrono_literals;
    ::setenv("JACK_DEFAULT_SERVER", ("bda-test-" + std::to_string(::getpid())).c_str(), 1);
    process_ = ::fork();
    if (process_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // also where the test crashes
      const int nowhere = ::open("/dev/null", O_RDWR);
      for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, descriptor);
      ::setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
      ::execlp("jackd", "jackd", "-r", "-d", "dummy", "-r", "48000", "-p", "256", static_cast<char*>(nullptr));
      ::_exit(127);
    }
    for (int tries = 0; tries < 200 && process_ > 0; ++tries) {
      if (::waitpid(process_, nullptr, WNOHANG) != 0) process_ = -1;
      if (isThere()) return;
      std::this_thread::sleep_for(50ms);
    }
    ADD_FAILURE() << (process_ > 0 ? "jackd does not answer" : "jackd cannot be started");
  }
  Jackd(const Jackd&) = delete;
  Jackd& operator=(const Jackd&) = delete;
  ~Jackd() { end(); }

  void end() {
    if (process_ <= 0) return;
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
  }

 private:
  // By the program's own word: that is what the test needs.
  static bool isThere() {
    Serving asked("'" BDA_PROGRAM "' ports 2>&1");
    asked.wait();
    return (asked.path + asked.told).find("there is no server") == std::string::npos;
  }

  pid_t process_ = -1;
};
