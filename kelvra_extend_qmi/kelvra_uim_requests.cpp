#include "kelvra_uim_requests.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fatal.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "qcril_memory_management.h"
#include "user_identity_module_v01.h"

KELVRA_LOG_UNIT("kelvra_extend_cmn");

namespace {

constexpr unsigned kTimeoutMs = 3000;
constexpr int kFailuresBeforeRecovery = 3;
constexpr int8_t kStateUntold = 3;

constexpr uint8_t kIsdRAid[] = {0xA0, 0x00, 0x00, 0x05, 0x59, 0x10, 0x10, 0xFF,
                                0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};

// Opens an operation in whose name it logs. False when there is no client.
bool begin(const char* operation) {
    if (SSR_Detected == 1) {
        KELVRA_LOGD_AS(operation, "SSR_Detected, try recovery");
        uim_qmi_client_recovery();
    }
    if (uim_qmi_client == nullptr) {
        if (!init_uim_qmi_client()) {
            KELVRA_LOGD_AS(operation, "init_uim_qmi_client failed");
            return false;
        }
        KELVRA_LOGD_AS(operation, "%s try init_uim_qmi_client %p", operation, uim_qmi_client.load());
    }
    KELVRA_LOGD_AS(operation, "%s uim_qmi_client %p", operation, uim_qmi_client.load());
    return true;
}

void recover_if_needed(const char* operation, int result) {
    if (result != QMI_SERVICE_ERR && failed_cnt < kFailuresBeforeRecovery)
        return;
    KELVRA_LOGD_AS(operation, "QMI error, try recovery");
    uim_qmi_client_recovery();
}

struct Free {
    void operator()(void* block) const { free(block); }
};

// The two structures of an exchange, zeroed.
template <typename Request, typename Response>
struct Blocks {
    explicit Blocks(const char* operation)
        : request(static_cast<Request*>(qcril_malloc_adv(sizeof(Request), operation, __LINE__))),
          response(static_cast<Response*>(qcril_malloc_adv(sizeof(Response), operation, __LINE__))) {}

    bool allocated() const { return request != nullptr && response != nullptr; }

    int send(unsigned message) const {
        return qmi_client_send_msg_sync(uim_qmi_client, message, request.get(), sizeof(Request),
                                        response.get(), sizeof(Response), kTimeoutMs);
    }

    std::unique_ptr<Request, Free> request;
    std::unique_ptr<Response, Free> response;
};

// Whether a request went out, and the QMI library's result.
struct Outcome {
    bool sent;
    int result;
};

// All of an operation: `fill` completes the request, `take` reads the response of a send that succeeded and
// may turn the result into a failure of its own.
template <typename Request, typename Response, typename Fill, typename Take>
Outcome exchange(const char* operation, unsigned message, Fill fill, Take take) {
    if (!begin(operation)) {
        recover_if_needed(operation, kUimRequestFailed);
        return {false, kUimRequestFailed};
    }
    const Blocks<Request, Response> blocks(operation);
    if (!blocks.allocated()) {
        KELVRA_LOGD_AS(operation, "%s malloc failed", operation);
        return {false, kUimRequestFailed};
    }
    fill(*blocks.request);
    const int sent = blocks.send(message);
    int result = sent;
    if (sent == QMI_NO_ERR) {
        result = take(*blocks.response);
    } else {
        KELVRA_LOGD_AS(operation, "send msg sync client error = %d", sent);
        ++failed_cnt;
    }
    recover_if_needed(operation, sent);
    return {true, result};
}

// Stores the result of the send in `result`; false when memory ran out.
bool power_down(const char* operation, const KelvraUimPowerRequest& power, int& result) {
    const Blocks<uim_power_down_req_msg_v01, uim_power_resp_msg_v01> blocks(operation);
    if (!blocks.allocated()) {
        KELVRA_LOGD_AS(operation, "uim_power_down malloc failed");
        return false;
    }
    KELVRA_LOGD_AS(operation, "kelvra_uim_request_uicc_power_ex power down sim");
    blocks.request->slot = power.slot;
    result = blocks.send(QMI_UIM_POWER_DOWN_V01);
    return true;
}

bool power_up(const char* operation, const KelvraUimPowerRequest& power, int& result) {
    const Blocks<uim_power_up_req_msg_v01, uim_power_resp_msg_v01> blocks(operation);
    if (!blocks.allocated()) {
        KELVRA_LOGD_AS(operation, "uim_power_up malloc failed");
        return false;
    }
    uim_power_up_req_msg_v01& request = *blocks.request;
    request.slot = power.slot;
    request.ignore_hotswap_switch_valid = 1;
    request.ignore_hotswap_switch = power.ignore_hotswap != 0 ? 1 : 0;
    request.option_valid = 1;
    KELVRA_LOGD_AS(operation, "kelvra_uim_request_uicc_power_ex power up sim, ignore hotswap = %d ",
                   request.ignore_hotswap_switch);
    result = blocks.send(QMI_UIM_POWER_UP_V01);
    return true;
}

// The states of the cards in an answer.
void read_card_states(const char* operation, const uim_get_card_status_resp_msg_v01& response,
                      int8_t states[kCardSlots]) {
    const uim_card_status_v01& status = response.extended_card_status;
    if (response.resp.result == 0)
        KELVRA_LOGD_AS(operation, "kelvra_uim_get_card_status check response");
    if (response.resp.result != 0 || response.extended_card_status_valid != 1 || status.card_count < 1) {
        std::fill_n(states, kCardSlots, kStateUntold);
        return;
    }
    for (int i = 0; i < status.card_count; ++i) {
        if (i >= kCardSlots)
            vxk_fatal("card %d in the card status is out of range: there are %d slots", i, kCardSlots);
        states[i] = static_cast<int8_t>(status.cards[i].card_state);
        KELVRA_LOGD_AS(operation, "SIM[%d] State = %d", i, states[i]);
    }
}

}  // namespace

