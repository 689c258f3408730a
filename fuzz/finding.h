// What a fuzzer finds besides what the sanitizers see.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run as a finding unless `holds`; `rule` says what was to hold.
inline void require(bool holds, const char* rule) {
    if (holds)
        return;
    fprintf(stderr, "finding: %s\n", rule);
    abort();
}
