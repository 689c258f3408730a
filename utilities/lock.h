// The tool's lock. POSIX mutexes, initialised statically and never destroyed: a detached thread may still
// hold one when the process ends.
#pragma once

#include <pthread.h>

/// Holds a mutex until the end of its scope, or until it is unlocked.
class Lock {
public:
    explicit Lock(pthread_mutex_t& mutex) : mutex_(&mutex) { pthread_mutex_lock(mutex_); }
    ~Lock() { unlock(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    /// Returns the error of the mutex, 0 for none.
    int unlock() {
        const int result = mutex_ == nullptr ? 0 : pthread_mutex_unlock(mutex_);
        mutex_ = nullptr;
        return result;
    }

private:
    pthread_mutex_t* mutex_;
};
