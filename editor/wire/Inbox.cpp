#include "wire/Inbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace Editor {

Inbox::Inbox(std::size_t capacity) {
  waiting_.reserve(capacity);
  taken_.reserve(capacity);
  if (::pipe2(descriptors_, O_NONBLOCK | O_CLOEXEC) != 0)
    throw std::system_error(errno, std::generic_category(), "no pipe");
}

Inbox::~Inbox() {
  for (const int descriptor : descriptors_) ::close(descriptor);
}

void Inbox::push(std::span<const std::uint8_t> message) {
  const std::lock_guard lock(mutex_);
  if (dropped_ > 0 || message.size() > waiting_.capacity() - waiting_.size())
    dropped_ += message.size();
  else
    waiting_.insert(waiting_.end(), message.begin(), message.end());
  wake();
}

void Inbox::drop(std::uint64_t count) {
  const std::lock_guard lock(mutex_);
  dropped_ += count;
  wake();
}

void Inbox::fail(const std::string& why) {
  const std::lock_guard lock(mutex_);
  if (failure_.empty()) failure_ = why;
  wake();
}

// One byte is enough, and never finds the pipe full.
void Inbox::wake() {
  if (!std::exchange(isAwake_, true)) static_cast<void>(!::write(descriptors_[1], "", 1));
}

Inbox::Content Inbox::take() {
  taken_.clear();
  const std::lock_guard lock(mutex_);
  char byte = 0;
  if (std::exchange(isAwake_, false)) static_cast<void>(!::read(descriptors_[0], &byte, 1));
  std::swap(waiting_, taken_);
  return {taken_, std::exchange(dropped_, 0), failure_};
}

}  // namespace Editor
