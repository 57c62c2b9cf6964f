#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include "Program.h"

extern char** environ;

// Runs of the program that are killed at a random moment.
class Killed : public Program {
 protected:
  // How many kills a test of so many makes: `scripts/kill` asks for more.
  static int kills(int otherwise) {
    const char* const asked = std::getenv("BDA_KILLS");
    return asked == nullptr ? otherwise : std::atoi(asked);
  }

  // Starts the program on the library, with its output, or its messages, in the file `told`.
  pid_t start(const std::vector<std::string>& words, int told) {
    std::vector<std::string> all{BDA_PROGRAM, "--library=" + libraryFile().string()};
    all.insert(all.end(), words.begin(), words.end());
    std::vector<char*> argv;
    argv.reserve(all.size() + 1);
    for (std::string& word : all) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {1, 2})
      posix_spawn_file_actions_addopen(&actions, stream, stream == told ? (directory / "told").c_str() : "/dev/null",
                                       O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return child;
  }

  // The lines that it told; the last may have been cut short.
  std::vector<std::string> toldLines() {
    std::string all = read("told");
    all.resize(all.find_last_of('\n') + 1);
    return lines(all);
  }

  std::mt19937 random_{4711};
};
