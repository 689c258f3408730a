// The card slot commands of group 5. Each packs integers into one vendor command; the answer is printed as it
// comes, and the person at the shell reads the card's state from it.
#include <cstdint>
#include <cstdlib>

#include "kelvra_cmn_cmd_send.h"
#include "kelvra_log.h"
#include "kelvra_qmi_test_cmn.h"
#include "little_endian.h"
#include "notes.h"

KELVRA_LOG_UNIT("kelvra_qmi_test_cmn");

namespace {

constexpr int kCommandStatusQuery = 39;
constexpr int kCommandStatusGet = 55;
constexpr int kCommandTypeQuery = 56;
constexpr int kCommandStatusSet = 57;
constexpr int kCommandHotswap = 80;

constexpr int kFirstParam = 3;
constexpr int kWordsMax = 100;

// The words of a command's value, as they travel.
struct Payload {
    void set(int index, int value) { put_le(bytes + 4 * index, static_cast<uint32_t>(value)); }
    uint8_t bytes[4 * kWordsMax] = {};
};

uint32_t send(int command, int words, const Payload& payload) {
    const auto* value = reinterpret_cast<const char*>(payload.bytes);
    return static_cast<uint32_t>(kelvra_cmn_cmd_send(command, static_cast<uint32_t>(4 * words), value));
}

uint32_t refuse_input_count(int needed) {
    return static_cast<uint32_t>(g_quiet_mode ? kBadCommandLine : note_need_inputs(needed));
}

// The commands whose parameters are flags: any number but 0 is sent as 1.
uint32_t kelvra_cmn_card_status_cmd(int command, int param_count, int argc, char** argv) {
    if (argc != param_count + kFirstParam)
        return refuse_input_count(param_count + kFirstParam);
    Payload payload;
    kelvra_printf("param(cnt: %d):\n", param_count);
    for (int i = 0; i < param_count; ++i) {
        const int flag = atoi(argv[kFirstParam + i]) != 0;
        payload.set(i, flag);
        kelvra_printf(" %d", flag);
    }
    kelvra_printf("\n");
    return send(command, param_count, payload);
}

// The start form of the hotswap test: opt and its three numbers, sent as typed.
uint32_t kelvra_cmn_card_status_cmd_ex(int argc, char** argv) {
    constexpr int kParams = 4;
    if (argc != kParams + kFirstParam)
        return refuse_input_count(kParams + kFirstParam);
    Payload payload;
    kelvra_printf("param(cnt: %d):\n", kParams);
    for (int i = 0; i < kParams; ++i) {
        const int value = atoi(argv[kFirstParam + i]);
        payload.set(i, value);
        kelvra_printf(" %d", value);
    }
    kelvra_printf("\n");
    return send(kCommandHotswap, kParams, payload);
}

}  // namespace

uint32_t kelvra_cmn_card_status_query(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_status_query");
    return kelvra_cmn_card_status_cmd(kCommandStatusQuery, 0, argc, argv);
}

uint32_t kelvra_cmn_card_status_get(int argc, char** argv) {
    KELVRA_LOGD_AT(403, "kelvra_cmn_card_status_get\n");
    return kelvra_cmn_card_status_cmd(kCommandStatusGet, 1, argc, argv);
}

uint32_t kelvra_cmn_card_status_set(int argc, char** argv) {
    KELVRA_LOGD_AT(409, "kelvra_cmn_card_status_set\n");
    return kelvra_cmn_card_status_cmd(kCommandStatusSet, 3, argc, argv);
}

uint32_t kelvra_cmn_card_type_query(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_type_query");
    return kelvra_cmn_card_status_cmd(kCommandTypeQuery, 0, argc, argv);
}

uint32_t kelvra_cmn_card_hotswap_test(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_hotswap_test");
    if (argc <= kFirstParam) {
        kelvra_printf("\nnote: need %d inputs at least, Pls refer to the following cmd:\n", kFirstParam + 1);
        return kBadCommandLine;
    }
    const int opt = atoi(argv[kFirstParam]);
    kelvra_printf("opt: %d\n", opt);
    if (opt != 0)
        return kelvra_cmn_card_status_cmd_ex(argc, argv);
    return send(kCommandHotswap, 1, Payload());
}
