// Group 11: restart and dump of the modem, NV sync, print switches. What must outlive a run is kept in
// properties and in files of subscription 0.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "cutils/properties.h"
#include "fatal.h"
#include "groups.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_nvefs.h"
#include "kelvra_log.h"
#include "little_endian.h"

KELVRA_LOG_UNIT("kelvra_smart_test");

namespace {

constexpr int kSub = 0;

// How the handset recovers from a crash of the modem: the modem restarts alone, or everything stops for a
// full dump.
constexpr char kRestartLevel[] = "persist.vendor.ssr.restart_level";
constexpr char kRestartLevelBackup[] = "persist.vendor.ssr.restart_level_bak";
constexpr char kModemAlone[] = "ALL_ENABLE";
constexpr char kFullDump[] = "ALL_DISABLE";

constexpr char kUpdateCountPath[] = "/nv/item_files/modem/kelvra/ssr_update_count";

constexpr uint32_t kCommonReset = 31;
constexpr uint32_t kCommonNvSync = 35;
constexpr uint32_t kResetForRestart = 0x1000;
constexpr uint32_t kResetForDump = 0x2000;

// What an action returns that a negative wait has stopped.
constexpr int kStopped = -1;

int path_length(const char* path) {
    return static_cast<int>(strlen(path));
}

int request_reset(uint32_t kind) {
    uint8_t value[4];
    put_le(value, kind);
    CommonResponse response;
    return kelvra_send_common_qmi_msg(kCommonReset, sizeof value, value, &response);
}

// Gives the handset time to take up a new restart level. The seconds are returned, so that the caller can see
// a negative number, which has by then been slept as an unsigned one.
int kelvra_smart_test_ssr_wait_s() {
    char text[PROPERTY_VALUE_MAX];
    property_get("persist.radio.ssr_wait_s", text, "3");
    const int wait_s = atoi(text);
    KELVRA_LOGD("ssr wait_s = %d\n", wait_s);
    if (wait_s == 0) {
        KELVRA_LOGD("modem ssr will not wait\n");
        return wait_s;
    }
    KELVRA_LOGD("modem ssr start to wait %ds to init\n", wait_s);
    sleep(static_cast<unsigned>(wait_s));
    KELVRA_LOGD("modem ssr end to wait %ds to init\n", wait_s);
    return wait_s;
}

unsigned kelvra_smart_test_read_ssr_update_flag() {
    uint8_t bytes[4] = {};
    uint32_t length = sizeof bytes;
    const int result = kelvra_efs_read(kSub, kUpdateCountPath, path_length(kUpdateCountPath), bytes, &length);
    const auto count = get_le<uint32_t>(bytes);
    KELVRA_LOGD("PROP_MODEM_SSR_UPDATE_COUNT read ret: %d, old update_cnt: %d, len: %d", result,
                static_cast<int>(count), static_cast<int>(length));
    if (result != 0) {
        KELVRA_LOGE("kelvra_efs_read failed, maybe empty");
        return 0;
    }
    return count;
}

int kelvra_smart_test_save_ssr_update_flag() {
    uint32_t count = kelvra_smart_test_read_ssr_update_flag();
    if (__builtin_add_overflow(count, 1U, &count))
        vxk_fatal("the restart level's update count %u cannot be counted up", UINT32_MAX);
    uint8_t bytes[4];
    put_le(bytes, count);
    const int result =
        kelvra_efs_write(kSub, kUpdateCountPath, path_length(kUpdateCountPath), bytes, sizeof bytes);
    KELVRA_LOGD("PROP_MODEM_SSR_UPDATE_COUNT write ret: %d, new update_cnt: %d", result,
                static_cast<int>(count));
    return result;
}

int kelvra_smart_test_modem_ssr() {
    char level[PROPERTY_VALUE_MAX];
    property_get(kRestartLevel, level, kFullDump);
    KELVRA_LOGD("Will trigger SSR of modem, the current state: %s\n", level);
    const bool level_changes = strcmp(level, kModemAlone) != 0;
    if (level_changes) {
        KELVRA_LOGD("need to open ssr\n");
        property_set(kRestartLevel, kModemAlone);
        if (kelvra_smart_test_ssr_wait_s() < 0) {
            KELVRA_LOGD("wait_s < 0, ssr is stoped\n");
            return kStopped;
        }
    }
    const int result = request_reset(kResetForRestart);
    if (!level_changes)
        return result;
    if (kelvra_smart_test_ssr_wait_s() < 0) {
        KELVRA_LOGD("wait_s < 0, ssr is stoped\n");
        return kStopped;
    }
    KELVRA_LOGD("back to old ssr state\n");
    property_set(kRestartLevel, level);
    return result;
}

int kelvra_smart_test_full_dump() {
    char level[PROPERTY_VALUE_MAX];
    char backup[PROPERTY_VALUE_MAX];
    property_get(kRestartLevel, level, kModemAlone);
    property_get(kRestartLevelBackup, backup, "");
    if (backup[0] == '\0') {
        KELVRA_LOGD("need to save ssr state\n");
        property_set(kRestartLevelBackup, level);
    }
    KELVRA_LOGD("Will trigger Full Dump, the current state: %s, the default state: %s\n", level, backup);
    if (strcmp(level, kFullDump) != 0) {
        KELVRA_LOGD("need to close ssr\n");
        property_set(kRestartLevel, kFullDump);
        kelvra_smart_test_save_ssr_update_flag();
        if (kelvra_smart_test_ssr_wait_s() < 0) {
            KELVRA_LOGD("wait_s < 0, ssr is stoped\n");
            return kStopped;
        }
    }
    return request_reset(kResetForDump);
}

int kelvra_smart_test_nv_sync() {
    KELVRA_LOGD("Will trigger NV SYNC\n");
    CommonResponse response;
    return kelvra_send_common_qmi_msg(kCommonNvSync, 0, nullptr, &response);
}

void kelvra_smart_test_ap_kolvo_switch(int opt) {
    printf("ap_kolvo_print, opt = %d\n", opt);
    property_set("persist.vendor.radio.print_stats", opt == 1 ? "1" : "2");
    puts("success, need to reboot");
}

// A print switch of the modem: a file that holds the mask while the switch is on. The modem reads it
// when it starts.
struct PrintSwitch {
    const char* name;
    const char* path;
    uint32_t mask;
    uint32_t size;  // bytes of the mask in the file
};

bool store_switch(const PrintSwitch& what, bool on) {
    if (!on) {
        if (kelvra_efs_delete(kSub, what.path, path_length(what.path)) == 0)
            return true;
        puts("kelvra_efs_delete failed");
        return false;
    }
    uint8_t mask[4];
    put_le(mask, what.mask);
    if (kelvra_efs_write(kSub, what.path, path_length(what.path), mask, what.size) == 0)
        return true;
    puts("kelvra_efs_write failed");
    return false;
}

void switch_modem_print(const PrintSwitch& what, int opt) {
    printf("%s, opt = %d\n", what.name, opt);
    if (!store_switch(what, opt == 1))
        return;
    kelvra_smart_test_nv_sync();
    kelvra_smart_test_modem_ssr();
    puts("success, pls wait 10 seconds ");
}

void kelvra_smart_test_bp_kolvo_print_switch(int opt) {
    switch_modem_print({"bp_kolvo_print", "/kolvo/kolvo_print_mask", 0x1f, 4}, opt);
}

void kelvra_smart_test_bp_qmi_print_switch(int opt) {
    switch_modem_print({"bp_qmi_print", "/nv/item_files/modem/kelvra/qmi_print_flag", 1, 1}, opt);
}

void kelvra_smart_test_bp_rf_print_switch(int opt) {
    switch_modem_print({"bp_rf_print", "/nv/item_files/modem/kelvra/rf_print_mask", 0x0f, 4}, opt);
}

template <int (*Action)()>
int run_action(int, char**) {
    return Action();
}

template <void (*Switch)(int opt)>
int run_switch(int argc, char** argv) {
    if (argc < 4)
        return refuse_too_few_parameters(kSmartGroup);
    const int opt = atoi(argv[3]);
    if (opt != 0 && opt != 1) {
        printf("\nnote: opt(%d) is invalid:\n", opt);
        return show_help(kSmartGroup);
    }
    Switch(opt);
    return 0;
}

// clang-format off
constexpr Command kCommands[] = {
    {0, "                      /* trigger SSR of modem */", run_action<kelvra_smart_test_modem_ssr>},
    {1, "                      /* trigger Full Dump */", run_action<kelvra_smart_test_full_dump>},
    {2, "                      /* trigger NV SYNC */", run_action<kelvra_smart_test_nv_sync>},
    {3, " opt                  /* ap kolvo print(need reboot), opt: 0 - off; 1 - on */",
     run_switch<kelvra_smart_test_ap_kolvo_switch>},
    {4, " opt                  /* bp kolvo print, opt: 0 - off; 1 - on */",
     run_switch<kelvra_smart_test_bp_kolvo_print_switch>},
    {5, " opt                  /* bp qmi print, opt: 0 - off; 1 - on */",
     run_switch<kelvra_smart_test_bp_qmi_print_switch>},
    {6, " opt                  /* bp rf print, opt: 0 - off; 1 - on */",
     run_switch<kelvra_smart_test_bp_rf_print_switch>},
};
// clang-format on

}  // namespace

const Group kSmartGroup = make_group(11, "smart test", kelvra_smart_test_do, kCommands);

int kelvra_smart_test_do(int argc, char** argv) {
    if (argc <= 2)
        return refuse_too_few_parameters(kSmartGroup);
    if (atoi(argv[1]) != kSmartGroup.number)
        return refuse_first_parameter(kSmartGroup);
    const int par_i = atoi(argv[2]);
    const Command* const command = find_command(kSmartGroup, par_i);
    if (command == nullptr) {
        printf("invalid par_i = %d\n", par_i);
        return show_help(kSmartGroup);
    }
    return command->run(argc, argv);
}
