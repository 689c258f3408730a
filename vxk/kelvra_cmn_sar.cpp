#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "kelvra_qmi_test_cmn.h"
#include "sar_v01.h"

namespace {

KELVRA_LOG_UNIT("kelvra_qmi_test_cmn");

constexpr int kNoDsi = -1;
constexpr uint32_t kConnectTimeoutMs = 4;
constexpr unsigned kRequestTimeoutMs = 30000;

// The client stays until the process ends, and with it its signal.
qmi_client_os_params g_sar_os_params;

int ask(qmi_client_type handle) {
    sar_get_dsi_resp_msg_v01 rsp{};
    const int error =
        qmi_client_send_msg_sync(handle, SAR_GET_DSI_V01, nullptr, 0, &rsp, sizeof rsp, kRequestTimeoutMs);
    if (error != QMI_NO_ERR) {
        KELVRA_LOGD_AS("kelvra_get_sar_dsi", "qmi_client_send_msg_sync failed, qmi_client_error = %d", error);
        return kNoDsi;
    }
    const int dsi = static_cast<int>(rsp.dsi);
    KELVRA_LOGD_AS("kelvra_get_sar_dsi", "dsi vailid = %d , dsi value = %d", rsp.dsi_valid, dsi);
    return dsi;
}

}  // namespace

int kelvra_get_sar_dsi() {
    KELVRA_LOG_ENTRY();
    qmi_client_type handle = nullptr;
    const int error =
        qmi_client_init_instance(sar_get_service_object_internal_v01(
                                     SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS, SAR_V01_IDL_TOOL_VERS),
                                 QMI_CLIENT_INSTANCE_ANY, kelvra_qcril_qmi_client_common_empty_unsol_ind_cb,
                                 nullptr, &g_sar_os_params, kConnectTimeoutMs, &handle);
    int dsi = kNoDsi;
    if (error != QMI_NO_ERR)
        KELVRA_LOGD("qmi_client_init_instance failed, qmi_client_error = %d", error);
    else
        dsi = ask(handle);
    KELVRA_LOG_EXIT();
    return dsi;
}

void kelvra_cmn_test_get_sar_dsi() {
    kelvra_printf("SAR DSI: %d\n", kelvra_get_sar_dsi());
}
