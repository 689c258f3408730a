#include "hex_dump.h"

#include <cstdio>

#include "kelvra_log.h"

void print_hex_line(const uint8_t* bytes, size_t count) {
    if (g_quiet_mode)
        return;
    flockfile(stdout);
    for (size_t i = 0; i < count; ++i)
        printf(" %02X", bytes[i]);
    putchar('\n');
    funlockfile(stdout);
}
