#pragma once

#include <cstdint>

#include "bda/Export.h"

// Threads.
namespace UtilSrv {

class ThreadListener;

// The scheduling of one thread. Attach it to the calling thread, read and change its policy and priority, detach.
// A copy is attached to the same thread. Used on the attached thread only.
//
// An editor that wants its threads left alone says so once, with setScheduling. They are left alone, too, where the
// system has no POSIX scheduling: on Windows and in WebAssembly.
class BDA_PLATFORM_API Thread {
 public:
  // Scheduling policies by their numbers on Linux: 0 other, 1 first in first out, 2 round robin.
  using _PolicyType = std::int32_t;
  // Priority within the policy, 0 for policy 0, 1 (lowest) to 99 for the real-time policies.
  using _PriorityType = std::int32_t;

  // Whether threads are scheduled as asked, or left as they are.
  enum class Scheduling {
    System,    // the system's: what is changed is changed
    LeftAlone  // nothing is read or changed: a Thread is as one that nobody attached
  };

  // Attached to no thread.
  Thread() noexcept;
  // Attached to the thread of `other`, or to none like it.
  Thread(const Thread& other) noexcept;
  Thread& operator=(const Thread& other) noexcept;
  ~Thread();

  // To the calling thread, whatever it was attached to. Attaches to none where scheduling is left alone.
  void attach() noexcept;
  // How the thread is scheduled now; 0 while not attached.
  _PolicyType getPolicy() const noexcept;
  _PriorityType getPriority() const noexcept;
  // `mode` is 0: at once. False while not attached, and when the system refuses, for want of a privilege above all; the
  // thread then goes on as it was. Nothing is traced: to run as before is no failure. To lower a priority needs no
  // privilege, to raise it again does: a thread that owes its own to somebody else stays where it was lowered to.
  bool change(_PolicyType policy, _PriorityType priority, int mode) noexcept;
  // Leaves the thread as it is now scheduled.
  void detach() noexcept;

  // For all threads of the process, Scheduling::System by default; returns the one before. Called on any thread, best
  // before the first assistant is made. It is asked at attach(): what is attached by then goes on, so that a priority
  // that is raised now is restored. The module's calls stay the same, and listeners hear them all.
  static Scheduling setScheduling(Scheduling scheduling) noexcept;

  // Tells `listener` of every call of these operations on the calling thread (null: nobody); returns the one before.
  static ThreadListener* setThreadListener(ThreadListener* listener) noexcept;

 private:
  bool attached_;
};

// Watches the scheduling calls of one thread: an editor's diagnostics, a test's record.
class BDA_PLATFORM_API ThreadListener {
 public:
  virtual ~ThreadListener();

  // The operation of that name is about to run; it runs whatever the listener does.
  virtual void attached() noexcept = 0;
  virtual void policyRead() noexcept = 0;
  virtual void priorityRead() noexcept = 0;
  virtual void changed(Thread::_PolicyType policy, Thread::_PriorityType priority, int mode) noexcept = 0;
  virtual void detached() noexcept = 0;
};

}  // namespace UtilSrv
