#include <unistd.h>

#include "android/log.h"
#include "modem_api_slots.h"

namespace {

constexpr int kAttempts = 10;
constexpr unsigned kSecondsBetweenAttempts = 1;
constexpr uint32_t kConnectTimeoutMs = 4;

modem_api_service_slot_type* vs_slot() {
    return modem_api_service_slot(MODEM_API_CLIENT_VS);
}

unsigned vs_client_get_master_port() {
    return QMI_CLIENT_INSTANCE_ANY;
}

void report(modem_api_operational_status_type status) {
    if (vs_slot()->status_hook != nullptr)
        vs_slot()->status_hook(MODEM_API_CLIENT_VS, status);
}

int vs_client_init_client_handles() {
    modem_api_service_slot_type* slot = vs_slot();
    const unsigned port = vs_client_get_master_port();
    KOLVO_LOG(ANDROID_LOG_INFO, "using port %d", static_cast<int>(port));
    int error = QMI_INTERNAL_ERR;
    for (int attempt = 0; attempt < kAttempts && error != QMI_NO_ERR; ++attempt) {
        if (attempt > 0)
            sleep(kSecondsBetweenAttempts);
        KOLVO_LOG(ANDROID_LOG_INFO, "Trying qmi_client_init_instance() try # %d port[%d]", attempt,
                  static_cast<int>(port));
        error = qmi_client_init_instance(slot->service, port, vs_client_unsol_ind_cb, nullptr,
                                         &slot->os_params, kConnectTimeoutMs, &slot->handle);
    }
    KOLVO_LOG(ANDROID_LOG_INFO, "qmi_client_init_instance returned (%d)", error);
    if (error != QMI_NO_ERR) {
        KOLVO_LOG(ANDROID_LOG_INFO, "qmi_client_init_instance returned failure(%d)", error);
        slot->handle = nullptr;
        return 0;
    }
    qmi_client_register_error_cb(slot->handle, vs_client_service_down_event, nullptr);
    slot->inited = 1;
    return 1;
}

}  // namespace

int vs_client_init(modem_api_event_cb event_cb) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    vs_slot()->event_cb = event_cb;
    KOLVO_LOG(ANDROID_LOG_DEBUG, "Client connecting to QMI FW");
    report(MODEM_API_STATUS_CONNECTING);
    const int ret = vs_client_init_client_handles();
    report(ret == 1 ? MODEM_API_STATUS_UP : MODEM_API_STATUS_FAILED);
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit with ret %ld", static_cast<long>(ret));
    return ret;
}

void vs_client_service_down_event(qmi_client_type, qmi_client_error_type error, void*) {
    KOLVO_LOG(ANDROID_LOG_ERROR, "service down with error %d", error);
}
