#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "kelvra_diag_send.h"
#include "kelvra_diag_unit.h"
#include "kelvra_log.h"

namespace {

KELVRA_LOG_UNIT("kelvra_diag_send");

// How long a road stays open for the response.
constexpr unsigned kCallbackGraceMicroseconds = 200000;
constexpr unsigned kDciGraceSeconds = 1;

void dci_response(unsigned char* ptr, int len, void* data) {
    kelvra_diag_cmd_response_by_dci_no_handle(ptr, len, data);
}
void dci_logs(unsigned char* ptr, int len) {
    kelvra_diag_cmd_response_by_dci_log_stream_no_handle(ptr, len);
}
void dci_events(unsigned char* ptr, int len) {
    kelvra_diag_cmd_response_by_dci_event_stream_no_handle(ptr, len);
}

void close_session() {
    Diag_LSM_DeInit();
}

// A worker's run around what it sends.
void run_worker(const char* function, void* param,
                void (*send)(const char* function, DiagCmdParam& command)) {
    diag_name_this_thread();
    const DiagLock one_worker_at_a_time(g_diag_async_mutex);
    if (param == nullptr) {
        KELVRA_LOGD_AS(function, "param is null");
        return;
    }
    auto* const command = static_cast<DiagCmdParam*>(param);
    KELVRA_LOGD_AS(function, "data_len = %d", command->length);
    if (Diag_LSM_Init(nullptr))
        send(function, *command);
    else
        KELVRA_LOGD_AS(function, "LSM init failed");
    free(command);
}

void send_by_callback(const char* function, DiagCmdParam& command) {
    diag_send_by_callback(function, kelvra_diag_cmd_response_by_callback_no_handle, command.bytes,
                          command.length);
    usleep(kCallbackGraceMicroseconds);
    diag_leave_callback_road();
    close_session();
}

int sleep_out_grace(const void*) {
    sleep(kDciGraceSeconds);
    return 0;
}

void send_by_dci(const char* function, DiagCmdParam& command) {
    diag_run_dci({function, command.bytes, command.length, dci_logs, dci_events, dci_response,
                  sleep_out_grace, nullptr, close_session});
}

}  // namespace

int kelvra_diag_cmd_send_without_result_start_thread(const uint8_t* cmd, int cmd_len, int diag_work_mode) {
    KELVRA_LOG_SCOPE();
    if (kelvra_diag_comand_input_check(cmd, cmd_len) != 0) {
        KELVRA_LOGD("kelvra_diag_comand_input_check fail");
        return 1;
    }
    const auto length = static_cast<size_t>(cmd_len);
    auto* const command = static_cast<DiagCmdParam*>(malloc(offsetof(DiagCmdParam, bytes) + length + 1));
    if (command == nullptr) {
        KELVRA_LOGE("Failed to allocate memory for ptr_out");
        return 1;
    }
    command->length = cmd_len;
    memcpy(command->bytes, cmd, length);

    pthread_t thread;
    const int result = diag_start_thread(
        &thread,
        diag_work_mode != 0 ? kelvra_diag_cmd_send_without_result_by_dci_mode_thread_proc
                            : kelvra_diag_cmd_send_without_result_by_callback_mode_thread_proc,
        command);
    if (result != 0)
        free(command);
    KELVRA_LOGD("kelvra daig is created, conf = %d, diag_work_mode = %d", result, diag_work_mode);
    return 0;
}

void* kelvra_diag_cmd_send_without_result_by_callback_mode_thread_proc(void* param) {
    KELVRA_LOG_SCOPE();
    run_worker(__func__, param, send_by_callback);
    return nullptr;
}

void* kelvra_diag_cmd_send_without_result_by_dci_mode_thread_proc(void* param) {
    KELVRA_LOG_SCOPE();
    run_worker(__func__, param, send_by_dci);
    return nullptr;
}

int kelvra_diag_cmd_response_by_callback_no_handle(unsigned char*, int len, void*) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
    return 0;
}

int kelvra_diag_cmd_response_by_dci_no_handle(unsigned char*, int len, void*) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
    return 0;
}

int kelvra_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char*, int len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
    return 0;
}

int kelvra_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char*, int len) {
    KELVRA_LOG_SCOPE();
    KELVRA_LOGD("len = %d", len);
    return 0;
}
