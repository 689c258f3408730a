// A mutex that many readers, or one writer, hold at a time.
#ifndef QTIMUTEX_H
#define QTIMUTEX_H

#include <pthread.h>

namespace qtimutex {

class QtiSharedMutex {
public:
    QtiSharedMutex();
    ~QtiSharedMutex();
    QtiSharedMutex(const QtiSharedMutex&) = delete;
    QtiSharedMutex& operator=(const QtiSharedMutex&) = delete;

    /// Blocks until the calling thread is the only holder. The try_ form returns false instead of blocking.
    void lock();
    bool try_lock();
    void unlock();

    /// Blocks until no writer holds the mutex. The try_ form returns false instead of blocking.
    void lock_shared();
    bool try_lock_shared();
    void unlock_shared();

private:
    pthread_rwlock_t lock_;
};

}  // namespace qtimutex

#endif
