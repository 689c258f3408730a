// The UIM client and its recovery, and what every request does when the modem, or memory, fails it.
#include <gmock/gmock.h>

#include <regex>

#include "kelvra_extend_uim.h"
#include "kelvra_uim_requests.h"
#include "platform_test.h"
#include "user_identity_module_v01.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class Uim : public PlatformTest {
protected:
    Uim() {
        uim_qmi_client = nullptr;
        SSR_Detected = 0;
        failed_cnt = 0;
    }
};

std::string mask_pointers(const std::string& text) {
    return std::regex_replace(text, std::regex("0x[0-9a-f]+"), "PTR");
}

std::string mask(const std::string& text) {
    return mask_pointers(mask_lines(text));
}

constexpr uint8_t kSlot = 2;

int power(uint32_t up) {
    const KelvraUimPowerRequest request = {up, kSlot, 7};
    return kelvra_uim_request_uicc_power_ex(&request);
}

int get_card_status() {
    int8_t states[kCardSlots] = {9, 9};
    return kelvra_uim_get_card_status(states) ? 0 : kUimRequestFailed;
}

int open_channel() {
    uint8_t channel = 9;
    const int result = kelvra_uim_open_channel(kSlot, &channel);
    EXPECT_EQ(channel, 0);
    return result;
}

int send_apdu() {
    const KelvraUimApdu apdu = {kSlot, 1, 2, {0x80, 0xE2}};
    KelvraUimApduResponse response = {};
    return kelvra_uim_send_apdu(&apdu, &response);
}

// Of those that share their way, the ones that say more than a result.
const struct Operation {
    const char* name;
    int (*run)();
    const char* without_memory;
} kOperations[] = {
    {"kelvra_uim_request_uicc_power_ex", [] { return power(0); }, "uim_power_down malloc failed\n"},
    {"kelvra_uim_request_uicc_power_ex", [] { return power(1); }, "uim_power_up malloc failed\n"},
    {"kelvra_uim_get_card_status", get_card_status, "kelvra_uim_get_card_status malloc failed\n"},
    {"kelvra_uim_open_channel", open_channel, "kelvra_uim_open_channel malloc failed\n"},
    {"kelvra_uim_send_apdu", send_apdu, "kelvra_uim_send_apdu malloc failed\n"},
};

TEST_F(Uim, ClientLinesCarryTheirNumbers) {
    uint8_t bytes[] = {1};
    platform().register_error_cb = [](qmi_client_type) { return -1; };
    const std::string text = printed_by([&] {
        uim_qmi_client_recovery();
        kelvra_uim_qmi_client_unsol_ind_cb(nullptr, 97, bytes, 1, nullptr);
        SSR_Detected = 1;
        failed_cnt = 2;
        EXPECT_TRUE(init_uim_qmi_client());
        EXPECT_EQ(SSR_Detected + failed_cnt, 0);
        platform().error_cb(uim_qmi_client, -3, nullptr);
        EXPECT_EQ(SSR_Detected, 0);
        platform().ind_cb(uim_qmi_client, 97, nullptr, 0, nullptr);
        kelvra_qcril_qmi_client_common_empty_unsol_ind_cb(nullptr, 5, nullptr, 0, nullptr);
        platform().release = [](qmi_client_type) { return -1; };
        uim_qmi_client_recovery();
    });
    EXPECT_EQ(uim_qmi_client, nullptr);
    EXPECT_EQ(mask_pointers(text),
              "RIL[uim_qmi_client_recovery:283]: uim_qmi_client_recovery qmi_client_release (nil)\n"
              "RIL[uim_qmi_client_recovery:293]: function exit <-------------\n"
              "RIL[kelvra_uim_qmi_client_unsol_ind_cb:323]: msg_id 97\n"
              "RIL[kelvra_uim_qmi_client_unsol_ind_cb:329]: qmi_client_uim or ind_buf is NULL\n"
              "RIL[init_uim_qmi_client:380]: init_uim_qmi_client PTR\n"
              "RIL[init_uim_qmi_client:384]: qmi_client_register_error_cb failed\n"
              "RIL[error_cb:303]: QMI error callback -3\n"
              "RIL[kelvra_uim_qmi_client_unsol_ind_cb:323]: msg_id 97\n"
              "RIL[kelvra_uim_qmi_client_unsol_ind_cb:329]: qmi_client_uim or ind_buf is NULL\n"
              "RIL[kelvra_qcril_qmi_client_common_empty_unsol_ind_cb:215]: msg_id 5\n"
              "RIL[uim_qmi_client_recovery:283]: uim_qmi_client_recovery qmi_client_release PTR\n"
              "RIL[uim_qmi_client_recovery:289]: qmi_client_release failed\n"
              "RIL[uim_qmi_client_recovery:293]: function exit <-------------\n");
}

TEST_F(Uim, RequestsFailAlikeWithoutMemoryOrAClient) {
    for (const Operation& op : kOperations) {
        SCOPED_TRACE(op.name);
        const std::string line = std::string("RIL[") + op.name + ":#]: ";
        const std::string exit = line + "function exit <-------------\n";
        for (int n = 1; n <= 2; ++n) {
            const std::string text = mask(printed_by([&] {
                init_uim_qmi_client();
                fail_malloc(n);
                EXPECT_EQ(op.run(), -1);
            }));
            EXPECT_TRUE(std::regex_search(
                text, std::regex("\\[qcril_memory_management: \\d+\\] \\[uim_test\\(\\d+,\\d+\\)\\] "
                                 "qcril_malloc_adv: Fail to allocate memory\n")))
                << text;
            EXPECT_THAT(text, EndsWith(std::string(line).append(op.without_memory).append(exit)));
        }
        EXPECT_TRUE(platform().requests.empty());

        uim_qmi_client = nullptr;
        failed_cnt = 3;  // as after so many time-outs
        platform().client_init_instance = [](uint32_t timeout_ms, qmi_client_type*) {
            EXPECT_EQ(timeout_ms, 4000U);
            return -3;
        };
        const std::string text = mask(printed_by([&] { EXPECT_EQ(op.run(), -1); }));
        EXPECT_THAT(text, HasSubstr(line + "init_uim_qmi_client failed\n"));
        EXPECT_THAT(text, HasSubstr(line + "QMI error, try recovery\n"));
        EXPECT_THAT(text, EndsWith(exit));
        platform().client_init_instance = nullptr;
    }
}

}  // namespace
