// The diag session, and the steps that a command takes over its road, with or without a result.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "diag_lsm_dci.h"
#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"
#include "lock.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

// 0: no session; n: open, and n callers have asked for it. Used by the command that holds g_diag_send_mutex.
int32_t g_diag_init_status = 0;

// Names of the processor heard last and of the remote processors. The library's thread names the processor
// that answers while a command thread may still be registering.
char g_diag_channel_name[51];
char g_diag_mask_name[101];
pthread_mutex_t g_names_guard = PTHREAD_MUTEX_INITIALIZER;

constexpr int g_diag_channel = 0;

// Contexts of the callbacks, by processor: the local one and one for each bit of the remote mask.
int g_processors[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

constexpr const char* kMaskNames[] = {" APSS", " MPSS", " LPASS", " WCNSS", " SENSORS", " WDSP"};

// What the diag library takes for "responses go to the callback" and "back to where they went".
constexpr int kLogToCallback = 6;
constexpr int kLogToDefault = 1;

constexpr int kLocalProcessor = 0;

constexpr int kChannel = 0;
constexpr uint16_t kMpss = 2;
constexpr int kClientSignal = 18;
constexpr int kResponsePacketSize = 16384;

const char* name_of_lowest_bit(uint16_t mask) {
    for (size_t bit = 0; bit < std::size(kMaskNames); ++bit) {
        if ((mask >> bit & 1) != 0)
            return kMaskNames[bit];
    }
    return "";
}

template <size_t Size>
void set_name(char (&name)[Size], const char* text) {
    const Lock lock(g_names_guard);
    memset(name, 0, Size);
    snprintf(name, Size, "%s", text);
}

// The store of the last byte's terminator ends one beyond its digits.
constexpr size_t kHexTextSize = 3 * DIAG_CMD_MAX + 1;

void format_hex(const uint8_t* data, size_t len, char (&text)[kHexTextSize]) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    char* out = text;
    for (size_t i = 0; i < len; ++i) {
        *out++ = kDigits[data[i] >> 4];
        *out++ = kDigits[data[i] & 0x0f];
        *out++ = ' ';
    }
    out[-1] = '\0';
}

const char* processor_name(int processor) {
    switch (processor) {
        case 0:
            return "MSM";
        case 1:
            return "MDM";
        case 2:
            return "MDM_2";
        default:
            return "Unknown";
    }
}

}  // namespace

void kelvra_diag_init_with_result() {
    KELVRA_LOG_SCOPE();
    if (g_diag_init_status != 0) {
        KELVRA_LOGD("diag init done, g_diag_init_status = %d", g_diag_init_status);
        ++g_diag_init_status;
    } else if (Diag_LSM_Init(nullptr)) {
        g_diag_init_status = 1;
    } else {
        KELVRA_LOGD("LSM init failed");
    }
}

void kelvra_diag_deinit_with_result() {
    KELVRA_LOG_SCOPE();
    Diag_LSM_DeInit();
    g_diag_init_status = 0;
}

void kelvra_diag_register_callback(diag_response_cb callback) {
    KELVRA_LOG_SCOPE();
    diag_register_callback(callback, &g_processors[0]);
    uint16_t remote_mask = 0;
    diag_has_remote_device(&remote_mask);

    set_name(g_diag_channel_name, "MSM");
    kelvra_print_diag_mask_name(remote_mask);
    KELVRA_LOGD("register call back, g_diag_channel = [%d]%s, data_primary = %d, remote_mask = [%d]%s",
                g_diag_channel, "MSM", g_processors[0], remote_mask, name_of_lowest_bit(remote_mask));

    for (size_t processor = 1; processor < std::size(g_processors); ++processor) {
        if ((remote_mask >> (processor - 1) & 1) == 0)
            continue;
        int* const data_remote = &g_processors[processor];
        KELVRA_LOGD("register remote call back, data_remote = %d", *data_remote);
        diag_register_remote_callback(callback, *data_remote, data_remote);
    }
}

const char* kelvra_print_diag_mask_name(uint16_t mask) {
    KELVRA_LOG_SCOPE();
    set_name(g_diag_mask_name, name_of_lowest_bit(mask));
    return g_diag_mask_name;
}

DiagSession::DiagSession(Kind kind) : kind_(kind), open_(true) {
    if (kind == kWithResult)
        kelvra_diag_init_with_result();
    else
        open_ = Diag_LSM_Init(nullptr);
}

void DiagSession::close() {
    if (!open_)
        return;
    open_ = false;
    if (kind_ == kWithResult)
        kelvra_diag_deinit_with_result();
    else
        Diag_LSM_DeInit();
}

DiagCallbackRoad::DiagCallbackRoad(diag_response_cb callback) {
    kelvra_diag_register_callback(callback);
    diag_switch_logging(kLogToCallback, nullptr);
}

DiagCallbackRoad::~DiagCallbackRoad() {
    diag_switch_logging(kLogToDefault, nullptr);
}

int DiagCallbackRoad::send(const char* function, uint8_t* cmd, int cmd_len) {
    const int result = diag_callback_send_data(kLocalProcessor, cmd, cmd_len);
    KELVRA_LOGD_AS(function, "ret_send = %d, will wait callback", result);
    return result;
}

DiagDciRoad::~DiagDciRoad() {
    session_.close();
    if (registered_) {
        errno = 0;
        const int err = diag_release_dci_client(&client_id_);
        KELVRA_LOGD_AS(function_, "Releasing DCI connection, err: %d, errno: %d", err, errno);
    }
    free(packet_);
}

