// The steps that a command takes over its road, with or without a result.
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "diag_lsm_dci.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

// What the diag library takes for "responses go to the callback" and "back to where they went".
constexpr int kLogToCallback = 6;
constexpr int kLogToDefault = 1;

constexpr int kLocalProcessor = 0;

constexpr int kChannel = 0;
constexpr uint16_t kMpss = 2;
constexpr int kClientSignal = 18;
constexpr int kResponsePacketSize = 16384;

bool register_client(const DiagDciExchange& exchange, int* client_id, uint16_t* peripherals) {
    int signal_type = kClientSignal;
    errno = 0;
    const int err = diag_register_dci_client(client_id, peripherals, kLocalProcessor, &signal_type);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(exchange.function, "Could not register with DCI, err: %d, errno: %d ch:%d", err, errno,
                       kChannel);
        return false;
    }
    KELVRA_LOGD_AS(exchange.function, "Successfully registered with DCI for ch:%d, client ID = %d", kChannel,
                   *client_id);
    return true;
}

// From the registered client to the request on its way. False after logging the step that failed.
bool send_request(const DiagDciExchange& exchange, int client_id, uint16_t* peripherals, uint8_t* packet) {
    const char* const function = exchange.function;
    errno = 0;
    int err = diag_register_dci_signal_data(client_id, SIGRTMIN + 30);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function, "Could not register signal for DCI Data for ch:%d, err: %d, errno: %d",
                       kChannel, err, errno);
        return false;
    }

    KELVRA_LOGD_AS(function, "DCI Status on Processors for ch%d:", kChannel);
    errno = 0;
    err = diag_get_dci_support_list_proc(kLocalProcessor, peripherals);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function, "Could not get support list for ch %d, err: %d, errno: %d", kChannel, err,
                       errno);
        return false;
    }
    KELVRA_LOGD_AS(function, "MPSS on ch:%d: %s", kChannel, (*peripherals & kMpss) != 0 ? "UP" : "DOWN");

    KELVRA_LOGD_AS(function, "Opening Data Stream, registering listeners for ch:%d", kChannel);
    errno = 0;
    err = diag_register_dci_stream_proc(client_id, exchange.logs, exchange.events);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function, "Unable to register DCI stream for ch:%d, err: %d, errno: %d", kChannel, err,
                       errno);
        return false;
    }

    KELVRA_LOGD_AS(function, "Sending Asynchronous Command for ch:%d", kChannel);
    err = diag_send_dci_async_req(client_id, exchange.cmd, exchange.cmd_len, packet, kResponsePacketSize,
                                  exchange.response, nullptr);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function, "Error sending SEND_REQUEST_ASYNC to peripheral %d for ch:%d", err,
                       kChannel);
        return false;
    }
    return true;
}

}  // namespace

int diag_send_by_callback(const char* function, diag_response_cb callback, uint8_t* cmd, int cmd_len) {
    kelvra_diag_register_callback(callback);
    diag_switch_logging(kLogToCallback, nullptr);
    const int result = diag_callback_send_data(kLocalProcessor, cmd, cmd_len);
    KELVRA_LOGD_AS(function, "ret_send = %d, will wait callback", result);
    return result;
}

void diag_leave_callback_road() {
    diag_switch_logging(kLogToDefault, nullptr);
}

int diag_run_dci(const DiagDciExchange& exchange) {
    auto* const packet = static_cast<uint8_t*>(malloc(kResponsePacketSize));
    if (packet == nullptr) {
        KELVRA_LOGD_AS(exchange.function, "Unable to allocate memory for DCI rsp pkt, errno: %d", errno);
        exchange.close_session();
        return 1;
    }
    int client_id = 0;
    uint16_t peripherals = kMpss;
    if (!register_client(exchange, &client_id, &peripherals)) {
        exchange.close_session();
        free(packet);
        return 1;
    }
    const int result =
        send_request(exchange, client_id, &peripherals, packet) ? exchange.sent(exchange.context) : 1;

    exchange.close_session();
    errno = 0;
    const int err = diag_release_dci_client(&client_id);
    KELVRA_LOGD_AS(exchange.function, "Releasing DCI connection, err: %d, errno: %d", err, errno);
    free(packet);
    return result;
}
