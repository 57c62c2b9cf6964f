#include "output/Console.h"

#include <unistd.h>

#include <cerrno>

namespace Editor {

void Console::print(std::FILE* stream, std::string_view text) {
  clearProgress();
  if (stream == stdout && isReaderGone_) return;
  const bool isWhole =
      std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fputc('\n', stream) != EOF;
  if (stream == stdout) heed(isWhole);
}

void Console::flushLines() {
  const bool isWhole = std::fflush(lines_) == 0;
  if (lines_ == stdout) heed(isWhole);
}

void Console::heed(bool isWhole) {
  if (isWhole) return;
  (errno == EPIPE ? isReaderGone_ : hasFailed_) = true;
  std::clearerr(stdout);
}

void Console::problem(std::string_view text) {
  flushLines();
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
  flushLines();
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
  heed(std::fflush(stdout) == 0);
  return !hasFailed_;
}

}  // namespace Editor
