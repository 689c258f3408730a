// Group 3: two antenna configurations of the modem. The modem is asked to set them, and keeps each in a file,
// which is read and removed here.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "groups.h"
#include "hex_dump.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_nvefs.h"
#include "little_endian.h"

namespace {

constexpr int kSub = 0;
constexpr uint32_t kFileMax = 365;

// Where the modem keeps a configuration. It knows the path with its terminating zero, so the zero counts.
struct ConfigFile {
    const char* path;
    int path_len;
};
constexpr char kGpioPath[] = "/nv/item_files/modem/kelvra/rf_ant_port_config";
constexpr char kTxPath[] = "/nv/item_files/modem/antenna/ant_tx_config";
constexpr ConfigFile kGpioFile{kGpioPath, sizeof kGpioPath};
constexpr ConfigFile kTxFile{kTxPath, sizeof kTxPath};
static_assert(sizeof kGpioPath == 47 && sizeof kTxPath == 43);

// A common request of this group: the command, then its fields.
//   GPIO values  0 command 0   8 u32 count   12 u32 each value
//   TX antenna   0 command 1   8 u32 v_ant   12 u32 v_sys   16 u64 v_band_list
constexpr uint32_t kCommandGpio = 0;
constexpr uint32_t kCommandTx = 1;
constexpr int kGpioValuesMax = 50;

struct Request {
    explicit Request(uint32_t command) { put_le(bytes, command); }
    uint8_t bytes[kExtendPayloadMax] = {};
};

int send(const Request& request) {
    uint8_t response[kCommonResponseMax];
    uint32_t response_len = sizeof response;
    const int result = kelvra_extend_qmi_send_sync(REQUEST_ID_COMMON, request.bytes, sizeof request.bytes,
                                                   response, &response_len);
    if (result != 0)
        puts("kelvra_extend_qmi_send_sync fail, REQUEST_ID_COMMON");
    return result;
}

// True when a command that takes no arguments has none, else says how it is to be typed.
bool takes_no_arguments(int argc, int sub_option) {
    if (argc == 3)
        return true;
    printf("\nnote: Cmd error, should be: vxk %d %d , Pls refer to the following cmd:\n", kRfGroup.number,
           sub_option);
    return false;
}

int print_config(const ConfigFile& file) {
    uint8_t data[kFileMax];
    uint32_t length = sizeof data;
    const int result = kelvra_efs_read(kSub, file.path, file.path_len, data, &length);
    if (result != 0) {
        puts("kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS");
        return result;
    }
    print_data("data: ", data, static_cast<int>(length));
    return 0;
}

int delete_config(const ConfigFile& file) {
    const int result = kelvra_efs_delete(kSub, file.path, file.path_len);
    if (result != 0)
        puts("kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS");
    return result;
}

int kelvra_gpio_test_set(int argc, char** argv) {
    puts("kelvra_gpio_test_set");
    Request request(kCommandGpio);
    const int count = std::min(argc - 3, kGpioValuesMax);
    put_le(request.bytes + 8, static_cast<uint32_t>(count));
    for (int i = 0; i < count; ++i) {
        const int value = atoi(argv[3 + i]);
        put_le(request.bytes + 12 + 4 * i, static_cast<uint32_t>(value));
        printf("kelvra_gpio_test_set, gpio_v[%d]: %d\n", i, value);
    }
    return send(request);
}

int kelvra_gpio_test_get(int argc) {
    puts("kelvra_gpio_test_get");
    return takes_no_arguments(argc, 1) ? print_config(kGpioFile) : kBadCommandLine;
}

int kelvra_gpio_test_closed(int argc) {
    puts("kelvra_gpio_test_closed");
    return takes_no_arguments(argc, 2) ? delete_config(kGpioFile) : kBadCommandLine;
}

int kelvra_rf_tx_test_set(int argc, char** argv) {
    printf("kelvra_rf_tx_test_set, argc(%d)\n", argc);
    if (argc != 6)
        return note_need_inputs(5);
    const int v_ant = atoi(argv[3]);
    const int v_sys = atoi(argv[4]);
    const unsigned long v_band_list = strtoul(argv[5], nullptr, 0);
    Request request(kCommandTx);
    put_le(request.bytes + 8, static_cast<uint32_t>(v_ant));
    put_le(request.bytes + 12, static_cast<uint32_t>(v_sys));
    put_le(request.bytes + 16, uint64_t{v_band_list});
    printf(" v_ant(%d)\n", v_ant);
    printf(" v_sys(%d)\n", v_sys);
    printf(" v_band_list(%lu)\n", v_band_list);
    return send(request);
}

int kelvra_rf_tx_test_get(int argc) {
    puts("kelvra_rf_tx_test_get");
    return takes_no_arguments(argc, 4) ? print_config(kTxFile) : kBadCommandLine;
}

int kelvra_rf_tx_test_closed(int argc) {
    puts("kelvra_rf_tx_test_closed");
    return takes_no_arguments(argc, 5) ? delete_config(kTxFile) : kBadCommandLine;
}

// clang-format off
constexpr Command kCommands[] = {
    {0, " ...   /* gpio value setting(pls input enough gpio value by notice)*/\n"
        "                    (need to reboot duing first setting) ",
     kelvra_gpio_test_set},
    {1, "       /* get gpio test state */",
     [](int argc, char**) { return kelvra_gpio_test_get(argc); }},
    {2, "       /* Close gpio test(need to reboot) */",
     [](int argc, char**) { return kelvra_gpio_test_closed(argc); }},
    {3, " v_ant v_sys v_band_list\n"
        "                 /* fix tx to upper(lower) antenna for given band list */\n"
        "                    (need to reboot) \n"
        "                    v_ant: 0 - lower antenna, 1 - upper antenna \n"
        "                    v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte \n"
        "                    v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; \n"
        "                                            cdma: bc0, tds: b34,b39; lte: b1...b44 \n"
        "                    v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,\n"
        "                                            b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  ",
     kelvra_rf_tx_test_set},
    {4, "       /* get tx test state */",
     [](int argc, char**) { return kelvra_rf_tx_test_get(argc); }},
    {5, "       /* Close tx test(need to reboot) */",
     [](int argc, char**) { return kelvra_rf_tx_test_closed(argc); }},
};
// clang-format on

}  // namespace

const Group kRfGroup = make_group(3, "rf option cmd", kelvra_test_rf_do, kCommands);

int kelvra_test_rf_do(int argc, char** argv) {
    if (atoi(argv[1]) != kRfGroup.number)
        return refuse_first_parameter(kRfGroup);
    if (argc <= 2)
        return refuse_too_few_parameters(kRfGroup);
    const Command* const command = find_command(kRfGroup, atoi(argv[2]));
    if (command == nullptr)
        return refuse_second_parameter(kRfGroup);
    return report_result(kRfGroup, command->run(argc, argv));
}