int kelvra_uim_request_uicc_power_ex(const KelvraUimPowerRequest* power) {
    KELVRA_LOG_SCOPE();
    int result = kUimRequestFailed;
    if (begin(__func__)) {
        const bool sent =
            power->power_up == 0 ? power_down(__func__, *power, result) : power_up(__func__, *power, result);
        if (!sent)
            return kUimRequestFailed;
        if (result != QMI_NO_ERR) {
            ++failed_cnt;
            KELVRA_LOGD("send msg sync client error = %d, failed_cnt = %d", result, failed_cnt);
        }
    }
    KELVRA_LOGD("uicc_power_ex res = %d, failed_cnt = %d", result, failed_cnt);
    recover_if_needed(__func__, result);
    return result;
}

void kelvra_uim_request_eid(const uint8_t* slot, uint8_t eid[kEidLen]) {
    KELVRA_LOG_SCOPE();
    exchange<uim_get_eid_req_msg_v01, uim_get_eid_resp_msg_v01>(
        __func__, QMI_UIM_GET_EID_V01, [&](auto& request) { request.slot = *slot; },
        [&](const auto& response) {
            if (response.resp.result == 0 && response.eid_valid != 0)
                memcpy(eid, response.eid, kEidLen);
            return QMI_NO_ERR;
        });
}

bool kelvra_uim_get_card_status(int8_t states[kCardSlots]) {
    KELVRA_LOG_SCOPE();
    const char* const operation = __func__;
    std::fill_n(states, kCardSlots, int8_t{0});
    const Outcome outcome = exchange<uim_get_card_status_req_msg_v01, uim_get_card_status_resp_msg_v01>(
        operation, QMI_UIM_GET_CARD_STATUS_V01,
        [&](auto& request) {
            request.extended_card_status_valid = 1;
            request.extended_card_status = 1;
        },
        [&](const auto& response) {
            read_card_states(operation, response, states);
            return QMI_NO_ERR;
        });
    return outcome.sent;
}

int kelvra_uim_open_channel(uint8_t slot, uint8_t* channel) {
    KELVRA_LOG_SCOPE();
    const char* const operation = __func__;
    *channel = 0;
    const Outcome outcome = exchange<uim_open_logical_channel_req_msg_v01, uim_logical_channel_resp_msg_v01>(
        operation, QMI_UIM_OPEN_LOGICAL_CHANNEL_V01,
        [&](auto& request) {
            request.slot = slot;
            request.aid_valid = 1;
            request.aid_len = sizeof kIsdRAid;
            memcpy(request.aid, kIsdRAid, sizeof kIsdRAid);
            request.file_control_information_valid = 1;
            request.file_control_information = 1;
        },
        [&](const auto& response) {
            if (response.resp.result != 0 || response.channel_id_valid == 0) {
                KELVRA_LOGD_AS(operation, "kelvra_uim_open_channel failed");
                return kUimRequestFailed;
            }
            KELVRA_LOGD_AS(operation, "kelvra_uim_open_channel successfully");
            *channel = response.channel_id;
            return 0;
        });
    return outcome.result;
}

int kelvra_uim_send_apdu(const KelvraUimApdu* apdu, KelvraUimApduResponse* answer) {
    KELVRA_LOG_SCOPE();
    const char* const operation = __func__;
    const Outcome outcome = exchange<uim_send_apdu_req_msg_v01, uim_send_apdu_resp_msg_v01>(
        operation, QMI_UIM_SEND_APDU_V01,
        [&](auto& request) {
            KELVRA_LOGD_AS(operation, "kelvra_uim_send_apdu apdu_len = %d", apdu->length);
            request.slot = apdu->slot;
            request.apdu_len = apdu->length;
            memcpy(request.apdu, apdu->bytes, apdu->length);
            request.channel_id_valid = 1;
            request.channel_id = apdu->channel;
            request.procedure_bytes_valid = 1;
        },
        [&](const auto& response) {
            if (response.resp.result != 0) {
                KELVRA_LOGD_AS(operation, "kelvra_uim_send_apdu failed");
                return kUimRequestFailed;
            }
            KELVRA_LOGD_AS(operation, "kelvra_uim_send_apdu successfully");
            *answer = {};
            if (response.apdu_valid != 0)
                answer->length =
                    static_cast<uint8_t>(std::min<uint32_t>(response.apdu_len, kApduResponseMax));
            memcpy(answer->bytes, response.apdu, answer->length);
            return 0;
        });
    return outcome.result;
}

int kelvra_uim_close_channel(uint8_t slot, uint8_t channel) {
    KELVRA_LOG_SCOPE();
    const char* const operation = __func__;
    const Outcome outcome = exchange<uim_logical_channel_req_msg_v01, uim_logical_channel_resp_msg_v01>(
        operation, QMI_UIM_LOGICAL_CHANNEL_V01,
        [&](auto& request) {
            request.slot = slot;
            request.channel_id_valid = 1;
            request.channel_id = channel;
            request.terminate_application_valid = 1;
            request.terminate_application = 1;
        },
        [&](const auto& response) { return response.resp.result == 0 ? 0 : kUimRequestFailed; });
    return outcome.result;
}
