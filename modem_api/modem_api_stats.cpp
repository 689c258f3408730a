// The two requests of a statistics session.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "android/log.h"
#include "modem_api_slots.h"

namespace {

constexpr unsigned MODEM_API_FEATURE_MSG_ID = VS_FEATURE_V01;
constexpr unsigned MODEM_STATS_REQ_MSG_ID = VS_STATISTICS_V01;
constexpr unsigned kRequestTimeoutMs = 30000;

bool client_is_usable() {
    const modem_api_client_info_type* client = modem_api_client(g_kolvo_client_id);
    return client != nullptr && client->type == MODEM_API_CLIENT_VS &&
           client->operational_status == MODEM_API_STATUS_UP;
}

// `resp` is zeroed by the caller: the outcome of a service that went away is then a zero one.
template <typename Request, typename Response>
int send(unsigned msg_id, Request* req, Response* resp) {
    const int error = qmi_client_send_msg_sync(modem_api_service_slot(MODEM_API_CLIENT_VS)->handle, msg_id,
                                               req, sizeof *req, resp, sizeof *resp, kRequestTimeoutMs);
    return modem_api_map_qmi_error_to_modem_api(error, &resp->resp);
}

// The first bytes of a value, as far as the buffer takes them.
struct ValueText {
    char text[90] = "";

    explicit ValueText(const modem_stats_param_type& param) {
        constexpr size_t kBytes = 30;
        size_t end = 0;
        for (size_t i = 0; i < kBytes && end < sizeof text; ++i)
            end += static_cast<size_t>(snprintf(text + end, sizeof text - end, " %02X", param.value[i]));
    }
};

void fill_request(vs_statistics_req_msg_v01* req, uint32_t sub, int32_t number,
                  const modem_stats_param_list& list) {
    req->sub = static_cast<uint16_t>(sub);
    req->request_number = static_cast<uint16_t>(number);
    req->entry_count = std::min(list.count, uint32_t{VS_ENTRIES_MAX_V01});
    for (uint32_t i = 0; i < req->entry_count; ++i) {
        vs_entry_v01& entry = req->entries[i];
        entry.id = list.params[i].id;
        entry.value_len = list.params[i].value_len;
        memcpy(entry.value, list.params[i].value, sizeof entry.value);
        modem_api_log(ANDROID_LOG_DEBUG, "modem_api_get_stats_parameter",
                      "ids[%d] = %d, value_len = %d, type = %d, value: %s", static_cast<int>(i),
                      static_cast<int>(entry.id), static_cast<int>(entry.value_len), entry.type,
                      ValueText(entry).text);
    }
}

int refuse(const char* function) {
    modem_api_log(ANDROID_LOG_ERROR, function, "Unexpected condition, return error %d!",
                  MODEM_API_NOT_USABLE);
    return MODEM_API_NOT_USABLE;
}

int set_feature_status() {
    if (!client_is_usable())
        return refuse("modem_api_set_kolvo_feature_status");
    vs_feature_req_msg_v01 req{2, 1, 1, 1, 0};
    vs_feature_resp_msg_v01 resp{};
    const int result = send(MODEM_API_FEATURE_MSG_ID, &req, &resp);
    modem_api_log(ANDROID_LOG_DEBUG, "modem_api_set_kolvo_feature_status", "result %d", result);
    return result;
}

int get_stats_parameter(uint32_t sub, int32_t number, modem_stats_param_list* list) {
    if (!client_is_usable())
        return refuse("modem_api_get_stats_parameter");
    vs_statistics_req_msg_v01 req{};
    vs_statistics_resp_msg_v01 resp{};
    fill_request(&req, sub, number, *list);
    const int result = send(MODEM_STATS_REQ_MSG_ID, &req, &resp);
    if (result != MODEM_API_OK)
        return result;
    if (resp.entries_valid != 1)
        return MODEM_API_FAILED;
    *list = {};
    list->count = std::min(resp.entry_count, uint32_t{VS_ENTRIES_MAX_V01});
    for (uint32_t i = 0; i < list->count; ++i)
        list->params[i] = resp.entries[i];  // the lengths stay as sent, for the reader to judge
    return MODEM_API_OK;
}

}  // namespace

int modem_api_set_kolvo_feature_status() {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    const int ret = set_feature_status();
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}

int modem_api_get_stats_parameter(uint32_t sub, int32_t number, modem_stats_param_list* list) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    const int ret = get_stats_parameter(sub, number, list);
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}
