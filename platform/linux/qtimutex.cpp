#include "qtimutex.h"

namespace qtimutex {

QtiSharedMutex::QtiSharedMutex() : lock_(PTHREAD_RWLOCK_INITIALIZER) {}
QtiSharedMutex::~QtiSharedMutex() {
    pthread_rwlock_destroy(&lock_);
}

}  // namespace qtimutex
