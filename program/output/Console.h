#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace Editor {

// What the program says: data lines on standard output, everything else on standard error.
class Console {
 public:
  enum class Loudness : std::uint8_t { quiet, normal, verbose };

  void setLoudness(Loudness loudness) { loudness_ = loudness; }
  bool isVerbose() const { return loudness_ == Loudness::verbose; }
  // From now on data lines go to standard error: standard output carries bytes.
  void keepOutputForBytes() { lines_ = stderr; }

  // Who reads the lines waits for each.
  void flushEachLine() { flushesEachLine_ = true; }

  // A line of data.
  void line(std::string_view text);
  // Lines of data, each with its end.
  void text(const std::string& lines) { line(std::string_view(lines).substr(0, lines.size() - 1)); }
  // A refusal, a broken message: always shown.
  void problem(std::string_view text);
  // A summary, a hint: not when quiet.
  void note(std::string_view text);
  // Only when verbose.
  void detail(std::string_view text);
  // How far a long run has come; in place, on a terminal only, as wide as that is. It stays the last line, below every
  // other text, until endProgress().
  void progress(std::string_view text);
  void endProgress();

  // The last call. True unless something could not be written to standard output. That nobody reads it any more is no
  // failure: the lines are then said to nobody.
  bool finish();

 private:
  void print(std::FILE* stream, std::string_view text);
  void clearProgress();
  void drawProgress();
  void flushLines();
  void heed(bool isWhole);  // how the last call on standard output went

  Loudness loudness_ = Loudness::normal;
  std::FILE* lines_ = stdout;
  bool flushesEachLine_ = false;
  std::string progress_;  // empty: none is shown
  bool isReaderGone_ = false;
  bool hasFailed_ = false;
};

}  // namespace Editor
