#include "kelvra_extend_cmn.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "kelvra_log.h"
#include "little_endian.h"
#include "lock.h"

namespace {

KELVRA_LOG_UNIT("kelvra_extend_cmn");

// The one message of the service, request, response and indication alike.
struct ExtendMessage {
    uint32_t id;  // request id, result (0 success), or indication id
    uint32_t data_len;
    uint8_t data_valid;
    uint8_t data[kExtendPayloadMax];
};
static_assert(sizeof(ExtendMessage) == 524, "layout");
static_assert(offsetof(ExtendMessage, data_len) == 4 && offsetof(ExtendMessage, data_valid) == 8 &&
                  offsetof(ExtendMessage, data) == 9,
              "layout");

constexpr qmi_idl_element word_element(uint8_t tlv, uint32_t offset) {
    return {tlv, 0, QMI_IDL_INTEGER, 4, 4, 0, 0, offset, QMI_IDL_NO_OFFSET, QMI_IDL_NO_OFFSET,
            0,   0, nullptr,         0};
}

// The data fill their TLV; how many they are stands in data_len.
constexpr qmi_idl_element data_element() {
    qmi_idl_element element{};
    element.tlv = 0x10;
    element.flags = QMI_IDL_OPTIONAL;
    element.kind = QMI_IDL_ARRAY;
    element.wire_width = 1;
    element.c_width = 1;
    element.count_width = 4;
    element.offset = offsetof(ExtendMessage, data);
    element.valid_offset = offsetof(ExtendMessage, data_valid);
    element.count_offset = offsetof(ExtendMessage, data_len);
    element.bound = kExtendPayloadMax;
    element.stride = 1;
    return element;
}

constexpr qmi_idl_element kElements[] = {
    word_element(0x01, offsetof(ExtendMessage, id)),
    word_element(0x02, offsetof(ExtendMessage, data_len)),
    data_element(),
};

constexpr qmi_idl_message message(qmi_idl_type_of_message_type type, uint16_t id) {
    return {type, id, sizeof(ExtendMessage), kElements, std::size(kElements)};
}

constexpr uint16_t kSendMessage = 2;

constexpr qmi_idl_message kMessages[] = {
    message(QMI_IDL_REQUEST, kSendMessage),  message(QMI_IDL_REQUEST, 3),
    message(QMI_IDL_RESPONSE, kSendMessage), message(QMI_IDL_RESPONSE, 3),
    message(QMI_IDL_INDICATION, 3),
};

constexpr uint32_t kMaxEncoded = 7 + 7 + 3 + kExtendPayloadMax;
static_assert(kMaxEncoded == 529, "layout");

constexpr qmi_idl_service_object kService{6, 1, 0xFFE4, kMaxEncoded, kMessages, std::size(kMessages)};

// The client, made at the first exchange and kept: read and written under g_extend_mutex alone, which is held
// across the connection and each whole exchange.
constexpr qmi_idl_service_object_type g_extend_service_object = &kService;
pthread_mutex_t g_extend_mutex = PTHREAD_MUTEX_INITIALIZER;
qmi_client_type g_extend_client_handle;
qmi_client_os_params g_extend_os_params;
qmi_client_type g_extend_notifier;
ExtendMessage g_extend_req;
ExtendMessage g_extend_rsp;

constexpr unsigned kServicesMax = 10;
constexpr unsigned kTimeoutMs = 3000;

// Waits, without limit, until the service is published. Returns the number of its instances.
unsigned wait_for_service() {
    for (;;) {
        unsigned num_services = 0;
        const int result =
            qmi_client_get_service_list(g_extend_service_object, nullptr, nullptr, &num_services);
        kelvra_printf("KELVRA_QMI_NV: qmi_client_get_service_list() returned %d num_services = %d\n", result,
                      num_services);
        if (result == 0)
            return num_services;
        qmi_cci_os_signal_wait(&g_extend_os_params, 0);
    }
}

// Leaves the handle null when no client could be made; the next exchange tries again, with the same notifier.
void connect() {
    int result = 0;
    if (g_extend_notifier == nullptr)
        result = qmi_client_notifier_init(g_extend_service_object, &g_extend_os_params, &g_extend_notifier);
    if (result == 0) {
        unsigned num_services = wait_for_service();
        qmi_service_info info[kServicesMax] = {};
        unsigned num_entries = std::min(num_services, kServicesMax);
        const int listed =
            qmi_client_get_service_list(g_extend_service_object, info, &num_entries, &num_services);
        kelvra_printf(
            "KELVRA_QMI_NV: qmi_client_get_service_list() returned %d num_entries = %d num_services = %d\n",
            listed, num_entries, num_services);
        result = qmi_client_init(&info[0], g_extend_service_object, kelvra_extend_qmi_ind_cb, nullptr,
                                 nullptr, &g_extend_client_handle);
    }
    if (result == 0) {
        kelvra_puts("QMI client inited");
        return;
    }
    printf("%d QMI client init failed\n", result);
    g_extend_client_handle = nullptr;
}

// One exchange of g_extend_req against g_extend_rsp. Returns whether the modem answered with success.
bool exchange() {
    int error = qmi_client_send_msg_sync(g_extend_client_handle, kSendMessage, &g_extend_req,
                                         sizeof g_extend_req, &g_extend_rsp, sizeof g_extend_rsp, kTimeoutMs);
    // More data than a message holds: a response that does not decode, wherever that is noticed.
    if (error == 0 && g_extend_rsp.data_valid != 0 && g_extend_rsp.data_len > sizeof g_extend_rsp.data)
        error = QMI_INTERNAL_ERR;
    if (error != 0) {
        kelvra_printf("send msg sync failed:%d\n", error);
        return false;
    }
    if (g_extend_rsp.id != 0)
        kelvra_printf("%d QMI service framework error. Check client\n", g_extend_rsp.id);
    return g_extend_rsp.id == 0;
}

int finished(int result) {
    kelvra_printf("kelvra_extend_qmi_handle_req_cb result:%d\n", result);
    return result;
}

// The payload of a common request. The direct form has the query code in place of the form, and nothing else.
struct CommonRequest {
    uint8_t form[4];
    uint8_t zero[4];
    uint8_t type[4];
    uint8_t length[4];
    uint8_t value[kCommonValueMax];
};
static_assert(sizeof(CommonRequest) == kExtendPayloadMax && offsetof(CommonRequest, type) == 8 &&
                  offsetof(CommonRequest, length) == 12 && offsetof(CommonRequest, value) == 16,
              "layout");

constexpr uint32_t kValueForm = 2;

int send_common(const CommonRequest& request, CommonResponse* rsp) {
    *rsp = {};
    uint32_t rsp_len = sizeof rsp->bytes;
    const int result = kelvra_extend_qmi_send_sync(
        REQUEST_ID_COMMON, reinterpret_cast<const uint8_t*>(&request), sizeof request, rsp->bytes, &rsp_len);
    rsp->arrived = result == kExtendOk ? rsp_len : 0;
    return result;
}

}  // namespace

