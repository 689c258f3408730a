// Group 10: modem configurations (MBN) by the persistent device configuration service (PDC). There is no
// client of that service here: its initialisation always fails, and says so.
#include <cstdio>
#include <cstdlib>

#include "groups.h"
#include "kelvra_log.h"
#include "qtimutex.h"

KELVRA_LOG_UNIT("kelvra_test_mbn");

namespace {

// What is known of the modem's configurations, shared by those who read it and the client that would fill it.
struct PdcMbnInfo {
    qtimutex::QtiSharedMutex mutex;
};
PdcMbnInfo klevra_pdc_mbn_info;

// -1: not initialised.
constexpr int g_pdc_init_status = -1;

void kelvra_test_mbn_pdc_init(unsigned char force_init) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("start kelvra pdc init, g_pdc_init_status = %d, force_init = %d", g_pdc_init_status,
                force_init);
    KELVRA_LOGE("pdc init failed");
}

}  // namespace

const Group kMbnGroup{10, "kelvra mbn test", kelvra_test_mbn_do, nullptr, 0};

int kelvra_test_mbn_do(int argc, char** argv) {
    if (argc <= 3)
        return refuse_too_few_parameters(kMbnGroup);
    if (atoi(argv[1]) != kMbnGroup.number)
        return refuse_first_parameter(kMbnGroup);
    const int sub_mask = atoi(argv[3]);
    if (sub_mask < 1 || sub_mask > 3) {
        printf("\nnote: sub_mask(%d) is invalid:\n", sub_mask);
        return show_help(kMbnGroup);
    }
    kelvra_test_mbn_pdc_init(0);
    KELVRA_LOGE("pdc init failed, do nothing");
    return show_help(kMbnGroup);
}
