#include "qtimutex.h"

namespace qtimutex {

QtiSharedMutex::QtiSharedMutex() : lock_(PTHREAD_RWLOCK_INITIALIZER) {}
QtiSharedMutex::~QtiSharedMutex() {
    pthread_rwlock_destroy(&lock_);
}

void QtiSharedMutex::lock() {
    pthread_rwlock_wrlock(&lock_);
}
bool QtiSharedMutex::try_lock() {
    return pthread_rwlock_trywrlock(&lock_) == 0;
}
void QtiSharedMutex::unlock() {
    pthread_rwlock_unlock(&lock_);
}

void QtiSharedMutex::lock_shared() {
    pthread_rwlock_rdlock(&lock_);
}
bool QtiSharedMutex::try_lock_shared() {
    return pthread_rwlock_tryrdlock(&lock_) == 0;
}
void QtiSharedMutex::unlock_shared() {
    pthread_rwlock_unlock(&lock_);
}

}  // namespace qtimutex
