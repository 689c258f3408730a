#include <cstdio>

#include "kelvra_qmi_test_cmn.h"

int kelvra_cmn_diag_cmd_send(int, char**) {
    return puts("vxk: this command is not built yet") * 0;
}