int kelvra_extend_qmi_send_sync(uint32_t request_id, const uint8_t* data, int data_len, void* rsp_buf,
                                uint32_t* rsp_len) {
    if (data == nullptr || rsp_buf == nullptr || rsp_len == nullptr) {
        kelvra_printf("%x,  put Invalid param\n", static_cast<unsigned>(reinterpret_cast<uintptr_t>(data)));
        return kExtendBadArgument;
    }
    if (data_len < 0 || static_cast<uint32_t>(data_len) > kExtendPayloadMax || *rsp_len > kExtendPayloadMax) {
        kelvra_printf("put data_len %d > max %d\n", data_len, kExtendPayloadMax);
        return kExtendBadArgument;
    }

    const Lock lock(g_extend_mutex);
    if (g_extend_client_handle == nullptr)
        connect();
    if (g_extend_client_handle == nullptr)
        return finished(kExtendNoClient);

    g_extend_req = {};
    g_extend_rsp = {};
    g_extend_req.id = request_id;
    g_extend_req.data_len = static_cast<uint32_t>(data_len);
    g_extend_req.data_valid = 1;
    memcpy(g_extend_req.data, data, g_extend_req.data_len);
    if (!exchange())
        return finished(kExtendFailed);

    *rsp_len = g_extend_rsp.data_valid != 0 ? std::min(*rsp_len, g_extend_rsp.data_len) : 0;
    memcpy(rsp_buf, g_extend_rsp.data, *rsp_len);
    kelvra_printf("kelvra_extend_qmi_send_sync resp_len:%d\n", *rsp_len);
    return finished(kExtendOk);
}

