#include "kelvra_qmi_test_cmn.h"

#include <cstdlib>

#include "groups.h"
#include "kelvra_log.h"
#include "notes.h"
#include "show_help.h"

namespace {

constexpr int kGroup = 5;

// In quiet mode the help alone is shown.
int refuse(int (*with_note)(int group)) {
    return g_quiet_mode ? show_help(kGroup) : with_note(kGroup);
}

}  // namespace

int kelvra_test_cmn_do(int argc, char** argv) {
    if (argc <= 2)
        return refuse(refuse_too_few_parameters);
    if (atoi(argv[1]) != kGroup)
        return refuse(refuse_first_parameter);

    uint32_t code = 0;
    switch (atoi(argv[2])) {
        case 0:
            code = static_cast<uint32_t>(kelvra_cmn_diag_cmd_send(argc, argv));
            break;
        case 1:
            code = kelvra_cmn_card_status_query(argc, argv);
            break;
        case 2:
            code = kelvra_cmn_card_status_get(argc, argv);
            break;
        case 3:
            code = kelvra_cmn_card_status_set(argc, argv);
            break;
        case 4:
            code = kelvra_cmn_card_type_query(argc, argv);
            break;
        case 5:
            kelvra_cmn_test_get_sar_dsi();
            return 0;
        case 6:
            code = kelvra_cmn_card_hotswap_test(argc, argv);
            break;
        case 10:
            code = static_cast<uint32_t>(kelvra_cmn_esim_test(argc, argv));
            break;
        default:
            return refuse(refuse_second_parameter);
    }
    const int result = static_cast<int>(code);
    if (result == 0)
        return 0;
    if (g_quiet_mode) {
        show_help(kGroup);
        return result;
    }
    return report_error(kGroup, result);
}
