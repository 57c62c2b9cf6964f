#include "input/InputStream.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "ExitCode.h"
#include "messages/MessageReader.h"
#include "messages/Text.h"
#include "output/Progress.h"

namespace Editor {

namespace {

constexpr std::size_t kChunk = 65'536;

int leaveOpen(std::FILE* /*standardInput*/) { return 0; }

// Does not wait for somebody to write to a pipe: until then there is nothing to read from it, for which Ctrl-C ends the
// wait.
std::FILE* openToRead(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return nullptr;
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  return ::fdopen(descriptor, "rb");
}

std::string reasonOf(int error) { return std::generic_category().message(error); }

// The bytes of an open file. Throws ReadError, and where Ctrl-C is caught Failure.
class OpenFile final : public ByteSource {
 public:
  OpenFile(std::FILE& stream, bool isPlain) : descriptor_(::fileno(&stream)), isPlain_(isPlain) {}

  bool isPlain() const override { return isPlain_; }
  Bytes next() override {
    if (returned_ > 0) return {buffer_.data(), std::exchange(returned_, 0)};
    return {buffer_.data(), fill(0)};
  }
  Bytes first(std::size_t least) override {
    while (returned_ < least) {
      const std::size_t more = fill(returned_);
      if (more == 0) break;
      returned_ += more;
    }
    return {buffer_.data(), returned_};
  }

 private:
  std::size_t fill(std::size_t at) {
    while (true) {
      isPlain_ ? Interruptible::check() : Interruptible::wait(descriptor_);
      const ssize_t count = ::read(descriptor_, buffer_.data() + at, buffer_.size() - at);
      if (count >= 0) return std::size_t(count);
      if (errno != EINTR) throw ReadError(reasonOf(errno));
    }
  }

  const int descriptor_;
  const bool isPlain_;
  std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(kChunk);
  std::size_t returned_ = 0;
};

}  // namespace

InputStream::InputStream(const std::vector<std::string>& paths, Takes takes) : takes_(takes) {
  if (std::count(paths.begin(), paths.end(), "-") > 1)
    throw Failure(kWrongUsage, "standard input can be read only once");
  for (const std::string& path : paths) {
    const bool isStandardInput = path == "-";
    File file{path, {isStandardInput ? stdin : openToRead(path), isStandardInput ? leaveOpen : std::fclose}};
    struct stat status {};
    const bool isOpen = file.stream != nullptr && ::fstat(::fileno(file.stream.get()), &status) == 0;
    if (!isOpen || S_ISDIR(status.st_mode))
      throw Failure(kUnusableInput, fmt::format("{}: {}", displayName(path), reasonOf(isOpen ? EISDIR : errno)));
    file.isPlain = !isStandardInput && S_ISREG(status.st_mode);
    if (file.isPlain) file.size = std::uint64_t(status.st_size);
    files_.push_back(std::move(file));
  }
  for (const File& file : files_)
    if (const std::string problem = file.isPlain ? judge(file) : ""; !problem.empty())
      throw Failure(kUnusableInput, problem);
}

// Why a file that can be read twice cannot be read; empty: it can. Throws NotMessages when it is none of messages.
std::string InputStream::judge(const File& file) const {
  try {
    OpenFile source(*file.stream, true);
    if (takes_ != Takes::jsonToo || !isJson(source))
      if (const FileJudgement judgement = judgeFile(source); !judgement.isUsable())
        throw NotMessages(fmt::format("{}: {}", displayName(file.name), judgement.whyUnusable()), judgement.isCut());
    if (::lseek(::fileno(file.stream.get()), 0, SEEK_SET) != 0) throw ReadError(reasonOf(errno));
    return {};
  } catch (const ReadError& error) {
    return fmt::format("{}: {}", displayName(file.name), error.what());
  }
}

std::vector<std::string> InputStream::read(const VisitMessage& visitMessage, const VisitLoss& visitLoss,
                                           const VisitJson& visitJson) {
  const Interruptible interruptible;
  std::vector<std::string> problems;
  MessageReader reader(visitMessage, visitLoss);
  for (const File& file : files_) {
    try {
      OpenFile source(*file.stream, file.isPlain);
      if (takes_ == Takes::jsonToo && isJson(source)) {
        const std::vector<std::uint8_t> text = readWhole(source);
        visitJson(file.name, {reinterpret_cast<const char*>(text.data()), text.size()});
        continue;
      }
      const FileJudgement judgement = reader.read(source, file.name);
      if (!file.isPlain && !judgement.isUsable())
        problems.push_back(fmt::format("{}: {}", displayName(file.name), judgement.whyUnusable()));
    } catch (const ReadError& error) {
      problems.push_back(fmt::format("{}: {}", displayName(file.name), error.what()));
    }
  }
  return problems;
}

bool InputStream::isLive() const {
  return std::any_of(files_.begin(), files_.end(), [](const File& file) { return !file.isPlain; });
}

std::uint64_t InputStream::size() const {
  std::uint64_t size = 0;
  for (const File& file : files_) size += file.size;
  return isLive() ? 0 : size;
}

std::string displayName(const std::string& file) { return file == "-" ? "standard input" : escape(file); }

std::string placeOf(const InputMessage& message) {
  return fmt::format("{}: message {} at offset {}", displayName(message.file), message.number, message.offset);
}

}  // namespace Editor
