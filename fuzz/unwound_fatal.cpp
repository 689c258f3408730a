#include "unwound_fatal.h"

#include <pthread.h>

#include <cstdarg>
#include <cstdio>

#include "fatal.h"
#include "finding.h"

namespace {

thread_local int g_locks = 0;  // held by this thread

}  // namespace

// libFuzzer's locks come by here, too, and some of them are tried for.
void count_locks() {
    g_locks = 0;
}

// Another thread may want a lock while the process is being ended, standard output's above all.
void vxk_fatal(const char* fmt, ...) {
    char message[1000];
    va_list args;
    va_start(args, fmt);
    vsnprintf(message, sizeof message, fmt, args);
    va_end(args);
    require(g_locks == 0, "no lock is held at a fatal condition");
    throw UnwoundFatal();
}

extern "C" {

int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
void __real_flockfile(FILE* file);
void __real_funlockfile(FILE* file);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    ++g_locks;
    return __real_pthread_mutex_lock(mutex);
}
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    --g_locks;
    return __real_pthread_mutex_unlock(mutex);
}
void __wrap_flockfile(FILE* file) {
    ++g_locks;
    __real_flockfile(file);
}
void __wrap_funlockfile(FILE* file) {
    --g_locks;
    __real_funlockfile(file);
}

}  // extern "C"
