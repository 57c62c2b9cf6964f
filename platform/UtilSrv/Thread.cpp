#include "bda/platform/UtilSrv/Thread.h"

namespace UtilSrv {
namespace {

thread_local ThreadListener* threadListener = nullptr;

struct Scheduling {
  int policy = 0;
  sched_param parameters{};
};

Scheduling schedulingOf(pthread_t thread) noexcept {
  Scheduling scheduling;
  if (pthread_getschedparam(thread, &scheduling.policy, &scheduling.parameters) != 0) return {};
  return scheduling;
}

}  // namespace

ThreadListener::~ThreadListener() = default;

Thread::Thread() noexcept : thread_(), attached_(false) {}
Thread::Thread(const Thread& other) noexcept = default;
Thread& Thread::operator=(const Thread& other) noexcept = default;
Thread::~Thread() = default;

void Thread::attach() noexcept {
  if (threadListener != nullptr) threadListener->attached();
  thread_ = pthread_self();
  attached_ = true;
}

Thread::_PolicyType Thread::getPolicy() const noexcept {
  if (threadListener != nullptr) threadListener->policyRead();
  return attached_ ? schedulingOf(thread_).policy : 0;
}

Thread::_PriorityType Thread::getPriority() const noexcept {
  if (threadListener != nullptr) threadListener->priorityRead();
  return attached_ ? schedulingOf(thread_).parameters.sched_priority : 0;
}

bool Thread::change(_PolicyType policy, _PriorityType priority, int mode) noexcept {
  if (threadListener != nullptr) threadListener->changed(policy, priority, mode);
  if (!attached_) return false;
  sched_param parameters{};
  parameters.sched_priority = priority;
  return pthread_setschedparam(thread_, policy, &parameters) == 0;
}

void Thread::detach() noexcept {
  if (threadListener != nullptr) threadListener->detached();
  attached_ = false;
}

ThreadListener* Thread::setThreadListener(ThreadListener* listener) noexcept {
  ThreadListener* const before = threadListener;
  threadListener = listener;
  return before;
}

}  // namespace UtilSrv