bool DiagDciRoad::send(uint8_t* cmd, int cmd_len, const DiagDciListeners& listeners) {
    packet_ = static_cast<uint8_t*>(malloc(kResponsePacketSize));
    if (packet_ == nullptr) {
        KELVRA_LOGD_AS(function_, "Unable to allocate memory for DCI rsp pkt, errno: %d", errno);
        return false;
    }
    registered_ = register_client();
    if (!registered_ || !open_streams(listeners))
        return false;

    KELVRA_LOGD_AS(function_, "Sending Asynchronous Command for ch:%d", kChannel);
    const int err = diag_send_dci_async_req(client_id_, cmd, cmd_len, packet_, kResponsePacketSize,
                                            listeners.response, nullptr);
    if (err != DIAG_DCI_NO_ERROR)
        KELVRA_LOGD_AS(function_, "Error sending SEND_REQUEST_ASYNC to peripheral %d for ch:%d", err,
                       kChannel);
    return err == DIAG_DCI_NO_ERROR;
}

bool DiagDciRoad::register_client() {
    int signal_type = kClientSignal;
    peripherals_ = kMpss;
    errno = 0;
    const int err = diag_register_dci_client(&client_id_, &peripherals_, kLocalProcessor, &signal_type);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function_, "Could not register with DCI, err: %d, errno: %d ch:%d", err, errno,
                       kChannel);
        return false;
    }
    KELVRA_LOGD_AS(function_, "Successfully registered with DCI for ch:%d, client ID = %d", kChannel,
                   client_id_);
    return true;
}

bool DiagDciRoad::open_streams(const DiagDciListeners& listeners) {
    errno = 0;
    int err = diag_register_dci_signal_data(client_id_, SIGRTMIN + 30);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function_, "Could not register signal for DCI Data for ch:%d, err: %d, errno: %d",
                       kChannel, err, errno);
        return false;
    }

    KELVRA_LOGD_AS(function_, "DCI Status on Processors for ch%d:", kChannel);
    errno = 0;
    err = diag_get_dci_support_list_proc(kLocalProcessor, &peripherals_);
    if (err != DIAG_DCI_NO_ERROR) {
        KELVRA_LOGD_AS(function_, "Could not get support list for ch %d, err: %d, errno: %d", kChannel, err,
                       errno);
        return false;
    }
    KELVRA_LOGD_AS(function_, "MPSS on ch:%d: %s", kChannel, (peripherals_ & kMpss) != 0 ? "UP" : "DOWN");

    KELVRA_LOGD_AS(function_, "Opening Data Stream, registering listeners for ch:%d", kChannel);
    errno = 0;
    err = diag_register_dci_stream_proc(client_id_, listeners.logs, listeners.events);
    if (err != DIAG_DCI_NO_ERROR)
        KELVRA_LOGD_AS(function_, "Unable to register DCI stream for ch:%d, err: %d, errno: %d", kChannel,
                       err, errno);
    return err == DIAG_DCI_NO_ERROR;
}

int diag_start_thread(pthread_t* thread, void* (*body)(void*), void* arg) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const int result = pthread_create(thread, &attributes, body, arg);
    pthread_attr_destroy(&attributes);
    return result;
}

void diag_name_this_thread() {
    pthread_setname_np(pthread_self(), "KELV DIAG");
}

void kelvra_print_data_with_hex(const uint8_t* data, int len) {
    KELVRA_LOG_SCOPE();
    if (data == nullptr) {
        KELVRA_LOGD("print_data_with_hex, data is null");
        return;
    }
    if (len < 1 || len > DIAG_CMD_MAX) {
        KELVRA_LOGD("print_data_with_hex, invalid data len(%d)", len);
        return;
    }
    char text[kHexTextSize];
    format_hex(data, static_cast<size_t>(len), text);
    KELVRA_LOGD("data hex show, len(%d), data: %s", len, text);
}

int kelvra_diag_comand_input_check(const uint8_t* data, int data_len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("diag_comand, data_len = %d", data_len);
    if (data == nullptr) {
        KELVRA_LOGD("data is null");
        return 1;
    }
    if (data_len < 1 || data_len > DIAG_CMD_MAX) {
        KELVRA_LOGD("Invalid input parameter, data_len = %d", data_len);
        return 1;
    }
    kelvra_print_data_with_hex(data, data_len);
    return 0;
}

int kelvra_diag_comand_output_check(const uint8_t* reply_buf, const int* p_reply_len) {
    KELVRA_LOG_SCOPE();
    if (reply_buf == nullptr) {
        KELVRA_LOGD("reply_buf is null");
        return 1;
    }
    if (p_reply_len == nullptr) {
        KELVRA_LOGD("p_reply_len is null");
        return 1;
    }
    KELVRA_LOGD("reply_len = %d", *p_reply_len);
    if (*p_reply_len < 1) {
        KELVRA_LOGD("Invalid output parameter, reply_len = %d", *p_reply_len);
        return 1;
    }
    return 0;
}

int kelvra_diag_cmd_response_check(const uint8_t* ptr, int len, const void* context_data) {
    KELVRA_LOG_SCOPE();
    int processor = -1;
    if (context_data == nullptr)
        KELVRA_LOGD("context_data is null");
    else
        processor = *static_cast<const int*>(context_data);
    const char* const name = processor_name(processor);
    set_name(g_diag_channel_name, name);
    KELVRA_LOGD("================ response from %d[%s], len = %d ========================", processor, name,
                len);
    if (ptr == nullptr) {
        KELVRA_LOGD("ptr is null");
        return 1;
    }
    if (len < 1 || len > DIAG_RSP_BUF_MAX) {
        KELVRA_LOGD("Invalid parameter, len = %d", len);
        return 1;
    }
    kelvra_print_data_with_hex(ptr, len);
    return 0;
}
