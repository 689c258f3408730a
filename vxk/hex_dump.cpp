#include "hex_dump.h"

#include <algorithm>
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

void print_data(const char* label, const uint8_t* bytes, int len) {
    if (g_quiet_mode)
        return;
    flockfile(stdout);
    printf("\ndata len(%d)\n%s", len, label);
    print_hex_line(bytes, static_cast<size_t>(std::max(len, 0)));
    funlockfile(stdout);
}
