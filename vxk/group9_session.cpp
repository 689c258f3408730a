#include "group9_session.h"

#include <cstdio>
#include <cstring>

#include "fatal.h"
#include "modem_api.h"

int32_t g_kolvo_req_number = 0;

namespace {

constexpr uint32_t kSubscriptions = 2;

// The session needs no callback, but a client has them.
void kelvra_test_qmi_modem_stats_callback_event_cb(int, void*, int) {}
void kelvra_test_qmi_modem_stats_operational_status_cb(int, int) {}

void free_client() {
    if (g_kolvo_client_id == -1)
        return;
    modem_api_free_client(g_kolvo_client_id);
    g_kolvo_client_id = -1;
}

int next_request_number() {
    if (__builtin_add_overflow(g_kolvo_req_number, 1, &g_kolvo_req_number))
        vxk_fatal("statistics request number overflows behind %d", INT32_MAX);
    return g_kolvo_req_number;
}

// Whether the answer to (sub, data_id) is exactly the value asked for; prints what is wrong with it.
bool check_answer(const modem_stats_param_list& list, int number, int sub, int data_id) {
    const int id_num = static_cast<int>(list.count);
    if (id_num == 0) {
        printf("Fail to get data, empty, number = %d, sub = %d, ret id_num = %d, id = %d\n", number, sub,
               id_num, data_id);
        return false;
    }
    if (id_num > 1) {
        printf("Fail to get data, id num error, number = %d, sub = %d, ret id_num = %d, id = %d\n", number,
               sub, id_num, data_id);
        return false;
    }
    const int ret_id = static_cast<int>(list.params[0].id);
    if (ret_id != data_id) {
        printf("Fail to get data, ret_id(%d) is invalid, number = %d, sub = %d, ret id_num = %d, id = %d\n",
               ret_id, number, sub, id_num, data_id);
        return false;
    }
    const int ret_sub = list.params[0].sub;
    if (ret_sub != sub) {
        printf("Fail to get data, ret_sub(%d) is invalid, number = %d, sub = %d, ret id_num = %d, id = %d\n",
               ret_sub, number, sub, id_num, data_id);
        return false;
    }
    const uint32_t data_len = list.params[0].value_len;
    if (data_len < 1 || data_len > VS_VALUE_MAX_V01) {
        printf(
            "Fail to get data, data_len(%d) is invalid, should be in (0, %d], number = %d, sub = %d, "
            "ret id_num = %d, id = %d\n",
            static_cast<int>(data_len), VS_VALUE_MAX_V01, number, sub, id_num, data_id);
        return false;
    }
    printf("Success to get data, number = %d, sub = %d, ret id_num = %d, id = %d, data_len = %d\n", number,
           sub, id_num, data_id, static_cast<int>(data_len));
    return true;
}

}  // namespace

int kelvra_qmi_modem_stats_api_init() {
    free_client();
    modem_api_release();
    modem_api_init();
    return modem_api_init_client(MODEM_API_CLIENT_VS, kelvra_test_qmi_modem_stats_callback_event_cb,
                                 kelvra_test_qmi_modem_stats_operational_status_cb);
}

void kelvra_test_qmi_modem_stats_start() {
    const int result = modem_api_set_kolvo_feature_status();
    if (result != 0)
        printf("modem_api_set_kolvo_feature_status, start fail, result = %d\n", result);
}

int kelvra_test_qmi_modem_stats_get(uint32_t sub, uint32_t data_id, KolvoValue* value) {
    *value = {};
    if (g_kolvo_client_id == -1) {
        puts("kolvo qmi is not yet inited");
        return 1;
    }
    const int printed_sub = static_cast<int>(sub);
    if (sub >= kSubscriptions) {
        printf("modem_api_get_stats_parameter, sub(%d) is invalid\n", printed_sub);
        return 1;
    }
    modem_stats_param_list list{};
    list.count = 1;
    list.params[0].id = data_id;
    const int number = next_request_number();
    const int printed_id = static_cast<int>(data_id);
    const int ret = modem_api_get_stats_parameter(sub, number, &list);
    if (ret != 0) {
        printf("Fail to get data fail, number = %d, ret = %d, sub = %d, id = %d\n", number, ret, printed_sub,
               printed_id);
        return 1;
    }
    if (!check_answer(list, number, printed_sub, printed_id))
        return 1;
    const modem_stats_param_type& param = list.params[0];
    memcpy(value->data, param.value, param.value_len);
    value->data_left = static_cast<int32_t>(param.value_len);
    value->data_id = param.id;
    return 0;
}

int kelvra_qmi_modem_stats_api_deinit() {
    free_client();
    return modem_api_release();
}
