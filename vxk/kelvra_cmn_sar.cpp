#include <cstdio>

#include "kelvra_qmi_test_cmn.h"

void kelvra_cmn_test_get_sar_dsi() {
    puts("vxk: this command is not built yet");
}
