#include "fatal.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void vxk_fatal(const char* fmt, ...) {
    fflush(stdout);
    va_list args;
    va_start(args, fmt);
    flockfile(stderr);
    fputs("vxk: fatal: ", stderr);
    vfprintf(stderr, fmt, args);
    fputc('\n', stderr);
    funlockfile(stderr);
    va_end(args);
    abort();
}
