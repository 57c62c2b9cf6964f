#include "output/Console.h"

#include <fmt/format.h>
#include <unistd.h>

namespace Editor {

void Console::print(std::FILE* stream, std::string_view text) {
  clearProgress();
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fputc('\n', stream);
}

void Console::problem(std::string_view text) {
  std::fflush(lines_);
  print(stderr, text);
}

void Console::note(std::string_view text) {
  if (loudness_ != Loudness::quiet) problem(text);
}

void Console::detail(std::string_view text) {
  if (isVerbose()) problem(text);
}

void Console::line(std::string_view text) { print(lines_, text); }

void Console::progress(std::string_view text) {
  if (loudness_ == Loudness::quiet || ::isatty(STDERR_FILENO) == 0) return;
  std::fflush(lines_);
  clearProgress();
  std::fwrite(text.data(), 1, text.size(), stderr);
  showsProgress_ = true;
}

void Console::clearProgress() {
  if (showsProgress_) std::fputs("\r\x1B[K", stderr);
  showsProgress_ = false;
}

bool Console::finish() {
  clearProgress();
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace Editor
