#include "output/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "ExitCode.h"
#include "messages/Text.h"
#include "output/Console.h"

namespace Editor {

namespace {

constexpr std::size_t kBufferSize = 1 << 16;
constexpr int kMostLinks = 40;

}  // namespace

std::string followLinks(const std::string& path) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  if (!error) return real.string();
  std::filesystem::path place = path;
  for (int links = 0; links < kMostLinks && !std::filesystem::exists(place, error); ++links) {
    const std::filesystem::path target = std::filesystem::read_symlink(place, error);
    if (error) break;  // no link: the name of a file to be
    place = place.parent_path() / target;
  }
  return place.string();
}

OutputFile::OutputFile(std::string path, Existing existing) : existing_(existing), path_(std::move(path)) {
  if (isStandardOutput()) return;
  if (existing_ == Existing::isReplaced) path_ = followLinks(path_);
  struct stat status {};
  const bool exists = existing_ == Existing::isReplaced && ::stat(path_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    fail("open");
  }
  if (exists && !S_ISREG(status.st_mode)) {  // a device or a pipe has no place to take
    descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) fail("open");
    return;
  }
  temporary_ = path_ + ".XXXXXX";
  descriptor_ = ::mkostemp(temporary_.data(), O_CLOEXEC);
  if (descriptor_ < 0) {
    temporary_.clear();
    fail("create");
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(descriptor_, exists ? status.st_mode & 0777u : 0666u & ~mask);
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void OutputFile::write(std::span<const std::uint8_t> bytes) {
  buffer_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (!isStandardOutput() && buffer_.size() >= kBufferSize) flush();
}

void OutputFile::write(const std::string& text) {
  buffer_ += text;
  if (!isStandardOutput() && buffer_.size() >= kBufferSize) flush();
}

void OutputFile::flush() {
  const int descriptor = isStandardOutput() ? STDOUT_FILENO : descriptor_;
  for (std::size_t done = 0; done < buffer_.size();) {
    const ssize_t count = ::write(descriptor, buffer_.data() + done, buffer_.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EPIPE) break;  // nobody reads it any more
    if (count < 0) {
      const int reason = errno;
      buffer_.erase(0, done);  // or another commit would write it twice
      errno = reason;
      fail("write");
    }
    done += static_cast<std::size_t>(count);
  }
  buffer_.clear();
}

// Not every file system knows how to rename without replacing, nor every one links.
bool OutputFile::takePlace() {
  const auto isUnknown = [] { return errno == EINVAL || errno == ENOSYS; };
  const char* const from = temporary_.c_str();
  const char* const to = path_.c_str();
  bool isTaken = false;
  if (existing_ == Existing::isReplaced) {
    isTaken = ::rename(from, to) == 0;
  } else {
    isTaken = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0;
    if (!isTaken && isUnknown()) isTaken = ::link(from, to) == 0 && ::unlink(from) == 0;
    if (!isTaken && errno == EEXIST) return false;
  }
  if (!isTaken) fail("replace");
  return true;
}

bool OutputFile::commit() {
  flush();
  if (isStandardOutput()) return true;
  if (!temporary_.empty()) {
    if (::fsync(descriptor_) != 0) fail("write");
    if (!takePlace()) return false;
    temporary_.clear();
    // The new name reaches the disk with its directory.
    const std::filesystem::path directory = std::filesystem::path(path_).parent_path();
    const int folder = ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
      ::fsync(folder);
      ::close(folder);
    }
  }
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) fail("write");
  return true;
}

void OutputFile::fail(const std::string& doing) const {
  throw Failure(kWrongUsage, fmt::format("{}: cannot {} it: {}", isStandardOutput() ? "standard output" : escape(path_),
                                         doing, std::strerror(errno)));
}

}  // namespace Editor
