#include <cstdio>

#include "groups.h"

int kelvra_test_at_cmd_do(int, char**) {
    return puts("vxk: this group is not built yet");
}
