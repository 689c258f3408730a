// The eSIM state command: switches the second slot between the embedded eUICC and a physical card, reads the
// EID and the cards' states, and resets the eUICC's memory. Verdicts are printed in quiet mode too, and
// nothing else is.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "group5_esim.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_nvefs.h"
#include "kelvra_log.h"
#include "kelvra_parse.h"
#include "kelvra_uim_requests.h"

KELVRA_LOG_UNIT("kelvra_qmi_test_cmn");

bool IS_EID_SAVE = false;

namespace {

constexpr char kCommand[] = "kelvra_cmn_esim_test";
constexpr char kEidPath[] = "/nv/item_files/modem/uim/uimdrv/esim_eid";
constexpr int kEidPathLen = sizeof kEidPath - 1;

constexpr uint8_t kEsimSlot = 2;
constexpr KelvraUimPowerRequest power_down_uim2 = {0, kEsimSlot, 0};
constexpr KelvraUimPowerRequest power_up_uim2_ignore_hotswap = {1, kEsimSlot, 1};
constexpr KelvraUimPowerRequest power_up_uim2 = {1, kEsimSlot, 0};

// Common request 84 selects what the second slot is wired to.
constexpr uint32_t kSlotWiring = 84;
constexpr uint8_t kWireToEsim[8] = {0};
constexpr uint8_t kWireToPsim2[8] = {1};

constexpr useconds_t kEidPauseUs = 100000;
constexpr int kEidRounds = 30;

// STORE DATA with an eUICC memory reset request.
constexpr KelvraUimApdu kMemoryReset = {
    kEsimSlot, 0, 13, {0x80, 0xE2, 0x91, 0x00, 0x07, 0xBF, 0x34, 0x04, 0x82, 0x02, 0x05, 0xE0, 0x00}};

// The length byte and the bytes of its answers: result, then the status words 90 00.
constexpr char kResetDone[] = "08bf34038001009000";
constexpr char kResetNothingToDelete[] = "08bf34038001019000";

struct Eid {
    uint8_t bytes[kEidLen];
    char text[2 * kEidLen + 1];
};

void verdict(const char* word) {
    printf("value=%s\n", word);
}

bool power(const KelvraUimPowerRequest& request) {
    const int result = kelvra_uim_request_uicc_power_ex(&request);
    KELVRA_LOGD_AS(kCommand, request.power_up == 0 ? "POWER_DOWN_UIM2 res = %d" : "POWER_UP_UIM2 res = %d",
                   result);
    return result == 0;
}

// Switches the second slot while it is without power.
bool rewire(const uint8_t (&wiring)[8], const KelvraUimPowerRequest& power_up) {
    if (!power(power_down_uim2))
        return false;
    CommonResponse response;
    kelvra_send_common_qmi_msg(kSlotWiring, sizeof wiring, wiring, &response);
    return power(power_up);
}

// An eUICC that is starting has no EID yet; neither has one whose first 8 bytes are zero.
bool poll_eid(int rounds, Eid& eid) {
    eid = {};
    for (int loop = 0; loop < rounds; ++loop) {
        usleep(kEidPauseUs);
        KELVRA_LOGD_AS(kCommand, "try get eid loop = %d", loop);
        kelvra_uim_request_eid(&kEsimSlot, eid.bytes);
        if (std::any_of(eid.bytes, eid.bytes + 8, [](uint8_t byte) { return byte != 0; })) {
            kelvra_byte_to_hex(eid.bytes, kEidLen, eid.text);
            return true;
        }
    }
    return false;
}

void switch_to_esim() {
    KELVRA_LOGD_AS(kCommand, "switch to eSIM");
    if (!rewire(kWireToEsim, power_up_uim2_ignore_hotswap))
        return verdict("FAILED");
    Eid eid;
    if (!poll_eid(kEidRounds, eid)) {
        KELVRA_LOGD_AS(kCommand, "get eid timeout");
        return verdict("FAILED");
    }
    if (!is_eid_valid(eid.text)) {
        printf("value=FAILED - %s\n", eid.text);
        return;
    }
    save_eid_to_efs(eid.bytes);
    printf("eID=%s\n", eid.text);
}

void switch_to_psim2() {
    KELVRA_LOGD_AS(kCommand, "switch to SIM2");
    if (!rewire(kWireToPsim2, power_up_uim2))
        return verdict("FAILED");
    KELVRA_LOGD_AS(kCommand, "SIM2 Power Up successfully");
    verdict("SUCCEED");
}

void read_eid() {
    KELVRA_LOGD_AS(kCommand, "kelvra get eid");
    Eid eid;
    if (!poll_eid(2, eid))
        return verdict("FAILED");
    printf("eID=%s\n", eid.text);
}

void read_card_status() {
    KELVRA_LOGD_AS(kCommand, "try get simcard status");
    int8_t states[kCardSlots];
    if (!kelvra_uim_get_card_status(states))
        return verdict("FAILED");
    KELVRA_LOGD_AS(kCommand, "card_status, [%d, %d]", states[0], states[1]);
    map_sim_state(states);
}

bool memory_was_reset(const KelvraUimApduResponse& response) {
    constexpr int kBytes = 9;
    unsigned char bytes[kBytes];
    bytes[0] = response.length;
    memcpy(bytes + 1, response.bytes, kBytes - 1);
    char text[2 * kBytes + 1] = "";
    kelvra_byte_to_hex(bytes, kBytes, text);
    KELVRA_LOGD_AS(kCommand, "apdu=%s", text);
    if (strcmp(text, kResetDone) == 0)
        KELVRA_LOGD_AS(kCommand, "kelvra_uim_send_apdu, delete profile successfully.");
    else if (strcmp(text, kResetNothingToDelete) == 0)
        KELVRA_LOGD_AS(kCommand, "kelvra_uim_send_apdu, nothing to delete.");
    else {
        KELVRA_LOGD_AS(kCommand, "kelvra_uim_send_apdu, apdu rsp check failed.");
        return false;
    }
    return true;
}

// A reset that fails leaves its channel open.
void reset_euicc_memory() {
    KELVRA_LOGD_AS(kCommand, "Start eUICC Reset");
    KelvraUimApdu apdu = kMemoryReset;
    int result = kelvra_uim_open_channel(kEsimSlot, &apdu.channel);
    KELVRA_LOGD_AS(kCommand, "kelvra_uim_open_channel res = %d, channel_id = %d", result, apdu.channel);
    if (result != 0)
        return verdict("FAILED");

    KelvraUimApduResponse response = {};
    result = kelvra_uim_send_apdu(&apdu, &response);
    KELVRA_LOGD_AS(kCommand, "kelvra_uim_send_apdu res = %d", result);
    if (result != 0 || !memory_was_reset(response))
        return verdict("FAILED");

    result = kelvra_uim_close_channel(kEsimSlot, apdu.channel);
    KELVRA_LOGD_AS(kCommand, "kelvra_uim_close_channel res = %d", result);
    verdict("SUCCEED");
}

}  // namespace

