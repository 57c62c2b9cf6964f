#pragma once

// How the calling thread is scheduled, by the system's own word. UtilSrv::Thread is tested against it.

#if !defined(_WIN32) && !defined(__EMSCRIPTEN__)
#include <pthread.h>
#endif
#ifdef __linux__
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace Testing {

struct OwnScheduling {
  int policy = 0;
  int priority = 0;
  bool operator==(const OwnScheduling& other) const { return policy == other.policy && priority == other.priority; }
};

#if defined(_WIN32) || defined(__EMSCRIPTEN__)

// No POSIX scheduling: all threads read 0, nothing changes them.
constexpr bool kHasScheduling = false;
constexpr OwnScheduling kUnusual;
inline OwnScheduling ownScheduling() { return {}; }
inline bool setOwnScheduling(const OwnScheduling&) { return true; }

#else

constexpr bool kHasScheduling = true;
// Not the one that a thread begins with, and every thread may ask for it.
#ifdef SCHED_BATCH
constexpr OwnScheduling kUnusual{SCHED_BATCH, 0};
#else
constexpr OwnScheduling kUnusual{SCHED_RR, 31};
#endif

inline OwnScheduling ownScheduling() {
  OwnScheduling own{-1, -1};
  sched_param parameters{};
  if (pthread_getschedparam(pthread_self(), &own.policy, &parameters) == 0) own.priority = parameters.sched_priority;
  return own;
}

inline bool setOwnScheduling(const OwnScheduling& own) {
  sched_param parameters{};
  parameters.sched_priority = own.priority;
  return pthread_setschedparam(pthread_self(), own.policy, &parameters) == 0;
}

#endif

// The calling thread, and no other, may raise its priority no more; false where that cannot be had.
inline bool giveUpRightToPriority() {
#ifdef __linux__
#ifdef SYS_setresuid32
  constexpr long kSetUsers = SYS_setresuid32;
#else
  constexpr long kSetUsers = SYS_setresuid;
#endif
  constexpr long kUnchanged = -1;
  constexpr long kNobody = 65534;
  rlimit limit{};
  return getrlimit(RLIMIT_RTPRIO, &limit) == 0 && limit.rlim_cur == 0 &&
         syscall(kSetUsers, kUnchanged, kNobody, kUnchanged) == 0;
#else
  return false;
#endif
}

}  // namespace Testing
