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

private:
    pthread_rwlock_t lock_;
};

}  // namespace qtimutex

#endif