int kelvra_cmn_esim_test(int argc, char** argv) {
    if (argc <= 4) {
        KELVRA_LOGD("invalid input\n");
        return -1;
    }
    const int esim_on = atoi(argv[3]);
    if (atoi(argv[4]) == 0)
        g_quiet_mode = true;
    switch (esim_on) {
        case 1:
            switch_to_esim();
            break;
        case 2:
            switch_to_psim2();
            break;
        case 3:
            read_eid();
            break;
        case 4:
            read_card_status();
            break;
        case 5:
            reset_euicc_memory();
            break;
        default:
            KELVRA_LOGD("invalid input skip");
            verdict("FAILED");
    }
    return 0;
}

bool is_eid_valid(const char* eid_text) {
    KELVRA_LOGD("check whether eid valid\n");
    int remainder = 0;
    for (int i = 0; i < 2 * kEidLen; ++i)
        remainder = (remainder * 10 + (eid_text[i] - '0')) % 97;
    if (remainder != 1) {
        KELVRA_LOGD("eid validate failed, result = %d\n", remainder);
        return false;
    }
    KELVRA_LOGD("eid validate pass\n");
    return true;
}

int save_eid_to_efs(const uint8_t* eid) {
    if (IS_EID_SAVE) {
        KELVRA_LOGD("EID already saved, skip");
        return 0;
    }
    uint8_t stored[kEidLen];
    uint32_t stored_len = sizeof stored;
    int result = kelvra_efs_read(1, kEidPath, kEidPathLen, stored, &stored_len);
    if (result != 0) {
        KELVRA_LOGD("efs read failed and try save it. error_code : %d\n", result);
        result = kelvra_efs_write(1, kEidPath, kEidPathLen, eid, kEidLen);
        kelvra_printf("save eid efs result = %d\n", result);
        if (result != 0)
            return result;
        KELVRA_LOGD("save eid successfully, set IS_EID_SAVE TRUE");
    } else {
        KELVRA_LOGD("EID already exists, set IS_EID_SAVE TRUE");
    }
    IS_EID_SAVE = true;
    return 0;
}

void map_sim_state(const int8_t* states) {
    static const char* const kWords[] = {"ABSENT", "PRESENT", "ERROR"};
    const auto word = [](int state) { return state >= 0 && state < 3 ? kWords[state] : "UNKNOWN"; };
    KELVRA_LOGD("map_sim_state ...\n");
    printf("%s,%s\n", word(states[0]), word(states[1]));
}
