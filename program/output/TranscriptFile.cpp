#include "output/TranscriptFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "messages/Text.h"
#include "midi/MidiFile.h"
#include "output/OutputFile.h"

namespace Editor {

namespace {

std::string cannotBeWritten(const std::string& path, const char* why) {
  return fmt::format("{}: cannot be written: {}", escape(path), why);
}

std::optional<std::string> namesOf(const Program& program) {
  const std::optional<std::string> library = program.findLibraryFile();
  const std::optional<std::string> names = library ? program.nameFileInUse(*library) : std::nullopt;
  if (!names) return std::nullopt;
  std::string error;
  const auto bytes = loadBytes(*names, error);
  if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(*names), error));
  return std::string(bytes->begin(), bytes->end());
}

}  // namespace

TranscriptFile::TranscriptFile(Transcript::Options how, Program& program)
    : program_(program), hasPort_(!how.port.empty()) {
  if (program.transcript.file.empty()) return;
  how.withLibrary = program.transcript.withLibrary;
  how.names = namesOf(program);
  open();
  transcript_.emplace(std::move(how), machineTime, [this](const std::string& line) { write(line + '\n'); });
}

TranscriptFile::~TranscriptFile() {
  if (!transcript_) return;
  if (hasBegun_) transcript_->finish();
  if (!hasBegun_ && isNew_) ::unlink(path_.c_str());  // as long as it is ours
  if (::close(file_) != 0) fail(errno);
}

// Who waited here for a reader could not be interrupted.
void TranscriptFile::open() {
  const std::string& file = program_.transcript.file;
  path_ = followLinks(file);
  constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_CLOEXEC;
  constexpr int kMode = 0666;
  file_ = ::open(path_.c_str(), kFlags);
  isNew_ = file_ < 0 && errno == ENOENT;
  if (isNew_) file_ = ::open(path_.c_str(), kFlags | O_CREAT, kMode);
  struct stat status {};
  if (file_ < 0) {
    const int error = errno;
    const bool isUnread = error == ENXIO && ::stat(path_.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    throw Failure(kWrongUsage, cannotBeWritten(file, isUnread ? "nobody reads from it" : std::strerror(error)));
  }
  ::fcntl(file_, F_SETFL, ::fcntl(file_, F_GETFL) & ~O_NONBLOCK);
  // Devices and pipes are for many.
  if (::fstat(file_, &status) != 0 || !S_ISREG(status.st_mode)) return;
  const bool isLocked = ::flock(file_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  // One without a name was that of a run that could not begin, and has taken it away by now.
  if (!isLocked && ::fstat(file_, &status) == 0 && status.st_nlink > 0) return;
  ::close(file_);
  throw Failure(kWrongUsage, cannotBeWritten(file, "it is the transcript of another run, which has not ended"));
}

// What stood in the file before goes now. A device or pipe has nothing that could.
void TranscriptFile::begin() {
  if (std::exchange(hasBegun_, true)) return;
  if (::ftruncate(file_, 0) != 0 && errno != EINVAL) fail(errno);
  write(std::exchange(waiting_, ""));
}

void TranscriptFile::listen(EmbeddedEditor& editor) {
  if (!transcript_) return;
  try {
    editor.setListener(&*transcript_);
    if (!hasPort_) begin();
  } catch (const LibraryError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  }
}

std::unique_ptr<Port> TranscriptFile::listen(std::unique_ptr<Port> port) {
  if (!transcript_) return port;
  begin();
  return std::make_unique<ListenedPort>(std::move(port), *transcript_);
}

void TranscriptFile::write(const std::string& line) {
  if (!hasBegun_) {
    waiting_ += line;
    return;
  }
  for (std::size_t done = 0; done < line.size() && !hasFailed_;) {
    const ssize_t count = ::write(file_, line.data() + done, line.size() - done);
    if (count > 0)
      done += std::size_t(count);
    else if (errno != EINTR)
      fail(errno);
  }
}

// Told at once: who plays for hours wants to know. A reader that has gone wants no more of it.
void TranscriptFile::fail(int error) {
  if (std::exchange(hasFailed_, true) || error == EPIPE) return;
  program_.console.problem("bda: " + cannotBeWritten(program_.transcript.file, std::strerror(error)));
  program_.failOutput();
}

}  // namespace Editor
