#include "group7_stats.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "group7_debug_info.h"
#include "group7_record.h"
#include "group7_unpack.h"
#include "groups.h"

namespace {

constexpr int kSampleSize = 48;
constexpr std::array<uint8_t, kUnpkBufferMin> kSample = {
    0x01, 0x00, 0x03, 0x00, 0x01, 0x49, 0x27, 0x03, 0xc7, 0xb4, 0xfc, 0x60, 0x17, 0x01, 0x4f, 0x06,
    0x6e, 0x8b, 0x06, 0x00, 0xe8, 0xeb, 0x05, 0x00, 0x14, 0x00, 0x14, 0x00, 0xc7, 0xb4, 0xfc, 0x60,
    0x07, 0x00, 0x00, 0x00, 0xcc, 0x01, 0x02, 0x0b, 0x00, 0x02, 0x0a, 0x8a, 0x76, 0x00, 0x01, 0x00,
};

// The two commands return 1, or 0 with a line when their command line was wrong.

int refuse(const char* function) {
    note_too_few_parameters();
    printf("%s FAIL\n", function);
    return 0;
}

int kelvra_test_modem_stats_parsing_process(int argc, char** argv) {
    if (argc <= 3)
        return refuse(__func__);
    g_unpk_print = atoi(argv[3]);
    printf("length = %d, print_flag = %d\n", kSampleSize, g_unpk_print);
    kelvra_test_modem_stats_parsing_process_do(kSample.data());
    return 1;
}

int kelvra_test_modem_stats_get_debug_info(int argc, char** argv) {
    if (argc <= 3)
        return refuse(__func__);
    kelvra_test_modem_stats_get_debug_info_do(atoi(argv[3]));
    return 1;
}

// clang-format off
constexpr Command kCommands[] = {
    {0, " print                 /* modem stats diag-parsed test */\n"
        "                                    print: 0 - print-off for temp info, 1 - print-on for temp info ",
     kelvra_test_modem_stats_parsing_process},
    {1, " type                  /* get the debug info of modem stats */\n"
        "                                    type: 0 - check, 1 - debuginfo ",
     kelvra_test_modem_stats_get_debug_info},
};
// clang-format on

}  // namespace

const Group kStatsGroup = make_group(7, "kelvra modem stats test", kelvra_test_modem_stats_do, kCommands);

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
        return refuse_too_few_parameters(kStatsGroup);
    if (atoi(argv[1]) != kStatsGroup.number)
        return refuse_first_parameter(kStatsGroup);

    const int type = atoi(argv[2]);
    const Command* const command = find_command(kStatsGroup, type);
    if (command == nullptr)
        printf("invalid type = %d\n", type);
    else if (const int result = command->run(argc, argv); result != 0)
        return result;
    return show_help(kStatsGroup);
}
