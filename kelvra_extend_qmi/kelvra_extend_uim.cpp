#include "kelvra_extend_uim.h"

#include "kelvra_log.h"
#include "qcril_memory_management.h"
#include "user_identity_module_v01.h"

KELVRA_LOG_UNIT("kelvra_extend_cmn");

std::atomic<qmi_client_type> uim_qmi_client{nullptr};
std::atomic<int32_t> SSR_Detected{0};
int32_t failed_cnt = 0;

namespace {

constexpr uint32_t kInitTimeoutMs = 4000;

// Decoded indications are never freed; the chain keeps them reachable.
struct KeptIndication {
    uim_recovery_ind_msg_v01 message;
    KeptIndication* previous;
};
std::atomic<KeptIndication*> g_kept_indications{nullptr};

void error_cb(qmi_client_type, qmi_client_error_type error, void*) {
    KELVRA_LOGD_AT(303, "QMI error callback %d", error);
    if (error != QMI_SERVICE_ERR)
        return;
    KELVRA_LOGD_AT(306, "SSR Detected, set SSR_Detected 1");
    SSR_Detected = 1;
}

}  // namespace

bool init_uim_qmi_client() {
    static qmi_client_os_params os_params;
    qmi_client_type client = nullptr;
    const qmi_client_error_type error =
        qmi_client_init_instance(uim_get_service_object_internal_v01(
                                     UIM_V01_IDL_MAJOR_VERS, UIM_V01_IDL_MINOR_VERS, UIM_V01_IDL_TOOL_VERS),
                                 QMI_CLIENT_INSTANCE_ANY, kelvra_uim_qmi_client_unsol_ind_cb, nullptr,
                                 &os_params, kInitTimeoutMs, &client);
    if (error != QMI_NO_ERR) {
        KELVRA_LOGD_AT(373, "qmi_client_init UIM instance failed, qmi_client_error = %d", error);
        uim_qmi_client = nullptr;
        return false;
    }
    uim_qmi_client = client;
    KELVRA_LOGD_AT(380, "init_uim_qmi_client %p", client);
    if (qmi_client_register_error_cb(client, error_cb, nullptr) != QMI_NO_ERR)
        KELVRA_LOGD_AT(384, "qmi_client_register_error_cb failed");
    SSR_Detected = 0;
    failed_cnt = 0;
    return true;
}

void uim_qmi_client_recovery() {
    qmi_client_type client = uim_qmi_client;
    KELVRA_LOGD_AT(283, "uim_qmi_client_recovery qmi_client_release %p", client);
    if (client != nullptr) {
        if (qmi_client_release(client) != QMI_NO_ERR)
            KELVRA_LOGD_AT(289, "qmi_client_release failed");
        uim_qmi_client = nullptr;
    }
    KELVRA_LOGD_AT(293, "function exit <-------------");
}

void kelvra_uim_qmi_client_unsol_ind_cb(qmi_client_type client, unsigned int msg_id, void* ind_buf,
                                        unsigned int ind_buf_len, void*) {
    KELVRA_LOGD_AT(323, "msg_id %d", static_cast<int>(msg_id));
    if (msg_id != QMI_UIM_RECOVERY_IND_V01)
        return;
    if (ind_buf == nullptr || uim_qmi_client == nullptr) {
        KELVRA_LOGD_AT(329, "qmi_client_uim or ind_buf is NULL");
        return;
    }
    auto* kept = static_cast<KeptIndication*>(qcril_malloc_adv(sizeof(KeptIndication), __func__, __LINE__));
    if (kept == nullptr)
        return;
    kept->previous = g_kept_indications.exchange(kept);
    const qmi_client_error_type result =
        qmi_client_message_decode(client, QMI_IDL_INDICATION, QMI_UIM_RECOVERY_IND_V01, ind_buf, ind_buf_len,
                                  &kept->message, sizeof kept->message);
    KELVRA_LOGD_AT(340, "qmi_client_message_decode result = %d", result);
    if (result != QMI_NO_ERR)
        KELVRA_LOGD_AT(350, "purge guti failed. resp.result = %d ,resp.result = %d",
                       static_cast<int>(kept->message.word[0]), static_cast<int>(kept->message.word[1]));
}

void kelvra_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type, unsigned int msg_id, void*,
                                                       unsigned int, void*) {
    KELVRA_LOGD_AT(215, "msg_id %d", static_cast<int>(msg_id));
}
