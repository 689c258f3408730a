// Results: of the QMI library and of responses, and the delivery of asynchronous responses.
#include <cstring>

#include "android/log.h"
#include "little_endian.h"
#include "modem_api_slots.h"
#include "qcril_memory_management.h"

namespace {

constexpr uint32_t kResultSuccess = 0;
constexpr uint32_t kResultFailure = 1;

// The errors of the response that are told apart.
int map_error(uint32_t error) {
    switch (error) {
        case 0:
        case 26:
            return MODEM_API_OK;
        case 4:
            return MODEM_API_ABORTED;
        case 17:
        case 19:
        case 48:
        case 49:
            return MODEM_API_BAD_REQUEST;
        case 24:
        case 42:
        case 77:
        case 94:
            return MODEM_API_REFUSED;
        case 52:
            return MODEM_API_NOT_READY;
        default:
            return MODEM_API_FAILED;
    }
}

int map_response(const qmi_response_type_v01& resp) {
    if (resp.result == kResultSuccess)
        return MODEM_API_OK;
    return resp.result == kResultFailure ? map_error(resp.error) : MODEM_API_FAILED;
}

}  // namespace

int modem_api_map_qmi_error_to_modem_api(int qmi_client_error, const qmi_response_type_v01* resp) {
    switch (qmi_client_error) {
        case QMI_PORT_NOT_OPEN_ERR:
        case QMI_INTERNAL_ERR:
            return MODEM_API_NO_CONNECTION;
        case QMI_TIMEOUT_ERR:
            return MODEM_API_TIMEOUT;
        case QMI_SERVICE_ERR:
        case QMI_NO_ERR:
            return resp == nullptr ? MODEM_API_FAILED : map_response(*resp);
        default:
            return MODEM_API_FAILED;
    }
}

void modem_api_common_command_cb_handler(const void* resp, unsigned int resp_len,
                                         const modem_api_cb_struct_type* cb) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    if (resp == nullptr || cb == nullptr || cb->callback == nullptr) {
        KOLVO_LOG(ANDROID_LOG_ERROR, "Unexpected NULL pointer!");
        return;
    }
    constexpr size_t kLenAt = sizeof(qmi_response_type_v01);
    constexpr size_t kDataAt = kLenAt + sizeof(uint32_t);
    const auto* bytes = static_cast<const uint8_t*>(resp);
    const uint32_t len = resp_len < kDataAt ? UINT32_MAX : get_le<uint32_t>(bytes + kLenAt);
    void* copy = nullptr;
    if (resp_len >= kDataAt && len <= resp_len - kDataAt)
        copy = kolvo_malloc_adv(len, "modem_api_common_command_cb_handler");
    if (copy == nullptr) {
        cb->callback(nullptr, 0, cb->user_data, MODEM_API_RESPONSE_NONE);
    } else {
        memcpy(copy, bytes + kDataAt, len);
        cb->callback(copy, len, cb->user_data, MODEM_API_RESPONSE_DATA);
    }
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit");
}

namespace {

void deliver(unsigned msg_id, const void* resp, unsigned resp_len, const modem_api_cb_struct_type& cb,
             int error) {
    if (resp == nullptr || resp_len == 0) {
        cb.callback(nullptr, 0, cb.user_data, MODEM_API_RESPONSE_NONE);
        return;
    }
    qmi_response_type_v01 outcome{};
    const bool has_outcome = resp_len >= sizeof outcome;
    if (has_outcome)
        memcpy(&outcome, resp, sizeof outcome);
    const int result = modem_api_map_qmi_error_to_modem_api(error, has_outcome ? &outcome : nullptr);
    if (result != MODEM_API_OK) {
        cb.callback(nullptr, 0, cb.user_data, result);
        return;
    }
    if (msg_id == 0)
        modem_api_common_command_cb_handler(resp, resp_len, &cb);
    cb.callback(nullptr, 0, cb.user_data, MODEM_API_RESPONSE_COMPLETE);
}

}  // namespace

void modem_api_process_response(unsigned int msg_id, void* resp, unsigned int resp_len,
                                modem_api_cb_struct_type* cb, int transport_error) {
    if (cb != nullptr && cb->callback != nullptr)
        deliver(msg_id, resp, resp_len, *cb, transport_error);
    kolvo_free_adv(resp);
    kolvo_free_adv(cb);
}

void vs_client_command_cb(qmi_client_type, unsigned int msg_id, void* resp, unsigned int resp_len,
                          void* resp_cb_data, int transport_error) {
    modem_api_process_response(msg_id, resp, resp_len, static_cast<modem_api_cb_struct_type*>(resp_cb_data),
                               transport_error);
}

void sar_client_command_cb(qmi_client_type, unsigned int msg_id, void* resp, unsigned int resp_len,
                           void* resp_cb_data, int transport_error) {
    modem_api_process_response(msg_id, resp, resp_len, static_cast<modem_api_cb_struct_type*>(resp_cb_data),
                               transport_error);
}

void nas_0_client_command_cb(qmi_client_type, unsigned int msg_id, void* resp, unsigned int resp_len,
                             void* resp_cb_data, int transport_error) {
    modem_api_process_response(msg_id, resp, resp_len, static_cast<modem_api_cb_struct_type*>(resp_cb_data),
                               transport_error);
}

void nas_1_client_command_cb(qmi_client_type, unsigned int msg_id, void* resp, unsigned int resp_len,
                             void* resp_cb_data, int transport_error) {
    modem_api_process_response(msg_id, resp, resp_len, static_cast<modem_api_cb_struct_type*>(resp_cb_data),
                               transport_error);
}
