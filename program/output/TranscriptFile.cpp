#include "output/TranscriptFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "messages/Text.h"
#include "midi/MidiFile.h"

namespace Editor {

namespace {

std::string cannotBeWritten(const std::string& path, int error) {
  return fmt::format("{}: cannot be written: {}", escape(path), std::strerror(error));
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
  const std::string& path = program.transcript.file;
  if (path.empty()) return;
  how.withLibrary = program.transcript.withLibrary;
  how.names = namesOf(program);
  constexpr int kMode = 0666;
  file_ = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  isNew_ = file_ < 0 && errno == ENOENT;
  if (isNew_) file_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, kMode);
  if (file_ < 0) throw Failure(kWrongUsage, cannotBeWritten(path, errno));
  transcript_.emplace(std::move(how), machineTime, [this](const std::string& line) { write(line + '\n'); });
}

TranscriptFile::~TranscriptFile() {
  if (!transcript_) return;
  if (hasBegun_) transcript_->finish();
  if (::close(file_) != 0 && error_ == 0) error_ = errno;
  if (!hasBegun_ && isNew_) ::unlink(program_.transcript.file.c_str());
  // A reader that has gone wants no more of it.
  if (error_ == 0 || error_ == EPIPE) return;
  program_.console.problem("bda: " + cannotBeWritten(program_.transcript.file, error_));
  program_.failOutput();
}

// What stood in the file before goes now. A device or pipe has nothing that could.
void TranscriptFile::begin() {
  if (std::exchange(hasBegun_, true)) return;
  if (::ftruncate(file_, 0) != 0 && errno != EINVAL) error_ = errno;
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
  for (std::size_t done = 0; done < line.size() && error_ == 0;) {
    const ssize_t count = ::write(file_, line.data() + done, line.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) error_ = errno;
    done += count > 0 ? std::size_t(count) : 0;
  }
}

}  // namespace Editor
