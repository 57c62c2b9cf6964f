#include "bda/platform/UtilSrv/Thread.h"

#include <atomic>

#if !defined(_WIN32) && !defined(__EMSCRIPTEN__)
#define BDA_POSIX_SCHEDULING
#include <pthread.h>
#endif

namespace UtilSrv {
namespace {

struct Schedule {
  int policy = 0;
  int priority = 0;
};

// The calling thread's: what the system has to offer.
#ifdef BDA_POSIX_SCHEDULING

constexpr bool kHasScheduling = true;

Schedule ownSchedule() noexcept {
  Schedule own;
  sched_param parameters{};
  if (pthread_getschedparam(pthread_self(), &own.policy, &parameters) != 0) return {};
  own.priority = parameters.sched_priority;
  return own;
}

bool setOwnSchedule(const Schedule& own) noexcept {
  sched_param parameters{};
  parameters.sched_priority = own.priority;
  return pthread_setschedparam(pthread_self(), own.policy, &parameters) == 0;
}

#else

constexpr bool kHasScheduling = false;
Schedule ownSchedule() noexcept { return {}; }
bool setOwnSchedule(const Schedule&) noexcept { return false; }

#endif

std::atomic<Thread::Scheduling> chosen{Thread::Scheduling::System};
thread_local ThreadListener* threadListener = nullptr;

}  // namespace

ThreadListener::~ThreadListener() = default;

Thread::Thread() noexcept : attached_(false) {}
Thread::Thread(const Thread& other) noexcept = default;
Thread& Thread::operator=(const Thread& other) noexcept = default;
Thread::~Thread() = default;

void Thread::attach() noexcept {
  if (threadListener != nullptr) threadListener->attached();
  attached_ = kHasScheduling && chosen == Scheduling::System;
}

Thread::_PolicyType Thread::getPolicy() const noexcept {
  if (threadListener != nullptr) threadListener->policyRead();
  return attached_ ? ownSchedule().policy : 0;
}

Thread::_PriorityType Thread::getPriority() const noexcept {
  if (threadListener != nullptr) threadListener->priorityRead();
  return attached_ ? ownSchedule().priority : 0;
}

bool Thread::change(_PolicyType policy, _PriorityType priority, int mode) noexcept {
  if (threadListener != nullptr) threadListener->changed(policy, priority, mode);
  return attached_ && setOwnSchedule({policy, priority});
}

void Thread::detach() noexcept {
  if (threadListener != nullptr) threadListener->detached();
  attached_ = false;
}

Thread::Scheduling Thread::setScheduling(Scheduling scheduling) noexcept { return chosen.exchange(scheduling); }

ThreadListener* Thread::setThreadListener(ThreadListener* listener) noexcept {
  ThreadListener* const before = threadListener;
  threadListener = listener;
  return before;
}

}  // namespace UtilSrv
