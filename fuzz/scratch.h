#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

// A folder of this process, gone with it.
class Scratch {
 public:
  explicit Scratch(const std::string& name)
      : path_(std::filesystem::temp_directory_path() / (name + "." + std::to_string(getpid()))) {
    std::filesystem::remove_all(path_);
  }
  ~Scratch() { std::filesystem::remove_all(path_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  std::filesystem::path library() const { return path_ / "library.db"; }

 private:
  std::filesystem::path path_;
};
