#include "output/Console.h"

#include <unistd.h>

#include <cerrno>

#include "output/Columns.h"

namespace Editor {

void Console::print(std::FILE* stream, std::string_view text) {
  if (stream == stdout && isReaderGone_) return;
  const bool isBesideProgress = !progress_.empty() && ::isatty(stream == stdout ? STDOUT_FILENO : STDERR_FILENO) != 0;
  if (isBesideProgress) clearProgress();
  bool isWhole = std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fputc('\n', stream) != EOF;
  // The progress stands below it, so it must be there first.
  if ((flushesEachLine_ || isBesideProgress) && isWhole) isWhole = std::fflush(stream) == 0;
  if (stream == stdout) heed(isWhole);
  if (isBesideProgress) drawProgress();
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
  progress_ = text.substr(0, terminalWidth(STDERR_FILENO) - 1);
  drawProgress();
}

void Console::endProgress() {
  clearProgress();
  progress_.clear();
}

void Console::clearProgress() {
  if (!progress_.empty()) std::fputs("\r\x1B[K", stderr);
}

void Console::drawProgress() { std::fwrite(progress_.data(), 1, progress_.size(), stderr); }

bool Console::finish() {
  endProgress();
  heed(std::fflush(stdout) == 0);
  return !hasFailed_;
}

}  // namespace Editor
