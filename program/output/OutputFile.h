#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Editor {

// Where the file really is, or would be: a link is followed, also one that names nothing yet.
std::string followLinks(const std::string& path);

// A file that comes into being whole or not at all: written beside its place, on disk before it takes it. "-" is
// standard output, which gets the bytes when they are committed or passed on. A link is followed: the file that it
// names is written. Errors are thrown as Failure.
class OutputFile {
 public:
  // What becomes of a file that stands in its place.
  enum class Existing : std::uint8_t { isReplaced, stays };

  explicit OutputFile(std::string path, Existing existing = Existing::isReplaced);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();  // without commit: as if it had never been

  void write(std::span<const std::uint8_t> bytes);
  void write(const std::string& text);
  // To standard output, which is never half: what has been written goes out now.
  void passOn() {
    if (isStandardOutput()) flush();
  }
  // False only where what stands in its place stays, be it there since a moment ago: nothing has come into being.
  bool commit();

 private:
  bool isStandardOutput() const { return path_ == "-"; }
  void flush();
  bool takePlace();
  [[noreturn]] void fail(const std::string& doing) const;

  const Existing existing_;
  std::string path_;
  std::string temporary_;  // empty: standard output, or committed
  std::string buffer_;
  int descriptor_ = -1;
};

}  // namespace Editor
