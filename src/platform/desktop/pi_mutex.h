// Locks and wake-ups that a realtime audio thread can use: it never waits
// on a thread of lower priority.
//
// A mutex with priority inheritance: a thread that holds it runs at the
// priority of the highest one waiting for it. The realtime audio thread
// takes the mixer's lock; with a plain mutex an ordinary thread holding it
// could be pushed off the processor by a busy machine for tens of
// milliseconds, and the audio thread with it.
#pragma once

#include <pthread.h>

#include <atomic>
#include <semaphore>

namespace quorble::desktop {

class PiMutex {
 public:
  PiMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  ~PiMutex() { pthread_mutex_destroy(&mutex_); }
  PiMutex(const PiMutex&) = delete;
  PiMutex& operator=(const PiMutex&) = delete;

  void lock() { pthread_mutex_lock(&mutex_); }
  bool try_lock() { return pthread_mutex_trylock(&mutex_) == 0; }
  void unlock() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_;
};

// Wakes a waiting thread without ever blocking the thread that wakes it,
// as a condition variable's notify may (it takes a lock of its own). A
// waiter looks at the state it waits on, under its lock, after each Wait.
class Wakeup {
 public:
  void Post() {
    if (!posted_.exchange(true)) semaphore_.release();
  }
  void Wait() {
    semaphore_.acquire();
    posted_ = false;
  }

 private:
  std::atomic<bool> posted_{false};
  std::binary_semaphore semaphore_{0};
};

}  // namespace quorble::desktop
