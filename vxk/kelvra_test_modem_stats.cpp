#include "kelvra_test_modem_stats.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "groups.h"
#include "kelvra_modem_stats_debug.h"
#include "kelvra_modem_stats_record.h"
#include "kelvra_unpack.h"
#include "notes.h"
#include "show_help.h"

namespace {

constexpr int kGroup = 7;

constexpr int kSampleSize = 48;
constexpr std::array<uint8_t, kUnpkBufferMin> kSample = {
    0x01, 0x00, 0x03, 0x00, 0x01, 0x49, 0x27, 0x03, 0xc7, 0xb4, 0xfc, 0x60, 0x17, 0x01, 0x4f, 0x06,
    0x6e, 0x8b, 0x06, 0x00, 0xe8, 0xeb, 0x05, 0x00, 0x14, 0x00, 0x14, 0x00, 0xc7, 0xb4, 0xfc, 0x60,
    0x07, 0x00, 0x00, 0x00, 0xcc, 0x01, 0x02, 0x0b, 0x00, 0x02, 0x0a, 0x8a, 0x76, 0x00, 0x01, 0x00,
};

// The two commands return 1, or 0 when their command line was wrong.

int kelvra_test_modem_stats_parsing_process(int argc, char** argv) {
    if (argc <= 3)
        return note_too_few_parameters();
    g_unpk_print = atoi(argv[3]);
    printf("length = %d, print_flag = %d\n", kSampleSize, g_unpk_print);
    kelvra_test_modem_stats_parsing_process_do(kSample.data());
    return 1;
}

int kelvra_test_modem_stats_get_debug_info(int argc, char** argv) {
    if (argc <= 3)
        return note_too_few_parameters();
    kelvra_test_modem_stats_get_debug_info_do(atoi(argv[3]));
    return 1;
}

}  // namespace

void kelvra_test_modem_stats_parsing_process_do(const uint8_t* payload) {
    if (payload == nullptr) {
        printf("MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0x%x)\n", kUnpkRecordId);
        return;
    }
    unpk_start(payload);
    // The parser has said why if it gave up.
    static_cast<void>(modem_stats_parse_xxxx_diag_xxxx());
}

int kelvra_test_modem_stats_do(int argc, char** argv) {
    if (argc <= 2)
        return refuse_too_few_parameters(kGroup);
    if (atoi(argv[1]) != kGroup)
        return refuse_first_parameter(kGroup);

    const int type = atoi(argv[2]);
    if (type == 1) {
        if (const int result = kelvra_test_modem_stats_get_debug_info(argc, argv); result != 0)
            return result;
        puts("kelvra_test_modem_stats_get_debug_info FAIL");
    } else if (type == 0) {
        if (const int result = kelvra_test_modem_stats_parsing_process(argc, argv); result != 0)
            return result;
        puts("kelvra_test_modem_stats_parsing_process FAIL");
    } else {
        printf("invalid type = %d\n", type);
    }
    return show_help(kGroup);
}
