// Groups 1 and 2: in the help, and not supported.
#include <cstdio>

#include "groups.h"

namespace {

constexpr Command kNvCommands[] = {
    {1, "       /* nv test */"},
    {2, " 0     /* nv backup(no privacy nvs) */"},
    {2, " 1     /* nv backup(have privacy nvs) */"},
    {3, " 0     /* nv restore(no goldencopy done after restore) */"},
    {3, " 1     /* nv restore(do goldencopy done after restore) */"},
    {4, " nvid  /* nv delete */"},
};

constexpr Command kImeiCommands[] = {
    {0, "       /* imei_protect disable */"},
    {1, "       /* imei_protect start */"},
};

int not_supported(int, char**) {
    puts("Not support");
    return 0;
}

}  // namespace

const Group kNvGroup = make_group(1, "nv option cmd", not_supported, kNvCommands);
const Group kImeiGroup = make_group(2, "imei option cmd", not_supported, kImeiCommands);