void kelvra_extend_qmi_ind_cb(qmi_client_type handle, unsigned int msg_id, void* buf, unsigned int buf_len,
                              void*) {
    kelvra_printf("KELVRA__EXTEND_QMI: Indication msg_id=0x%x buf_len=%d \n", msg_id, buf_len);
    // What does not decode reads as id 0.
    ExtendMessage indication{};
    qmi_client_message_decode(handle, QMI_IDL_INDICATION, msg_id, buf, buf_len, &indication,
                              sizeof indication);
    constexpr uint32_t kIndications = 7;
    if (indication.id < kIndications)
        kelvra_printf("No function defined to handle indication: %d\n", indication.id);
    else
        kelvra_printf("Indicaion: %d greater than maximum known indication.\n", indication.id);
}

int32_t CommonResponse::result() const {
    return arrived < kResultAt + 4 ? 0 : get_le<int32_t>(bytes + kResultAt);
}

int32_t CommonResponse::length_word() const {
    return arrived < kLengthAt + 4 ? 0 : get_le<int32_t>(bytes + kLengthAt);
}

bool CommonResponse::is_whole(uint32_t needed) const {
    if (arrived < kResultAt + 4)
        return false;
    if (result() != 0)
        return true;
    return arrived >= kValueAt && value_len() <= arrived - kValueAt && value_len() >= needed;
}

int kelvra_common_value_exchange(uint32_t t, uint32_t l, const void* v, CommonResponse* rsp) {
    if (l > kCommonValueMax)
        return kExtendBadArgument;
    CommonRequest request{};
    put_le(request.form, kValueForm);
    put_le(request.type, t);
    put_le(request.length, l);
    if (l != 0)
        memcpy(request.value, v, l);
    return send_common(request, rsp);
}

int kelvra_common_qmi_req(uint32_t type, CommonResponse* rsp) {
    KELVRA_LOG_SCOPE();
    if (rsp == nullptr) {
        KELVRA_LOGD("rsp is NULL");
        return kExtendBadArgument;
    }
    CommonRequest request{};
    put_le(request.form, type);
    return send_common(request, rsp);
}

int kelvra_send_common_qmi_msg(uint32_t t, uint32_t l, const void* v, CommonResponse* rsp) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("t %d", t);
    if (rsp == nullptr) {
        KELVRA_LOGD("rsp is NULL");
        return kExtendBadArgument;
    }
    KELVRA_LOGD("l %d", l);
    if (l != 0 && v == nullptr) {
        KELVRA_LOGD("v is null");
        return kExtendBadArgument;
    }
    return kelvra_common_value_exchange(t, l, v, rsp);
}

int kelvra_qmi_result_map(int result) {
    int mapped = result;
    if (result == kExtendBadArgument)
        mapped = kChannelBadArgument;
    else if (result == kExtendNoClient)
        mapped = kChannelNoClient;
    else if (result == kExtendFailed)
        mapped = kChannelFailed;
    KELVRA_LOGD("kelvra_qmi_result_map, old_result %d, new_result %d", result, mapped);
    return mapped;
}
